#include "invoicing/MailBatch.h"

#include <QFile>
#include <QSet>
#include <cstdio>
#include <memory>

#include "app/MenuTree.h"
#include "invoicing/InvoiceMailing.h"
#include "invoicing/MailOutbox.h"
#include "invoicing/MailSettings.h"
#include "invoicing/MailTexts.h"
#include "invoicing/SmtpSender.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

namespace {

const QString kMailUsage = QStringLiteral(
    "mail --nature N [--test ADRESSE[,COPIE]] [--texte NOM] [--objet TEXTE] [--competition] "
    "[--refacturer] [NUMERO...]");
const QString kTextUsage = QStringLiteral("mail-text set NOM | mail-text list");

QString readAllInput() {
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(in.readAll());
}

// What the panel does, from a shell: the same list, the same message, the
// same marks; the run prints a line per invoice as it goes.
int mail(app::BatchContext& c) {
    const QString nature = c.option(QStringLiteral("--nature"));
    if (nature.trimmed().isEmpty()) throw Refusal(kNatureRequired);
    app::Session& session = c.session();
    store::Store& store = session.store();

    MailRunOptions options;
    const QString test = c.option(QStringLiteral("--test"));
    if (c.hasFlag(QStringLiteral("--test"))) {
        options.realProcedure = false;
        options.testAddresses = true;
        options.testTo = test.section(QChar(','), 0, 0);
        options.testCopy = test.section(QChar(','), 1);
    }
    if (c.hasFlag(QStringLiteral("--objet"))) options.subject = c.option(QStringLiteral("--objet"));
    options.addCompetition = c.hasFlag(QStringLiteral("--competition"));
    options.invoiceAgain = c.hasFlag(QStringLiteral("--refacturer"));
    const QString textName = c.option(QStringLiteral("--texte"));
    if (!textName.isEmpty()) {
        const auto t = findMailText(store, textName);
        if (!t) throw Refusal(QStringLiteral("Texte de mail inconnu : %1").arg(textName));
        options.body = t->body;
    } else {
        options.body = defaultMailText(store, session.user().league);
    }

    // Only the invoices the panel would list for the nature.
    const std::vector<QString> unsent = unsentInvoices(store, nature);
    std::vector<QString> chosen;
    const QStringList numbers =
        c.positional({QStringLiteral("--competition"), QStringLiteral("--refacturer")});
    if (numbers.isEmpty()) {
        chosen = unsent;
    } else {
        const QSet<QString> listed(unsent.begin(), unsent.end());
        for (const QString& n : numbers) {
            if (listed.contains(n.trimmed()))
                chosen.push_back(n.trimmed());
            else
                c.out() << QStringLiteral(
                               "facture N° %1 : non envoyée - elle n'est pas dans la "
                               "liste des factures à expédier par mail de la nature %2\n")
                               .arg(n, nature);
        }
    }
    if (chosen.empty()) {
        c.out() << kNothingTicked << "\n";
        return numbers.isEmpty() ? 0 : 1;
    }
    checkMailRun(options, chosen);

    MailSettings settings = MailSettings::fromIni(session.settingsPath());
    std::unique_ptr<MailTransport> transport;
    if (settings.usesServer()) {
        settings.checkSendable();
        if (settings.needsPassword()) {
            // No dialog in a shell: the password comes on standard input.
            settings.password = c.readLine();
            if (settings.password.isEmpty())
                throw Refusal(
                    QStringLiteral("Mot de passe du compte %1 manquant (entrée standard).")
                        .arg(settings.user));
        }
        transport = std::make_unique<SmtpSender>(settings);
    } else {
        transport = std::make_unique<MailOutbox>(outboxFolder(session.programFolder()));
    }
    const MailRunContext context{session.invoiceFolder(), session.user().mail,
                                 settings.sender.isEmpty() ? session.user().mail : settings.sender};
    MailRunListener listener;
    listener.done = [&c](const MailResult& r) {
        c.out() << r.line() << "\n";
        c.out().flush();
    };
    const MailRunReport report =
        sendInvoiceMails(store, *transport, context, options, chosen, listener);
    // Each invoice's line is printed already; then how the run went.
    for (const QString& line : report.summary().split(QChar('\n')))
        if (!line.startsWith(QStringLiteral("facture N° "))) c.out() << line << "\n";
    return report.failed > 0 || !report.stopped.isEmpty() ? 1 : 0;
}

int mailText(app::BatchContext& c) {
    const QStringList words = c.positional();
    const QString verb = app::requiredArgument(words, 0, kTextUsage);
    store::Store& store = c.session().store();
    if (verb == QStringLiteral("list")) {
        for (const auto& t : mailTexts(store)) {
            QString first = t.body.section(QChar('\n'), 0, 0).trimmed();
            c.out() << t.name << " : " << format::echoed(first) << "\n";
        }
        return 0;
    }
    if (verb == QStringLiteral("set")) {
        const QString name = app::requiredArgument(words, 1, kTextUsage);
        QString body = readAllInput();
        if (body.endsWith(QChar('\n'))) body.chop(1);
        const bool replaced = saveMailText(store, name, body);
        c.out() << (replaced ? "texte remplacé : " : "texte ajouté : ") << name.trimmed() << "\n";
        return 0;
    }
    throw Refusal(
        QStringLiteral("Argument inconnu : %1. Usage : orve-batch %2").arg(verb, kTextUsage));
}

}  // namespace

void registerMailBatchCommands(app::BatchRegistry& r) {
    r.add({QStringLiteral("mail"), kMailUsage + QStringLiteral(" --as LOGIN"), mail,
           [](const app::BatchContext& c) {
               // Invoices are mailed from the entry window of their nature.
               const QString entry =
                   app::entryOfMode(QStringLiteral("ORVE_facture_creation"),
                                    c.option(QStringLiteral("--nature")).trimmed().toUpper());
               return app::BatchRights{
                   entry.isEmpty() ? QStringLiteral("mnu_facturation_globale") : entry, true};
           }});
    r.add({QStringLiteral("mail-text"), kTextUsage + QStringLiteral(" --as LOGIN"), mailText,
           [](const app::BatchContext& c) {
               return app::BatchRights{QStringLiteral("mnu_out_mail"),
                                       c.positional().value(0) != QStringLiteral("list")};
           }});
}

}  // namespace orve::invoicing
