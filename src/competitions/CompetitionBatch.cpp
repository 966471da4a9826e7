#include "competitions/CompetitionBatch.h"

#include <QDir>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/RowInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

namespace {

const QString kUsage = QStringLiteral(
    "competition calculate INDEX | competition invoice INDEX --engagement PRIX --ligne PRIX | "
    "competition list [--saison S]");

QString stateText(const QString& state) {
    const QString s = state.trimmed().toUpper();
    return s.isEmpty() ? QStringLiteral("-") : s;
}

}  // namespace

void reportFinished(app::BatchContext& c, const FinishedRows& finished) {
    if (!finished.empty()) c.out() << finished.report() << "\n";
}

void printOutcome(app::BatchContext& c, const InvoicingOutcome& outcome) {
    for (const QString& number : outcome.numbers) c.out() << "facture N° " << number << "\n";
    for (const QString& path : outcome.files)
        c.out() << "document écrit : " << QDir::toNativeSeparators(path) << "\n";
    if (const QString notes = outcomeNotes(outcome); !notes.isEmpty()) c.out() << notes << "\n";
}

namespace {

int calculate(app::BatchContext& c, const QString& index) {
    app::Session& session = c.session();
    const CompetitionRecord record = loadCompetition(session.store(), index);
    // As the window does when it opens: what an interrupted run left is
    // finished, never invoiced again.
    reportFinished(c, finishInterruptedRows(session.store(), invoicing::documentSettings(session)));
    const int marked = calculateCompetition(session.store(), reference::Viewer::of(session),
                                            record.index, record.nature, false);
    for (const auto& r : session.store().select(rowsToInvoiceQuery(record.index)))
        c.out() << r.value("c_index").toString() << "  "
                << r.value("c_nom_organisateur").toString().trimmed() << "  "
                << r.value("c_nb_equipe").toLongLong() << " / "
                << r.value("c_nb_equipe_eliminatoire").toLongLong() << " / "
                << r.value("c_nb_equipe_finale").toLongLong() << "\n";
    c.out() << marked << " ligne(s) à facturer pour la compétition " << record.index << "\n";
    return 0;
}

// The price the window's box would hold: the one given, else the season's tariff.
Money confirmed(const QString& given, Money tariff) {
    return confirmPrice(given.isEmpty() ? format::fileAmount(tariff) : given);
}

int invoice(app::BatchContext& c, const QString& index) {
    app::Session& session = c.session();
    const InvoicingPlan plan = planInvoicing(session.store(), index);
    InvoicingPrices prices;
    if (plan.asksEntryPrice)
        prices.entry = confirmed(c.option(QStringLiteral("--engagement")), plan.entryTariff);
    if (plan.asksLinePrice)
        prices.line = confirmed(c.option(QStringLiteral("--ligne")), plan.lineTariff);
    const InvoicingOutcome outcome = invoiceCompetition(
        session.store(), reference::Viewer::of(session), invoicing::documentSettings(session),
        plan.index, prices, session.today());
    printOutcome(c, outcome);
    c.out() << outcome.numbers.size() << " facture(s) générée(s) pour la compétition " << plan.index
            << "\n";
    return 0;
}

int list(app::BatchContext& c) {
    app::Session& session = c.session();
    const QString given = c.option(QStringLiteral("--saison")).trimmed();
    const QString season = given.isEmpty() ? QString::number(session.workingSeason()) : given;
    const store::Store& store = session.store();
    const auto masters = store.select(competitionsQuery(season));
    for (const auto& m : masters) {
        const QString index = m.value("c_index").toString().trimmed();
        QStringList states;
        for (const auto& s : store.select(
                 QStringLiteral("SELECT c_facture, COUNT(*) FROM strcompetition WHERE "
                                "index_reference = ? GROUP BY c_facture ORDER BY c_facture"),
                 {index}))
            states << QStringLiteral("%1:%2").arg(stateText(s.value(0).toString()),
                                                  s.value(1).toString());
        c.out() << index << "  " << m.value("c_nature").toString().trimmed() << "  "
                << m.value("c_date_finale").toString().trimmed() << "  "
                << m.value("c_intitule").toString().trimmed() << "  ["
                << stateText(m.value("c_facture").toString()) << "]  "
                << (states.isEmpty() ? QStringLiteral("aucune ligne") : states.join(' ')) << "\n";
    }
    c.out() << masters.size() << " compétition(s) de la saison " << season << "\n";
    return 0;
}

int competition(app::BatchContext& c) {
    const QStringList p = c.positional();
    const QString verb = app::requiredArgument(p, 0, kUsage);
    if (verb == QStringLiteral("list")) return list(c);
    if (verb == QStringLiteral("calculate"))
        return calculate(c, app::requiredArgument(p, 1, kUsage));
    if (verb == QStringLiteral("invoice")) return invoice(c, app::requiredArgument(p, 1, kUsage));
    throw Refusal(QStringLiteral("Usage : orve-batch %1").arg(kUsage));
}

}  // namespace

void registerCompetitionBatchCommands(app::BatchRegistry& registry) {
    registry.add({QStringLiteral("competition"), kUsage + QStringLiteral(" --as LOGIN"),
                  competition, [](const app::BatchContext& c) {
                      return app::BatchRights{QStringLiteral("mnu_fic_competition_gestion"),
                                              c.positional().value(0) != QStringLiteral("list")};
                  }});
}

}  // namespace orve::competitions
