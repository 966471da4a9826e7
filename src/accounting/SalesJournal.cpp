#include "accounting/SalesJournal.h"

#include "accounting/ReportSql.h"
#include "invoicing/RecordStates.h"

namespace orve::accounting {

using Kind = ReportColumn::Kind;

const std::vector<StatusOption>& statusOptions() {
    static const std::vector<StatusOption> options{
        {InvoicingStatus::AwaitingLines, QStringLiteral("Attente lignage")},
        {InvoicingStatus::ManualInvoicing, QStringLiteral("A facturer Manuellement")},
        {InvoicingStatus::AwaitingInvoicing, QStringLiteral("Attente de facturation")},
        {InvoicingStatus::Invoiced, QStringLiteral("Facturées")},
        {InvoicingStatus::All, QStringLiteral("Toutes")},
        {InvoicingStatus::NotPrinted, QStringLiteral("Facture non éditéees")},
    };
    return options;
}

store::Condition statusCondition(InvoicingStatus status) {
    switch (status) {
        case InvoicingStatus::AwaitingLines:
            return {QStringLiteral("trim(COALESCE(c.c_facture, '')) = ''")};
        case InvoicingStatus::ManualInvoicing:
            return {QStringLiteral("c.c_facture = ?"), {invoicing::kPseudoState}};
        case InvoicingStatus::AwaitingInvoicing:
            return {QStringLiteral("c.c_facture = ?"), {QStringLiteral("C")}};
        case InvoicingStatus::Invoiced:
            return {QStringLiteral("c.c_facture = ?"), {QStringLiteral("F")}};
        case InvoicingStatus::NotPrinted:
            return {QStringLiteral("c.c_facture = ?"), {QStringLiteral("A")}};
        case InvoicingStatus::All:
            break;
    }
    return {};
}

const std::vector<ReportColumn>& journalColumns() {
    static const std::vector<ReportColumn> columns{
        {QStringLiteral("Saison"), "c_saison"},
        {QStringLiteral("Type"), "c_type"},
        {QStringLiteral("Intitulé de la compétiton"), "c_intitule"},
        {QStringLiteral("Nature"), "c_nature"},
        {QString(), "c_formule", Kind::Text, QStringLiteral("Formule")},
        {QStringLiteral("Tiers facturé"), "f_tiers_fact"},
        {QString(), "c_numero", Kind::Text, QStringLiteral("N° Tournoi")},
        {QStringLiteral("Organisateur"), "c_nom_organisateur"},
        {QString(), "c_organisateur", Kind::Text, QStringLiteral("Code organisateur")},
        {QStringLiteral("date_tri"), "c_tri_finale"},
        {QStringLiteral("Date finale"), "c_date_finale"},
        {QString(), "c_facture", Kind::Text, QStringLiteral("Etat")},
        {QStringLiteral("N° Facture"), "c_num_facture"},
        {QStringLiteral("Date Facture"), "c_date_facture"},
        {QStringLiteral("tri_facture"), "c_tri_facture"},
        {QStringLiteral("index"), "c_index"},
        {QStringLiteral("Produits facturés"), "f_libelle"},
        {QStringLiteral("Quantité"), "f_qte", Kind::Number},
        {QString(), "f_pu", Kind::Amount, QStringLiteral("Prix unitaire")},
        {QStringLiteral("Montant"), "f_montant", Kind::Amount},
    };
    return columns;
}

namespace {

store::Condition journalCondition(const invoicing::SelectionCondition& selection,
                                  InvoicingStatus status) {
    return selection.competitions && statusCondition(status) && selection.lines;
}

}  // namespace

store::Query journalQuery(const invoicing::SelectionCondition& selection, InvoicingStatus status) {
    // The invoiced party: an entity code written on the line (a free
    // address) names it; otherwise the header's account, or the line's own
    // copy of it when the header is gone.
    const QString select =
        QStringLiteral("SELECT ") + sql::kCompetitionColumns +
        QStringLiteral(", f.f_num_facture AS c_num_facture, f.f_tri_date AS c_tri_facture, ") +
        sql::kLineDate +
        QStringLiteral(
            " AS c_date_facture, f.f_num_lig, f.f_article, f.f_libelle, f.f_qte, f.f_pu, "
            "f.f_montant, CASE WHEN trim(COALESCE(f.f_fact_entite, '')) <> '' THEN "
            "f.f_fact_entite ELSE COALESCE(e.ent_tiers_fact, f.f_tiers_fact) END AS "
            "f_tiers_fact") +
        sql::kCompetitionLines + QStringLiteral(" LEFT JOIN strentete e ON e.ent_fact_no = ") +
        sql::kLineHeaderNumber;
    return {select, journalCondition(selection, status),
            QStringLiteral("c_tri_facture, c_num_facture, f_num_lig")};
}

ReportTotals journalTotals(const store::Store& store,
                           const invoicing::SelectionCondition& selection, InvoicingStatus status) {
    const store::Condition where = journalCondition(selection, status);
    const auto row = store.selectOne(
        QStringLiteral("SELECT COUNT(*), CAST(COALESCE(SUM(f.f_montant), 0) AS BIGINT), "
                       "CAST(COALESCE(SUM(f.f_qte), 0) AS BIGINT)") +
            sql::kCompetitionLines + where.where(),
        where.params());
    ReportTotals t;
    if (row) {
        t.lines = row->value(0).toInt();
        t.amount = Money::fromVariant(row->value(1));
        t.quantity = row->value(2).toLongLong();
    }
    return t;
}

QByteArray journalCsv(const store::Store& store, const invoicing::SelectionCondition& selection,
                      InvoicingStatus status) {
    const ReportTotals totals = journalTotals(store, selection, status);
    return csvDocument(journalColumns(), store.select(journalQuery(selection, status)),
                       {totalsLine(journalColumns(), QStringLiteral("Total"), totals.quantity,
                                   totals.amount.cents())});
}

}  // namespace orve::accounting
