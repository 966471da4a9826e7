#include "competitions/NationalBatch.h"

#include <QDir>

#include "competitions/CompetitionBatch.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/NationalInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

namespace {

const QString kChampionshipUsage = QStringLiteral(
    "cdc calculate [--saison S] | cdc invoice [--saison S] [--hommes PRIX] [--dames PRIX]");
const QString kPrivateUsage =
    QStringLiteral("prive calculate [--saison S] | prive invoice [--saison S] [--joueur PRIX]");

QString seasonOf(app::BatchContext& c) {
    const QString given = c.option(QStringLiteral("--saison")).trimmed();
    return given.isEmpty() ? QString::number(c.session().workingSeason()) : given;
}

// The price the window's box would hold: the one given, else the season's tariff.
Money confirmed(const QString& given, Money tariff) {
    return confirmPrice(given.isEmpty() ? format::fileAmount(tariff) : given);
}

int calculate(app::BatchContext& c, BatchKind kind) {
    app::Session& session = c.session();
    const QString season = seasonOf(c);
    reportFinished(c, finishInterruptedRows(session.store(), invoicing::documentSettings(session)));
    const int marked = calculateBatch(session.store(), kind, season);
    for (const auto& r : session.store().select(calculatedBatchRowsQuery(kind, season))) {
        const BatchRow row = batchRowOf(r);
        c.out() << row.index << "  " << row.codification << "  " << row.nature << "  ";
        if (kind == BatchKind::Championship)
            c.out() << row.n1 << " / " << row.n2 << " / " << row.n3 << "\n";
        else
            c.out() << format::amountEuro(row.fixedPart) << " + " << row.players << " joueur(s)\n";
    }
    c.out() << marked << " facture(s) à émettre pour la saison " << season << "\n";
    return 0;
}

int invoice(app::BatchContext& c, BatchKind kind) {
    app::Session& session = c.session();
    const QString season = seasonOf(c);
    const BatchPlan plan = planBatch(session.store(), kind, season);
    BatchPrices prices;
    if (plan.asksMenPrice)
        prices.menLine = confirmed(c.option(QStringLiteral("--hommes")), plan.menTariff);
    if (plan.asksWomenPrice)
        prices.womenLine = confirmed(c.option(QStringLiteral("--dames")), plan.womenTariff);
    if (plan.asksPlayerPrice)
        prices.player = confirmed(c.option(QStringLiteral("--joueur")), plan.playerTariff);
    const InvoicingOutcome outcome =
        invoiceBatch(session.store(), invoicing::documentSettings(session), kind, season, prices,
                     session.today(), {}, reference::Viewer::of(session).login);
    printOutcome(c, outcome);
    c.out() << outcome.numbers.size() << " facture(s) générée(s) pour la saison " << season << "\n";
    return 0;
}

int run(app::BatchContext& c, BatchKind kind, const QString& usage) {
    const QString verb = app::requiredArgument(c.positional(), 0, usage);
    if (verb == QStringLiteral("calculate")) return calculate(c, kind);
    if (verb == QStringLiteral("invoice")) return invoice(c, kind);
    throw Refusal(QStringLiteral("Usage : orve-batch %1").arg(usage));
}

}  // namespace

void registerNationalBatchCommands(app::BatchRegistry& registry) {
    registry.add(
        {QStringLiteral("cdc"), kChampionshipUsage + QStringLiteral(" --as LOGIN"),
         [](app::BatchContext& c) { return run(c, BatchKind::Championship, kChampionshipUsage); },
         app::entryRights(QStringLiteral("mnu_facturation_cdc"))});
    registry.add({QStringLiteral("prive"), kPrivateUsage + QStringLiteral(" --as LOGIN"),
                  [](app::BatchContext& c) { return run(c, BatchKind::Private, kPrivateUsage); },
                  app::entryRights(QStringLiteral("mnu_facturation_prive"))});
}

}  // namespace orve::competitions
