#include "competitions/CompetitionInvoicing.h"

#include <QHash>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/InvoicingRuns.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

using store::trimmedText;

using invoicing::InvoiceLine;
using invoicing::InvoiceParty;
using store::Store;

namespace {

// Per-player prices of the national natures, fixed in the program: they
// replace the confirmed entry price for those natures.
constexpr Money kQualifiedRegional = Money::fromCents(770);
constexpr Money kUnqualifiedRegional = Money::fromCents(1210);
constexpr Money kQualifiedFinal = Money::fromCents(330);

// Operators whose invoices are due the day they are made.
const QStringList kDueAtOnce{QStringLiteral("BFC"), QStringLiteral("PDL")};

bool isNature(const QString& nature, const QString& code) {
    return nature.trimmed().compare(code, Qt::CaseInsensitive) == 0;
}

// The invoiced party of a row: a league, a committee, a club.
InvoiceParty partyOf(const Store& store, const QString& kind, const QString& code,
                     const QString& rowName) {
    if (kind.compare(kLeagues, Qt::CaseInsensitive) == 0)
        return leagueInvoiceParty(store, code, rowName);
    if (kind.compare(kCommittees, Qt::CaseInsensitive) == 0)
        return committeeInvoiceParty(store, code, rowName);
    return clubInvoiceParty(store, code, rowName);
}

// "N joueurs)" for a competition of individuals, "N équipes)" otherwise.
QString teamsText(qint64 count, int playersPerTeam) {
    return QString::number(count) +
           (playersPerTeam == 1 ? QStringLiteral(" joueurs)") : QStringLiteral(" équipes)"));
}

}  // namespace

InvoicingPlan planInvoicing(const Store& store, const QString& index) {
    const CompetitionRecord c = loadCompetition(store, index);
    InvoicingPlan plan;
    plan.index = c.index;
    plan.season = c.season;
    plan.rows = store
                    .scalar(QStringLiteral("SELECT COUNT(*) FROM strcompetition WHERE "
                                           "index_reference = ? AND c_facture = ?"),
                            {c.index, kCalculatedState})
                    .toInt();
    if (plan.rows == 0) throw Refusal(QStringLiteral("Aucune facture à émettre."));
    plan.asksEntryPrice = c.billEntry;
    plan.asksLinePrice = c.billLines;
    plan.entryTariff = seasonTariff(store, kEntryFeeArticle, c.season, c.nature);
    plan.lineTariff = seasonTariff(store, kLineFeeArticle, c.season, c.nature);
    return plan;
}

Money confirmPrice(const QString& typed) {
    const auto price = Money::parse(typed.trimmed());
    if (!price || *price <= Money()) throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    return *price;
}

QDate competitionDueDate(const QDate& today, const QString& league) {
    if (kDueAtOnce.contains(league.trimmed(), Qt::CaseInsensitive)) return today;
    return endOfMonthDueDate(today);
}

std::vector<InvoiceLine> competitionInvoiceLines(const PartyRowCounts& row, const QString& nature,
                                                 int playersPerTeam, bool billEntry, bool billLines,
                                                 bool national, const QString& competitionTitle,
                                                 const InvoicingPrices& prices) {
    std::vector<InvoiceLine> lines;
    const qint64 p = playersPerTeam;
    if (national && (isNature(nature, kDbexcNature) || isNature(nature, kDbhonNature))) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe Qualifiée phase régionale"),
                         row.eliminatory, kQualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe Non Qualifiée phase régionale"),
                         row.finals, kUnqualifiedRegional * p});
    } else if (national && isNature(nature, kChafNature)) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe non qualifiée phase district"),
                         row.teams, kUnqualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe non qualifiée phase régionale"),
                         row.eliminatory, kQualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe qualifiée phase régionale"),
                         row.finals, kQualifiedFinal * p});
    } else if (billEntry && row.teams != 0) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement ") + competitionTitle.trimmed(),
                         row.teams, prices.entry * p});
    }
    if (billLines && row.eliminatory != 0)
        lines.push_back(
            {kLineFeeArticle,
             QStringLiteral("Lignage Eliminatoires (") + teamsText(row.eliminatory, playersPerTeam),
             row.eliminatory * p * row.eliminatoryLines, prices.line});
    if (billLines && row.finals != 0)
        lines.push_back({kLineFeeArticle,
                         QStringLiteral("Lignage Finale (") + teamsText(row.finals, playersPerTeam),
                         row.finals * p * row.finalLines, prices.line});
    return lines;
}

InvoicingOutcome invoiceCompetition(Store& store, const reference::Viewer& viewer,
                                    const invoicing::DocumentSettings& settings,
                                    const QString& index, const InvoicingPrices& prices,
                                    const QDate& today, const InvoicingProgress& progress) {
    const CompetitionRecord c = loadCompetition(store, index);
    requireCompetitionOwner(store, viewer, c.index);
    if (c.billEntry && prices.entry <= Money())
        throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    if (c.billLines && prices.line <= Money())
        throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    const int players = static_cast<int>(format::leadingNumber(c.composition));
    const bool national = viewer.isNational();
    const QDate due = competitionDueDate(today, viewer.league);

    // The rows are this run's until it ends: no other workstation's opening
    // or calculation sends them back meanwhile. What an interrupted run left
    // is finished before anything new is written.
    RunLease lease(store, RunScope::competition(c.index), viewer.login);
    const FinishedRows finished = finishInterruptedRows(store, settings, lease.token());

    // Everything is read and checked first: a missing party refuses the run
    // before any invoice is written.
    std::vector<PreparedInvoice> invoices;
    QHash<QString, InvoiceParty> parties;
    for (const auto& r : store.select(rowsToInvoiceQuery(c.index))) {
        const QString rowName = trimmedText(r, "c_nom_organisateur");
        const QString kind = trimmedText(r, "c_organisateur");
        const QString code = partyCodeOf(rowName);
        const QString partyKey = kind.toUpper() + QChar('|') + code.toUpper();
        auto found = parties.constFind(partyKey);
        if (found == parties.cend())
            found = parties.insert(partyKey, partyOf(store, kind, code, rowName));
        const PartyRowCounts counts{r.value("c_nb_equipe").toLongLong(),
                                    r.value("c_nb_equipe_eliminatoire").toLongLong(),
                                    r.value("c_nb_equipe_finale").toLongLong(),
                                    c.eliminatoryLines.toLongLong(), c.finalLines.toLongLong()};
        PreparedInvoice inv{trimmedText(r, "c_index"),
                            r.value("c_intitule").toString(),
                            r.value("c_codification").toString(),
                            c.nature,
                            *found,
                            competitionInvoiceLines(counts, c.nature, players, c.billEntry,
                                                    c.billLines, national, c.title, prices),
                            trimmedText(r, "c_date_finale"),
                            trimmedText(r, "c_saison"),
                            trimmedText(r, "c_cod1"),
                            trimmedText(r, "c_cod2")};
        if (inv.lines.empty()) continue;  // nothing owed: no invoice without lines
        if (inv.codification.isEmpty()) inv.codification = QStringLiteral(" ");
        invoices.push_back(std::move(inv));
    }
    InvoicingOutcome outcome;
    if (invoices.empty() && finished.numbers.empty())
        throw Refusal(QStringLiteral("Aucune facture à émettre."));
    if (!invoices.empty())
        outcome = writeRowInvoices(store, settings, invoices, today, due, progress, lease);
    outcome.finished = finished.numbers;
    if (!outcome.cancelled) closeCompetitionWhenInvoiced(store, c.index);
    return outcome;
}

}  // namespace orve::competitions
