#include "shell/Composition.h"

#include <QDir>

#include "accounting/AccountingBatch.h"
#include "app/Startup.h"
#include "competitions/CompetitionBatch.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/NationalBatch.h"
#include "competitions/PseudoCompetitions.h"
#include "imports/ImportBatch.h"
#include "invoicing/InvoicingBatch.h"
#include "invoicing/MailBatch.h"
#include "shell/DemoData.h"
#include "shell/ScaleDemo.h"
#include "tools/ToolsBatch.h"

namespace orve::shell {

namespace {

const QString kInitDemoUsage =
    QStringLiteral("init-demo DOSSIER [--base postgresql://...] [--scale LIGNES]");

int initDemo(app::BatchContext& c) {
    const QString dir = app::requiredArgument(c.positional(), 0, kInitDemoUsage);
    // With --scale, years of invoicing on top, to measure the reports on.
    const QString scale = c.option(QStringLiteral("--scale"));
    const qint64 lines = scale.isEmpty() ? 0 : scaleLines(scale);
    createDemoInstallation(dir, c.clock().today(), c.option(QStringLiteral("--base")));
    c.out() << "installation de démonstration créée dans " << QDir(dir).absolutePath() << "\n";
    if (lines > 0) c.out() << describe(addScaleHistory(dir, c.clock().today(), lines)) << "\n";
    for (const auto& u : demoUsers())
        c.out() << "utilisateur " << u.login << " (" << u.role << ", ligue " << u.league
                << ") mot de passe : " << u.password << "\n";
    return 0;
}

}  // namespace

std::unique_ptr<app::Session> openSession(const QString& programFolder, const Clock& clock,
                                          const store::PasswordPrompt& askPassword) {
    auto session = app::startSession(programFolder, clock, askPassword);
    session->addSignInStep(competitions::ensurePseudoCompetitions);
    session->addSignInStep(
        [](store::Store& store, const QDate&) { competitions::assignCompetitionOwners(store); });
    return session;
}

void registerBatchCommands(app::BatchRegistry& registry) {
    app::registerAppBatchCommands(registry);
    registry.add({QStringLiteral("init-demo"), kInitDemoUsage, initDemo});
    invoicing::registerInvoicingBatchCommands(registry);
    invoicing::registerInvoiceLoadCommand(registry);
    tools::registerToolsBatchCommands(registry);
    invoicing::registerMailBatchCommands(registry);
    competitions::registerCompetitionBatchCommands(registry);
    imports::registerImportBatchCommands(registry);
    competitions::registerNationalBatchCommands(registry);
    accounting::registerAccountingBatchCommands(registry);
}

}  // namespace orve::shell
