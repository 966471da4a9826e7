#include "tools/ui/ToolScreens.h"

#include <QApplication>

#include "app/ui/ScreenSupport.h"
#include "tools/DataCheck.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolTexts.h"
#include "tools/ui/ORVE_out_newnumero.h"
#include "tools/ui/ORVE_out_newsaison.h"
#include "tools/ui/ORVE_out_rapport.h"

namespace orve::tools {

namespace {

const QString kCheckEntry = QStringLiteral("mnu_outils_verif");

// The wait cursor for as long as a tool works, whatever it throws.
struct Busy {
    Busy() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Busy() { QApplication::restoreOverrideCursor(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

void showReport(const QString& title, const QString& summary, const QStringList& lines,
                QWidget* parent) {
    auto* window = new ORVE_out_rapport(title, summary, lines, parent);
    window->show();
    app::centreOnScreen(window);
    window->raise();
    window->activateWindow();
}

QString findingsSummary(const QStringList& findings) {
    return findings.isEmpty() ? QStringLiteral("Aucune anomalie trouvée.")
                              : counted(findings.size(), QStringLiteral("anomalie signalée"),
                                        QStringLiteral("anomalies signalées"));
}

// What a click on a tool's entry does: nothing-to-do said, or the question
// asked, then the tool run and its end shown. No window stays open but a report.
void runFromMenu(const MaintenanceTool& tool, app::Session& session, app::Dialogs& dialogs,
                 QWidget* parent) {
    ToolContext context = toolContext(session);
    const ToolStep step = prepareTool(tool, context);
    if (step.next == ToolStep::Next::NothingToDo) {
        dialogs.inform(step.text);
        return;
    }
    if (step.next == ToolStep::Next::Ask && !dialogs.ask(step.text)) return;
    ToolOutcome outcome;
    {
        Busy busy;
        outcome = runTool(tool, context);
    }
    if (tool.kind == MaintenanceTool::Kind::Report)
        showReport(QString(tool.caption).remove(QChar('&')), findingsSummary(outcome.report),
                   outcome.report, parent);
    dialogs.inform(outcome.message);
}

void runCheck(app::Session& session, QWidget* parent) {
    DataCheckReport report;
    {
        Busy busy;
        report = checkData(session.store(), session.invoiceFolder());
    }
    showReport(QStringLiteral("Vérification des données"), report.summary(), report.lines(),
               parent);
}

}  // namespace

void registerToolScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_out_newsaison"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_out_newsaison(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_out_newnumero"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_out_newnumero(s, d, parent);
                });
    // A tool is run, not opened: its factory gives no window to keep, so each
    // click runs it again.
    for (const MaintenanceTool& tool : maintenanceTools()) {
        const int number = tool.number;
        catalog.add(tool.entry,
                    [number](app::Session& s, app::Dialogs& d, const QString&,
                             QWidget* parent) -> QWidget* {
                        runFromMenu(*toolByNumber(number), s, d, parent);
                        return nullptr;
                    });
    }
    catalog.add(kCheckEntry,
                [](app::Session& s, app::Dialogs&, const QString&, QWidget* parent) -> QWidget* {
                    runCheck(s, parent);
                    return nullptr;
                });
}

}  // namespace orve::tools
