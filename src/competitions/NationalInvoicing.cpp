#include "competitions/NationalInvoicing.h"

#include <QHash>

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

bool isMen(const QString& nature) {
    return nature.trimmed().compare(kMenChampionship, Qt::CaseInsensitive) == 0;
}

// The master rows of one kind and season, in the state the condition asks.
store::Query batchRows(BatchKind kind, const QString& season, const store::Condition& state) {
    return {QStringLiteral("SELECT * FROM strcompetition"),
            batchRowsCondition(kind, season) && state, QStringLiteral("c_index")};
}

}  // namespace

store::Condition batchRowsCondition(BatchKind kind, const QString& season) {
    store::Condition rows(QStringLiteral("c_saison = ? AND index_reference = ?"),
                          {season.trimmed(), kMasterReference});
    rows &= kind == BatchKind::Championship
                ? store::Condition(QStringLiteral("upper(substr(c_nature, 1, 4)) = ?"),
                                   {kChampionshipNaturePrefix})
                : store::Condition(QStringLiteral("upper(c_type) = ?"), {kPrivateType});
    return rows;
}

store::Query openBatchRowsQuery(BatchKind kind, const QString& season) {
    return batchRows(kind, season, {QStringLiteral("COALESCE(TRIM(c_facture), '') = ''")});
}

store::Query calculatedBatchRowsQuery(BatchKind kind, const QString& season) {
    return batchRows(kind, season, {QStringLiteral("c_facture = ?"), {kCalculatedState}});
}

BatchRow batchRowOf(const store::Row& r) {
    BatchRow row;
    row.index = trimmedText(r, "c_index");
    row.season = trimmedText(r, "c_saison");
    row.codification = trimmedText(r, "c_codification");
    row.nature = trimmedText(r, "c_nature");
    row.sortDate = trimmedText(r, "c_tri_finale");
    row.n1 = format::leadingNumber(trimmedText(r, "c_cod3"));
    row.n2 = format::leadingNumber(trimmedText(r, "c_cod4"));
    row.n3 = format::leadingNumber(trimmedText(r, "c_cod5"));
    row.fixedPart = Money::fromVariant(r.value(QStringLiteral("c_nb_equipe_eliminatoire")));
    row.players = r.value(QStringLiteral("c_nb_equipe_finale")).toLongLong();
    return row;
}

bool batchRowOwes(BatchKind kind, const BatchRow& row) {
    if (row.codification.compare(kNoParty, Qt::CaseInsensitive) == 0) return false;
    const bool limited = row.season == kLimitedSeason;
    if (kind == BatchKind::Championship) {
        if (limited && row.index.toUpper() >= kChampionshipKeyLimit) return false;
        return row.n1 != 0 || row.n2 != 0 || row.n3 != 0;
    }
    if (limited && row.sortDate >= kPrivateDateLimit) return false;
    return row.fixedPart.cents() != 0 || row.players != 0;
}

int calculateBatch(Store& store, BatchKind kind, const QString& season) {
    requireNoLiveRun(store, RunScope::batch(kind, season));
    store::Transaction tx(store);
    // A calculation done again starts from what is still to invoice.
    for (const auto& r : store.select(calculatedBatchRowsQuery(kind, season)))
        store.update(QStringLiteral("strcompetition"), {{"c_facture", kOpenState}},
                     QStringLiteral("c_index = ? AND c_facture = ?"),
                     {r.value(QStringLiteral("c_index")), kCalculatedState});
    int marked = 0;
    for (const auto& r : store.select(openBatchRowsQuery(kind, season))) {
        const BatchRow row = batchRowOf(r);
        if (!batchRowOwes(kind, row)) continue;
        marked += store.update(QStringLiteral("strcompetition"), {{"c_facture", kCalculatedState}},
                               QStringLiteral("c_index = ? AND index_reference = ?"),
                               {row.index, kMasterReference});
    }
    tx.commit();
    return marked;
}

BatchPlan planBatch(const Store& store, BatchKind kind, const QString& season) {
    BatchPlan plan;
    plan.kind = kind;
    plan.season = season.trimmed();
    for (const auto& r : store.select(calculatedBatchRowsQuery(kind, season))) {
        const BatchRow row = batchRowOf(r);
        ++plan.rows;
        if (kind == BatchKind::Private) {
            plan.asksPlayerPrice |= row.players != 0;
        } else if (row.n1 != 0 || row.n2 != 0 || row.n3 != 0) {
            (isMen(row.nature) ? plan.asksMenPrice : plan.asksWomenPrice) = true;
        }
    }
    if (plan.rows == 0) throw Refusal(QStringLiteral("Aucune facture à émettre."));
    plan.menTariff = seasonTariff(store, kLineFeeArticle, plan.season, kMenChampionship);
    plan.womenTariff = seasonTariff(store, kLineFeeArticle, plan.season, kWomenChampionship);
    plan.playerTariff = seasonTariff(store, kPlayerFeeArticle, plan.season, kPrivateNature);
    return plan;
}

std::vector<InvoiceLine> championshipLines(const BatchRow& row, Money linePrice) {
    std::vector<InvoiceLine> lines;
    const std::pair<const char*, qint64> levels[] = {
        {"Lignage N1", row.n1}, {"Lignage N2", row.n2}, {"Lignage N3", row.n3}};
    for (const auto& [label, count] : levels)
        if (count != 0)
            lines.push_back({kLineFeeArticle, QString::fromLatin1(label), count, linePrice});
    return lines;
}

// Both lines always, a zero one included: the federation's private invoice
// shows the fixed part and the players side by side.
std::vector<InvoiceLine> privateLines(const BatchRow& row, Money playerPrice) {
    return {
        {kFixedPartArticle, QStringLiteral("Calendrier : Frais Fixe"), 1, row.fixedPart},
        {kPlayerFeeArticle, QStringLiteral("Participation par joueur"), row.players, playerPrice}};
}

InvoiceParty codificationParty(const Store& store, const QString& codification,
                               const QString& rowName) {
    const QString code = codification.trimmed().toUpper();
    if (code.startsWith(QStringLiteral("BOW"))) return centreInvoiceParty(store, code, rowName);
    if (code.startsWith(QStringLiteral("CL"))) return clubInvoiceParty(store, code, rowName);
    if (code.startsWith(QStringLiteral("CD")))
        return committeeInvoiceParty(store, QStringLiteral("CD") + format::padCode(code.mid(2), 3),
                                     rowName);
    if (code.startsWith(QStringLiteral("LR"))) return leagueInvoiceParty(store, code, rowName);
    throw Refusal(QStringLiteral("%1 : le code « %2 » ne désigne ni un club (CL), ni un comité "
                                 "(CD), ni un centre de bowling (BOW), ni une ligue (LR).")
                      .arg(rowName, codification.trimmed()));
}

InvoicingOutcome invoiceBatch(Store& store, const invoicing::DocumentSettings& settings,
                              BatchKind kind, const QString& season, const BatchPrices& prices,
                              const QDate& today, const InvoicingProgress& progress,
                              const QString& login) {
    RunLease lease(store, RunScope::batch(kind, season), login);
    const FinishedRows finished = finishInterruptedRows(store, settings, lease.token());
    if (!finished.numbers.empty() &&
        store.select(calculatedBatchRowsQuery(kind, season), 1).empty()) {
        InvoicingOutcome outcome;
        outcome.finished = finished.numbers;
        return outcome;
    }
    const BatchPlan plan = planBatch(store, kind, season);
    if ((plan.asksMenPrice && prices.menLine <= Money()) ||
        (plan.asksWomenPrice && prices.womenLine <= Money()) ||
        (plan.asksPlayerPrice && prices.player <= Money()))
        throw Refusal(QStringLiteral("Veuillez saisir un tarif"));

    // Everything is read and checked first: a row whose party is missing
    // refuses the run before any invoice is written.
    std::vector<PreparedInvoice> invoices;
    QHash<QString, InvoiceParty> parties;
    for (const auto& r : store.select(calculatedBatchRowsQuery(kind, season))) {
        const BatchRow row = batchRowOf(r);
        const QString title = r.value(QStringLiteral("c_intitule")).toString().trimmed();
        auto found = parties.constFind(row.codification.toUpper());
        if (found == parties.cend())
            found =
                parties.insert(row.codification.toUpper(),
                               codificationParty(store, row.codification,
                                                 QStringLiteral("%1 (%2)").arg(row.index, title)));
        PreparedInvoice inv;
        inv.rowIndex = row.index;
        inv.codification = row.codification;
        inv.nature = row.nature;
        inv.party = *found;
        if (kind == BatchKind::Championship) {
            const bool men = isMen(row.nature);
            inv.title = title + (men ? QStringLiteral("-Hommes") : QStringLiteral("-Dames"));
            inv.lines = championshipLines(row, men ? prices.menLine : prices.womenLine);
        } else {
            inv.title = title;
            inv.lines = privateLines(row, prices.player);
        }
        inv.competitionDate = trimmedText(r, "c_date_finale");
        inv.season = row.season;
        inv.code1 = trimmedText(r, "c_cod1");
        inv.code2 = trimmedText(r, "c_cod2");
        if (inv.lines.empty()) continue;  // nothing owed: no invoice without lines
        invoices.push_back(std::move(inv));
    }
    InvoicingOutcome outcome;
    if (invoices.empty() && finished.numbers.empty())
        throw Refusal(QStringLiteral("Aucune facture à émettre."));
    if (!invoices.empty())
        outcome = writeRowInvoices(store, settings, invoices, today, endOfMonthDueDate(today),
                                   progress, lease);
    outcome.finished = finished.numbers;
    return outcome;
}

}  // namespace orve::competitions
