// What a transfer reads: the lines the grid lists with their accounts, the
// clerk's warnings before writing, and the file's own statements, which sum
// the national lines in the store so that only the lines of the file travel.
#include "accounting/TransferStatements.h"

#include <QStringList>
#include <optional>

#include "accounting/AccountingConstants.h"
#include "accounting/AccountingTransfer.h"
#include "accounting/ReportSql.h"
#include "app/OperatorRoles.h"

namespace orve::accounting {

using Kind = ReportColumn::Kind;

namespace {

// The nature's tariff of a line's article (strtarif, the earliest first).
QString lineTariff(const QString& column) {
    return QStringLiteral(
               "(SELECT t.%1 FROM strtarif t WHERE t.t_nature = f.f_nature AND t.t_article = "
               "f.f_article ORDER BY t.t_tri_deb LIMIT 1)")
        .arg(column);
}

// The accounts of a line. National: the tariff's account alone (a line
// without one is written without account, and the clerk is told before);
// its second code, else the line's nature. League: the article's account and,
// for licences and miscellaneous articles, its analysis code; any other
// article takes the line's nature.
QString accountColumns(TransferLayout layout) {
    if (layout == TransferLayout::National)
        return QStringLiteral(
                   "COALESCE(%1, '') AS t_kvarn, "
                   "COALESCE(NULLIF(%2, ''), NULLIF(f.f_nature, ''), '%3') AS t_jkv")
            .arg(lineTariff(QStringLiteral("t_kvarn")), lineTariff(QStringLiteral("t_jkv")),
                 kDefaultAnalysisCode);
    return QStringLiteral(
               "COALESCE(NULLIF(a.a_cpta, ''), '%1') AS t_kvarn, CASE WHEN a.a_nature IN ('%2', "
               "'%3') THEN COALESCE(NULLIF(a.a_analytique, ''), '%4') ELSE "
               "COALESCE(NULLIF(f.f_nature, ''), '%4') END AS t_jkv")
        .arg(kDefaultSalesAccount, kLicenceNature, kMiscNature, kDefaultAnalysisCode);
}

// Headers of the selected competitions not yet transferred, and all their
// lines, in one statement.
const QString kTransferFrom =
    QStringLiteral(
        " FROM strcompetition c JOIN strentete e ON e.ent_c_index = c.c_index "
        "JOIN strfacture f ON f.f_num_facture = ") +
    sql::kPaddedHeaderNumber;

QString text(const store::Row& r, int column) { return r.value(column).toString(); }

std::optional<QString> optionalText(const store::Row& r, int column) {
    if (r.isNull(column)) return std::nullopt;
    return r.value(column).toString();
}

QString linesFrom(const store::Condition& where) {
    return kTransferFrom + QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article") +
           where.where();
}

// National lines of the same invoice, account and code are summed here, and
// only here: the lines with their accounts first (each account read once),
// then grouped. Codes group without regard to case, as they compare
// everywhere (the server's citext did so already); the file writes one of
// the spellings.
QString nationalStatement(const store::Condition& where) {
    return QStringLiteral(
               "WITH l AS MATERIALIZED (SELECT f.f_num_facture AS c_num_facture, "
               "c.c_saison, ") +
           sql::kLineDate +
           QStringLiteral(
               " AS c_date_facture, e.ent_fact_echeance, e.ent_tiers_fact, "
               "e.ent_c_index, c.c_numero, c.c_nature, c.c_cod2, c.c_intitule, "
               "f.f_montant, e.ent_fact_no, ") +
           accountColumns(TransferLayout::National) + linesFrom(where) +
           QStringLiteral(
               ") SELECT COALESCE(MIN(c_saison), '') || substr(c_num_facture, "
               "length(c_num_facture) - 3) AS x_invoice, MIN(c_date_facture) AS x_date, "
               "MIN(ent_fact_echeance) AS x_due, trim(MIN(ent_tiers_fact)) AS x_party, "
               "MIN(ent_c_index) AS x_index, MIN(c_numero) AS x_tournament, MIN(c_nature) AS "
               "x_nature, MIN(c_cod2) AS x_code2, MIN(c_intitule) AS x_title, "
               "CAST(SUM(f_montant) AS BIGINT) AS x_amount, MIN(t_kvarn) AS x_account, "
               "MIN(t_jkv) AS x_analysis, MIN(ent_fact_no) AS x_header FROM l GROUP BY "
               "c_num_facture, lower(t_kvarn), lower(t_jkv) ORDER BY c_num_facture, x_account, "
               "x_analysis");
}

QString leagueStatement(const store::Condition& where) {
    return QStringLiteral("SELECT f.f_num_facture AS c_num_facture, ") + sql::kLineDate +
           QStringLiteral(
               " AS c_date_facture, e.ent_fact_echeance, f.f_tiers_fact, f.f_montant, ") +
           accountColumns(TransferLayout::League) + QStringLiteral(", e.ent_fact_no") +
           linesFrom(where) + QStringLiteral(" ORDER BY c_num_facture, f.f_num_lig");
}

// A statement's columns, found once by name rather than on every row.
class Columns {
  public:
    explicit Columns(const store::Rows& rows) : m_first(rows.empty() ? nullptr : &rows.front()) {}
    int operator()(const char* name) const {
        return m_first ? m_first->indexOf(QLatin1String(name)) : -1;
    }

  private:
    const store::Row* m_first;
};

}  // namespace

store::Condition transferCondition(const invoicing::SelectionCondition& s, const QString& level) {
    store::Condition c = s.competitions;
    // Each level transfers into its own books what it issued.
    if (app::isNationalCode(level))
        c &= store::Condition(QStringLiteral("(e.ent_niveau IS NULL OR trim(e.ent_niveau) = '' OR "
                                             "upper(e.ent_niveau) = upper(?))"),
                              {app::kNationalCode});
    else
        c &= store::Condition(QStringLiteral("upper(e.ent_niveau) = upper(?)"), {level.trimmed()});
    c &= store::Condition(
        QStringLiteral("COALESCE(e.ent_compta, '%1') <> '%2'").arg(kNotTransferred, kTransferred));
    // The month chooses whole invoices, by their date.
    if (s.monthKey != invoicing::kNoMonth)
        c &= store::Condition(QStringLiteral("substr(e.ent_fact_tri, 1, 6) = ?"), {s.monthKey});
    if (!s.invoiceNumber.isEmpty())
        c &= store::Condition(QStringLiteral("e.ent_fact_no = ?"), {s.invoiceNumber});
    return c;
}

std::vector<NationalLine> nationalFileLines(const store::Store& store,
                                            const store::Condition& where) {
    const store::Rows rows = store.select(nationalStatement(where), where.params());
    const Columns at(rows);
    const int invoice = at("x_invoice"), date = at("x_date"), due = at("x_due"),
              party = at("x_party"), index = at("x_index"), tournament = at("x_tournament"),
              nature = at("x_nature"), code2 = at("x_code2"), title = at("x_title"),
              amount = at("x_amount"), account = at("x_account"), analysis = at("x_analysis"),
              header = at("x_header");
    std::vector<NationalLine> lines;
    lines.reserve(rows.size());
    for (const store::Row& r : rows) {
        NationalLine l;
        l.invoiceKey = text(r, invoice);
        l.invoiceDate = text(r, date);
        // The statement joins every line to its header.
        l.dueDate = text(r, due);
        l.customerAccount = text(r, party);
        l.competitionIndex = text(r, index);
        l.tournament = text(r, tournament);
        l.nature = text(r, nature);
        l.code2 = text(r, code2);
        l.title = text(r, title);
        l.amount = Money::fromVariant(r.value(amount));
        l.account = text(r, account);
        l.analysis = text(r, analysis);
        l.headerNumber = optionalText(r, header);
        lines.push_back(std::move(l));
    }
    return lines;
}

std::vector<LeagueLine> leagueFileLines(const store::Store& store, const store::Condition& where) {
    const store::Rows rows = store.select(leagueStatement(where), where.params());
    const Columns at(rows);
    const int number = at("c_num_facture"), date = at("c_date_facture"),
              due = at("ent_fact_echeance"), party = at("f_tiers_fact"), amount = at("f_montant"),
              account = at("t_kvarn"), analysis = at("t_jkv"), header = at("ent_fact_no");
    std::vector<LeagueLine> lines;
    lines.reserve(rows.size());
    for (const store::Row& r : rows) {
        LeagueLine l;
        l.number = text(r, number);
        l.invoiceDate = text(r, date);
        l.dueDate = text(r, due);
        l.billedParty = text(r, party);
        l.amount = Money::fromVariant(r.value(amount));
        l.account = text(r, account);
        l.analysis = text(r, analysis);
        l.headerNumber = optionalText(r, header);
        lines.push_back(std::move(l));
    }
    return lines;
}

const std::vector<ReportColumn>& transferColumns() {
    static const std::vector<ReportColumn> columns{
        {QStringLiteral("N° Facture"), "c_num_facture"},
        {QStringLiteral("Ligne"), "c_fact_ir"},
        {QStringLiteral("Date Facture"), "c_date_facture"},
        {QStringLiteral("Date Echeance"), "c_date_enreg"},
        {QStringLiteral("Tiers facturé"), "f_tiers_fact"},
        {QStringLiteral("Saison"), "c_saison"},
        {QStringLiteral("index"), "c_index"},
        {QStringLiteral("Intitulé de la compétiton"), "c_intitule"},
        {QStringLiteral("Nature"), "c_nature"},
        {QStringLiteral("article"), "f_article"},
        {QStringLiteral("Produits facturés"), "f_libelle"},
        {QStringLiteral("Quantité"), "f_qte", Kind::Number},
        {QString(), "f_pu", Kind::Amount, QStringLiteral("Prix unitaire")},
        {QStringLiteral("Montant"), "f_montant", Kind::Amount},
        {QStringLiteral("Compte"), "t_kvarn"},
        {QStringLiteral("Analytique"), "t_jkv"},
    };
    return columns;
}

store::Query transferSelectionQuery(const invoicing::SelectionCondition& selection,
                                    TransferLayout layout, const QString& level) {
    const QString select =
        QStringLiteral("SELECT ") + sql::kCompetitionColumns +
        QStringLiteral(
            ", f.f_num_facture AS c_num_facture, f.f_num_lig AS c_fact_ir, "
            "f.f_tri_date AS c_tri_facture, e.ent_fact_echeance AS c_date_enreg, ") +
        sql::kLineDate +
        QStringLiteral(
            " AS c_date_facture, f.f_article, substr(f.f_libelle, 1, 50) AS f_libelle, "
            "f.f_qte, f.f_pu, f.f_montant, f.f_tiers_fact, f.f_nature, ") +
        accountColumns(layout) +
        QStringLiteral(", e.ent_fact_no, e.ent_tiers_fact, e.ent_c_index") + kTransferFrom +
        QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article");
    return {select, transferCondition(selection, level),
            QStringLiteral("c_num_facture, c_fact_ir")};
}

ReportTotals transferSelectionTotals(const store::Store& store,
                                     const invoicing::SelectionCondition& selection,
                                     const QString& level) {
    const store::Condition where = transferCondition(selection, level);
    const auto row =
        store.selectOne(QStringLiteral("SELECT COUNT(*), CAST(COALESCE(SUM(f.f_montant), 0) AS "
                                       "BIGINT), CAST(COALESCE(SUM(f.f_qte), 0) AS BIGINT)") +
                            kTransferFrom + where.where(),
                        where.params());
    ReportTotals t;
    if (row) {
        t.lines = row->value(0).toInt();
        t.amount = Money::fromVariant(row->value(1));
        t.quantity = row->value(2).toLongLong();
    }
    return t;
}

std::vector<LinesWithoutAccount> linesWithoutAccount(const store::Store& store,
                                                     const invoicing::SelectionCondition& selection,
                                                     const QString& level) {
    const QString account = lineTariff(QStringLiteral("t_kvarn"));
    const store::Condition where =
        transferCondition(selection, level) &&
        store::Condition(QStringLiteral("COALESCE(trim(%1), '') = ''").arg(account));
    std::vector<LinesWithoutAccount> out;
    for (const auto& r :
         store.select(QStringLiteral("SELECT f.f_article, f.f_nature, COUNT(*)") + kTransferFrom +
                          where.where() +
                          QStringLiteral(" GROUP BY f.f_article, f.f_nature ORDER BY f.f_article, "
                                         "f.f_nature"),
                      where.params()))
        out.push_back(
            {r.value(0).toString().trimmed(), r.value(1).toString().trimmed(), r.value(2).toInt()});
    return out;
}

QString linesWithoutAccountText(const std::vector<LinesWithoutAccount>& lines) {
    int total = 0;
    QStringList which;
    for (const auto& l : lines) {
        total += l.lines;
        which << QStringLiteral("article %1, nature %2 : %3 ligne(s)")
                     .arg(l.article, l.nature.isEmpty() ? QStringLiteral("(aucune)") : l.nature)
                     .arg(l.lines);
    }
    return QStringLiteral(
               "%1 ligne(s) à transférer n'ont pas de compte KVARN dans les tarifs ; elles "
               "seront écrites sans compte :\n%2\nComplétez les tarifs de ces articles pour "
               "qu'elles en aient un.")
        .arg(total)
        .arg(which.join(QChar('\n')));
}

}  // namespace orve::accounting
