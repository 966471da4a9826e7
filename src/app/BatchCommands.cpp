#include "app/BatchCommands.h"

#include <QDir>
#include <cstdio>

#include "app/MenuTree.h"
#include "app/SignIn.h"
#include "app/Startup.h"
#include "store/Refusal.h"
#include "store/Settings.h"

namespace orve::app {

BatchContext::BatchContext(QStringList args, QString programFolder, QString asLogin,
                           QTextStream& out, QTextStream& err, Clock clock,
                           SessionOpener openSession)
    : m_args(std::move(args)),
      m_programFolder(std::move(programFolder)),
      m_asLogin(std::move(asLogin)),
      m_out(out),
      m_err(err),
      m_clock(clock),
      m_openSession(std::move(openSession)) {}

Session& BatchContext::session() {
    if (!m_session) {
        m_session = m_openSession(m_programFolder, m_clock);
        // A setting that cannot be used is said once, before the command's output.
        for (const QString& problem : store::settingsProblems(m_session->settingsPath()))
            m_err << problem << "\n";
        m_err.flush();
        if (!m_asLogin.isEmpty()) actAs(*m_session, m_asLogin);
    }
    return *m_session;
}

QString BatchContext::option(const QString& name) const {
    const int i = m_args.indexOf(name);
    return i >= 0 && i + 1 < m_args.size() ? m_args[i + 1] : QString();
}

QStringList BatchContext::positional(const QStringList& flags) const {
    QStringList out;
    for (int i = 0; i < m_args.size(); ++i) {
        if (m_args[i].startsWith(QStringLiteral("--"))) {
            if (!flags.contains(m_args[i]) && i + 1 < m_args.size()) ++i;  // skip its value
            continue;
        }
        out << m_args[i];
    }
    return out;
}

QString BatchContext::readLine() {
    QTextStream in(stdin);
    return in.readLine();
}

void requireBatchRights(BatchContext& context, const BatchRights& rights) {
    if (rights.entry.isEmpty()) return;
    const QString caption = entryCaption(rights.entry);
    if (context.asLogin().isEmpty()) {
        if (!rights.writes) return;
        throw Refusal(QStringLiteral("Cette commande modifie les données : indiquez l'opérateur "
                                     "avec --as LOGIN ; ses droits sont ceux du menu « %1 ».")
                          .arg(caption));
    }
    Session& session = context.session();
    if (!entryAllowed(rights.entry, true, session.user().login, session.isNational()))
        throw Refusal(QStringLiteral("L'utilisateur « %1 » n'a pas accès à « %2 » : cette "
                                     "commande lui est refusée comme le menu la lui refuse.")
                          .arg(session.user().login, caption));
}

QString requiredArgument(const QStringList& values, int i, const QString& usage) {
    if (i >= values.size() || values[i].isEmpty())
        throw Refusal(QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(usage));
    return values[i];
}

const BatchCommand* BatchRegistry::find(const QString& name) const {
    for (const auto& c : m_commands)
        if (c.name == name) return &c;
    return nullptr;
}

int runBatch(const BatchRegistry& registry, const BatchContext::SessionOpener& openSession,
             const QStringList& arguments, const QString& executableFolder, QTextStream& out,
             QTextStream& err) {
    QStringList args = arguments;
    QString home;
    QString as;
    for (int i = 0; i < args.size();) {
        if ((args[i] == QStringLiteral("--home") || args[i] == QStringLiteral("--as")) &&
            i + 1 < args.size()) {
            (args[i] == QStringLiteral("--home") ? home : as) = args[i + 1];
            args.remove(i, 2);
        } else {
            ++i;
        }
    }
    const BatchCommand* command = args.isEmpty() ? nullptr : registry.find(args.first());
    if (!command) {
        err << "usage : orve-batch [--home DOSSIER] [--as LOGIN] COMMANDE ...\n";
        for (const auto& c : registry.commands()) err << "  " << c.usage << "\n";
        err.flush();
        return 2;
    }
    args.removeFirst();
    BatchContext context(args, resolveProgramFolder(home, executableFolder), as, out, err,
                         Clock::fromEnvironment(), openSession);
    try {
        if (command->rights) requireBatchRights(context, command->rights(context));
        const int rc = command->run(context);
        out.flush();
        return rc;
    } catch (const std::exception& e) {
        out.flush();
        err << describeError(e) << "\n";
        err.flush();
        return 1;
    }
}

}  // namespace orve::app
