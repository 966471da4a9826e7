#include "competitions/CompetitionCalculation.h"

#include "competitions/CompetitionRegister.h"
#include "competitions/InvoicingRuns.h"
#include "store/Refusal.h"

namespace orve::competitions {

namespace {

bool isNature(const QString& nature, const QString& code) {
    return nature.trimmed().compare(code, Qt::CaseInsensitive) == 0;
}

bool yes(const QVariant& flag) {
    return flag.toString().trimmed().compare(QStringLiteral("O"), Qt::CaseInsensitive) == 0;
}

}  // namespace

CalculationDecision decideRow(const CalculationInput& row, const QString& nature, bool national) {
    const bool anyTeams = row.teams != 0 || row.eliminatory != 0 || row.finals != 0;
    const bool roundTeams = row.eliminatory != 0 || row.finals != 0;
    CalculationDecision d{false, row.teams, row.eliminatory, row.finals};
    if (row.billLines && row.billEntry)
        d.marked = anyTeams;
    else if (row.billLines && roundTeams)
        d.marked = true;
    else if (row.billEntry && row.teams != 0)
        d.marked = true;

    const bool teamNature = isNature(nature, kDbexcNature) || isNature(nature, kDbhonNature);
    // The national natures are invoiced on their rounds whatever the flags say.
    if (national && (teamNature || isNature(nature, kChafNature)) && roundTeams) d.marked = true;

    // What must not be billed is cleared, so the invoices read consistent counts.
    if (national && teamNature) {
        d.teams = 0;
    } else {
        if (!isNature(nature, kChafNature) && !row.billLines) {
            d.eliminatory = 0;
            d.finals = 0;
        }
        if (!row.billEntry) d.teams = 0;
    }
    return d;
}

int calculateCompetition(store::Store& store, const reference::Viewer& viewer, const QString& index,
                         const QString& nature, bool stillOpen) {
    if (stillOpen) throw Refusal(QStringLiteral("Vous devez d'abord valider cette compétition"));
    const QString key = index.trimmed();
    requireCompetitionOwner(store, viewer, key);
    // A run under way on these rows keeps them; it is not calculated again
    // beneath it.
    requireNoLiveRun(store, RunScope::competition(key));
    store::Transaction tx(store);
    // Rows calculated but not invoiced go back to " " everywhere, as when the
    // window opens; a row with an invoice ("A") keeps it.
    releaseCalculatedRows(store);
    const auto rows = store.select(
        QStringLiteral("SELECT c_index, c_fact_ligne, c_fact_engagement, c_nb_equipe, "
                       "c_nb_equipe_eliminatoire, c_nb_equipe_finale FROM strcompetition "
                       "WHERE index_reference = ? AND (c_facture IS NULL OR c_facture = ? OR "
                       "c_facture = '') ORDER BY c_index"),
        {key, kOpenState});
    int marked = 0;
    for (const auto& r : rows) {
        const CalculationInput in{yes(r.value("c_fact_ligne")), yes(r.value("c_fact_engagement")),
                                  r.value("c_nb_equipe").toLongLong(),
                                  r.value("c_nb_equipe_eliminatoire").toLongLong(),
                                  r.value("c_nb_equipe_finale").toLongLong()};
        const CalculationDecision d = decideRow(in, nature, viewer.isNational());
        store.update(QStringLiteral("strcompetition"),
                     {{"c_facture", d.marked ? kCalculatedState : kOpenState},
                      {"c_nb_equipe", d.teams},
                      {"c_nb_equipe_eliminatoire", d.eliminatory},
                      {"c_nb_equipe_finale", d.finals}},
                     QStringLiteral("c_index = ? AND index_reference = ?"),
                     {r.value("c_index"), key});
        if (d.marked) ++marked;
    }
    tx.commit();
    return marked;
}

}  // namespace orve::competitions
