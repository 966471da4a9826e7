#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>
#include <memory>
#include <vector>

#include "app/Session.h"
#include "store/Clock.h"

namespace orve::app {

// What a batch command gets: its own arguments (global options removed), the
// program folder, the login of --as, and where to print.
class BatchContext {
  public:
    // Opens the installation of a program folder, wired as the program wires it.
    using SessionOpener =
        std::function<std::unique_ptr<Session>(const QString& programFolder, const Clock& clock)>;

    BatchContext(QStringList args, QString programFolder, QString asLogin, QTextStream& out,
                 QTextStream& err, Clock clock, SessionOpener openSession);

    const QStringList& args() const { return m_args; }
    const QString& programFolder() const { return m_programFolder; }
    const QString& asLogin() const { return m_asLogin; }
    QTextStream& out() { return m_out; }
    QTextStream& err() { return m_err; }
    const Clock& clock() const { return m_clock; }

    // The installation of the program folder, started as the desktop program
    // starts it; with --as LOGIN, signed in as that user (without password).
    Session& session();

    // The value after a named option ("--league CODE"), or empty.
    QString option(const QString& name) const;
    // Positional arguments: those not an option nor an option's value. `flags`
    // names the options that take no value.
    QStringList positional(const QStringList& flags = {}) const;
    bool hasFlag(const QString& flag) const { return m_args.contains(flag); }
    // A line read from standard input (a password, say).
    QString readLine();

  private:
    QStringList m_args;
    QString m_programFolder;
    QString m_asLogin;
    QTextStream& m_out;
    QTextStream& m_err;
    Clock m_clock;
    SessionOpener m_openSession;
    std::unique_ptr<Session> m_session;
};

// values[i], or a refusal that shows the command's usage.
QString requiredArgument(const QStringList& values, int i, const QString& usage);

// What a command stands for in the menu, for the arguments it was given: the
// --as operator needs the rights to that entry, as at the desktop. A command
// that writes business data needs --as; one that only reads runs without it,
// and with it checks the rights all the same.
struct BatchRights {
    QString entry;  // a menu entry's name; empty for installation administration
    bool writes = true;
};

// The --as operator's rights to what the command does (see BatchRights);
// Refusal naming the entry when it lacks them or when --as is missing.
void requireBatchRights(BatchContext& context, const BatchRights& rights);

struct BatchCommand {
    QString name;
    QString usage;
    // Returns the exit code; throws Refusal for the system's own refusals.
    std::function<int(BatchContext&)> run;
    // None: installation administration (init, user, migrate, backup), open to
    // whoever holds the data files or the database password.
    std::function<BatchRights(const BatchContext&)> rights = {};
};

// Rights for a command that always stands for one entry.
inline std::function<BatchRights(const BatchContext&)> entryRights(const QString& entry,
                                                                   bool writes = true) {
    return [entry, writes](const BatchContext&) { return BatchRights{entry, writes}; };
}

class BatchRegistry {
  public:
    void add(BatchCommand command) { m_commands.push_back(std::move(command)); }
    const BatchCommand* find(const QString& name) const;
    const std::vector<BatchCommand>& commands() const { return m_commands; }

  private:
    std::vector<BatchCommand> m_commands;
};

// init, user, signin, backup.
void registerAppBatchCommands(BatchRegistry& registry);

// Parses global options (--home DIR, --as LOGIN), runs the command, prints a
// refusal's French message and returns 1 on refusal or error.
int runBatch(const BatchRegistry& registry, const BatchContext::SessionOpener& openSession,
             const QStringList& arguments, const QString& executableFolder, QTextStream& out,
             QTextStream& err);

}  // namespace orve::app
