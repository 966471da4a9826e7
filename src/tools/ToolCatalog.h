#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "app/Session.h"
#include "store/Store.h"
#include "tools/MaintenanceTools.h"

// The sixteen tools of the "&Outils" menu as the menu and orve-batch run
// them: their captions, the question asked before a destructive one (after a
// backup of the data files), and the message each ends with.
namespace orve::tools {

// Where a tool works and when.
struct ToolContext {
    store::Store& store;
    QString installationFolder;  // the program folder: backups go under it
    QString invoiceFolder;
    QDate today;
    QDateTime moment;  // names the backup folder
};

// The context of a signed-in session, now.
ToolContext toolContext(app::Session& session);

struct ToolOutcome {
    Changes changes;
    QString message;       // the closing message, naming the backup when one was made
    QStringList report;    // the findings of the checking tools
    QString backupFolder;  // empty when none was made
};

struct MaintenanceTool {
    enum class Kind {
        Repair,       // changes data it does not delete: runs at once
        Destructive,  // deletes or resets: counts, asks, backs up, runs
        Report,       // reads only, shows what it found
    };
    int number = 0;
    QString entry;    // "mnu_outils_N"
    QString caption;  // the menu's caption
    Kind kind = Kind::Repair;
    // What the tool does, completing "Cet outil va … (N enregistrements)".
    QString action;
    // Said instead of asking or running when nothing would change; empty:
    // the tool runs anyway (its closing message then says it is done).
    QString nothingToDo;
    std::function<Changes(const ToolContext&)> count;  // none for reports
    // The tool itself; a destructive one gets the backup folder made first.
    std::function<ToolOutcome(ToolContext&, const QString& backupFolder)> run;
};

// In menu order.
const std::vector<MaintenanceTool>& maintenanceTools();
const MaintenanceTool* toolByNumber(int number);
const MaintenanceTool* toolByEntry(const QString& entry);

// "Cet outil va … (N enregistrements)."
QString toolIntent(const MaintenanceTool& tool, const Changes& changes);
// "Cet outil va … (N enregistrements). Continuer ?"
QString toolQuestion(const MaintenanceTool& tool, const Changes& changes);

// What comes before running: say there is nothing to do, ask, or run.
struct ToolStep {
    enum class Next { NothingToDo, Ask, Run };
    Next next = Next::Run;
    QString text;  // the message or the question
    Changes changes;
};
ToolStep prepareTool(const MaintenanceTool& tool, const ToolContext& context);

// Runs a tool; a destructive one first writes the data files to
// sauvegardes/avant-outil-YYYYMMDD-HHMMSS/ in the installation.
ToolOutcome runTool(const MaintenanceTool& tool, ToolContext& context);

// The folder a backup made at `moment` goes to; a second one in the same
// second gets its own folder.
QString toolBackupFolder(const QString& installationFolder, const QDateTime& moment);

}  // namespace orve::tools
