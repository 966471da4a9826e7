#include "shell/Composition.h"

#include <QDir>

#include "app/Startup.h"
#include "competitions/CompetitionBatch.h"
#include "competitions/NationalBatch.h"
#include "competitions/PseudoCompetitions.h"
#include "imports/ImportBatch.h"
#include "invoicing/InvoicingBatch.h"
#include "invoicing/MailBatch.h"
#include "shell/DemoData.h"
#include "tools/ToolsBatch.h"

namespace orve::shell {

namespace {

const QString kInitDemoUsage = QStringLiteral("init-demo DOSSIER [--base postgresql://...]");

int initDemo(app::BatchContext& c) {
    const QString dir = app::requiredArgument(c.positional(), 0, kInitDemoUsage);
    createDemoInstallation(dir, c.clock().today(), c.option(QStringLiteral("--base")));
    c.out() << "installation de démonstration créée dans " << QDir(dir).absolutePath() << "\n";
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
}

}  // namespace orve::shell
