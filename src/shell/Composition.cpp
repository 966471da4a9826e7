#include "shell/Composition.h"

#include <QDir>

#include "app/Startup.h"
#include "competitions/PseudoCompetitions.h"
#include "invoicing/InvoicingBatch.h"
#include "shell/DemoData.h"

namespace orve::shell {

namespace {

int initDemo(app::BatchContext& c) {
    const QString dir = app::requiredArgument(c.positional(), 0, QStringLiteral("init-demo DIR"));
    createDemoInstallation(dir, c.clock().today());
    c.out() << "installation de démonstration créée dans " << QDir(dir).absolutePath() << "\n";
    for (const auto& u : demoUsers())
        c.out() << "utilisateur " << u.login << " (" << u.role << ", ligue " << u.league
                << ") mot de passe : " << u.password << "\n";
    return 0;
}

}  // namespace

std::unique_ptr<app::Session> openSession(const QString& programFolder, const Clock& clock) {
    auto session = app::startSession(programFolder, clock);
    session->addSignInStep(competitions::ensurePseudoCompetitions);
    return session;
}

void registerBatchCommands(app::BatchRegistry& registry) {
    app::registerAppBatchCommands(registry);
    registry.add({QStringLiteral("init-demo"), QStringLiteral("init-demo DIR"), initDemo});
    invoicing::registerInvoicingBatchCommands(registry);
}

}  // namespace orve::shell
