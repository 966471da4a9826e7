#include "accounting/TurnoverStatistics.h"

#include <QMap>

#include "accounting/AccountingConstants.h"
#include "accounting/ReportSql.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::accounting {

using Kind = ReportColumn::Kind;

namespace {

bool isEmptyDate(const QString& text) {
    QString t = text;
    t.remove(QChar('_')).remove(QChar('/')).remove(QChar(' '));
    return t.isEmpty();
}

QString sortKeyOf(const QString& text) {
    const auto d = format::parseDisplayDate(text);
    if (!d)
        throw Refusal(QStringLiteral("la date : ") + text.trimmed() +
                      QStringLiteral(" n'est pas valide"));
    return format::sortDate(*d);
}

int seasonNumber(const QString& season) {
    bool ok = false;
    const int s = season.trimmed().toInt(&ok);
    if (!ok || s < 1000 || s > 9999)
        throw Refusal(QStringLiteral("La saison « %1 » n'est pas une année.")
                          .arg(format::echoed(season.trimmed())));
    return s;
}

// A summary row's filler columns: "-" for texts, the empty date for dates,
// "00000000" for sort dates; the key columns and the totals come after.
QString fillers(const QStringList& except) {
    static const QStringList texts{"c_saison",           "c_type",        "c_formule",
                                   "f_tiers_fact",       "c_numero",      "c_organisateur",
                                   "c_facture",          "c_num_facture", "c_index",
                                   "c_codification",     "c_cod1",        "c_cod3",
                                   "c_intitule",         "c_nature",      "c_cod4",
                                   "c_nom_organisateur", "f_article",     "f_libelle"};
    QStringList out;
    for (const QString& t : texts)
        if (!except.contains(t)) out << QStringLiteral("'%1' AS %2").arg(kFiller, t);
    out << QStringLiteral("'%1' AS c_date_finale").arg(format::kEmptyDateMask)
        << QStringLiteral("'%1' AS c_date_facture").arg(format::kEmptyDateMask)
        << QStringLiteral("'%1' AS c_tri_finale").arg(kNoSortDate)
        << QStringLiteral("'%1' AS c_tri_facture").arg(kNoSortDate)
        << QStringLiteral("NULL AS f_pu");
    return out.join(QStringLiteral(", "));
}

// The server sums whole numbers as decimals: cast back, so that amounts stay
// cents and sort as numbers.
const QString kSums = QStringLiteral(
    "CAST(SUM(f.f_qte) AS BIGINT) AS f_qte, CAST(SUM(f.f_montant) AS BIGINT) AS f_montant, "
    "COUNT(*) AS x_lignes");

// The lines of the panel's competitions and of the period: all of them go
// into the totals, whatever the mode.
store::Condition periodLines(const StatisticsRequest& r) {
    store::Condition c = r.selection.competitions && r.selection.lines;
    c &= store::Condition(QStringLiteral("f.f_tri_date >= ? AND f.f_tri_date <= ?"),
                          {r.period.from, r.period.to});
    return c;
}

// The lines the summary groups: those of the period, of the mode's organisers.
store::Condition keptLines(const StatisticsRequest& r) {
    store::Condition c = periodLines(r);
    switch (r.mode) {
        case StatisticsMode::ByLeague:
            c &= store::Condition(QStringLiteral("upper(substr(c.c_cod4, 1, 1)) = 'R'"));
            break;
        case StatisticsMode::ByCommittee:
            c &= store::Condition(QStringLiteral("c.c_cod3 = 'DE'"));
            break;
        case StatisticsMode::ByInterRegion:
            c &= store::Condition(QStringLiteral("c.c_cod3 = 'IR'"));
            break;
        case StatisticsMode::ByNature:
            break;
    }
    return c;
}

// Mode 1: one row per nature and article. A private competition's rows say so.
QString natureArticleSelect() {
    return QStringLiteral("SELECT ") +
           fillers({"c_intitule", "c_nature", "f_article", "f_libelle"}) +
           QStringLiteral(
               ", CASE WHEN c.c_nature = '%1' THEN '%2' ELSE '%3' END AS c_intitule, "
               "c.c_nature AS c_nature, f.f_article AS f_article, "
               "substr(COALESCE(MIN(a.a_libelle), MIN(f.f_libelle)), 1, 50) AS f_libelle, ")
               .arg(kPrivateNature, kPrivateTitle, kFiller) +
           kSums + sql::kCompetitionLines +
           QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article");
}

// Other modes: one row per organiser and article; the organiser shows in the
// grid's organiser column.
QString organiserArticleSelect() {
    return QStringLiteral("SELECT ") +
           fillers({"c_cod4", "c_nom_organisateur", "f_article", "f_libelle"}) +
           QStringLiteral(
               ", c.c_cod4 AS c_cod4, c.c_cod4 AS c_nom_organisateur, "
               "f.f_article AS f_article, "
               "substr(COALESCE(MIN(a.a_libelle), MIN(f.f_libelle)), 1, 50) AS "
               "f_libelle, ") +
           kSums + sql::kCompetitionLines +
           QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article");
}

// Other modes: one "CUM" row per organiser over all its articles.
QString organiserTotalSelect() {
    return QStringLiteral("SELECT ") +
           fillers({"c_cod1", "c_intitule", "c_facture", "c_cod4", "c_nom_organisateur"}) +
           QStringLiteral(
               ", '%1' AS c_cod1, '%2' AS c_intitule, '%3' AS c_facture, "
               "c.c_cod4 AS c_cod4, c.c_cod4 AS c_nom_organisateur, ")
               .arg(kCumulative, kCumulativeTitle, kCumulativeState) +
           kSums + sql::kCompetitionLines;
}

store::Rows grouped(const store::Store& store, const QString& select, const store::Condition& where,
                    const QString& groupBy, const QString& orderBy) {
    return store.select(select + where.where() + QStringLiteral(" GROUP BY ") + groupBy +
                            QStringLiteral(" ORDER BY ") + orderBy,
                        where.params());
}

QString text(const store::Row& r, const char* field) {
    return r.value(QLatin1String(field)).toString();
}

}  // namespace

StatisticsMode statisticsModeOf(const QString& mode) {
    const QString m = mode.trimmed();
    if (m == QStringLiteral("1")) return StatisticsMode::ByNature;
    if (m == QStringLiteral("2")) return StatisticsMode::ByLeague;
    if (m == QStringLiteral("3")) return StatisticsMode::ByCommittee;
    if (m == QStringLiteral("4")) return StatisticsMode::ByInterRegion;
    throw Refusal(
        QStringLiteral("Mode de statistiques inconnu : %1 (1 à 4).").arg(format::echoed(m)));
}

QString summaryCaption(StatisticsMode mode) {
    switch (mode) {
        case StatisticsMode::ByNature:
            return QStringLiteral(
                "STATISTIQUES DES VENTES - RECAPITULATIF PAR NATURE DE COMPETITIONS");
        case StatisticsMode::ByLeague:
            return QStringLiteral("STATISTIQUES DES VENTES - RECAPITULATIF PAR LIGUES");
        case StatisticsMode::ByCommittee:
            return QStringLiteral("STATISTIQUES DES VENTES - RECAPITULATIF PAR DEPARTEMENTS");
        case StatisticsMode::ByInterRegion:
            return QStringLiteral("STATISTIQUES DES VENTES - RECAPITULATIF PAR INTER REGION");
    }
    return {};
}

QString defaultPeriodStart(const QString& season) {
    return QStringLiteral("01/09/%1").arg(seasonNumber(season) - 1);
}

QString defaultPeriodEnd(const QString& season) {
    return QStringLiteral("31/08/%1").arg(seasonNumber(season));
}

StatisticsPeriod statisticsPeriod(const QString& season, const QString& fromText,
                                  const QString& toText) {
    const int s = seasonNumber(season);
    StatisticsPeriod p{QString::number(s - 1) + QStringLiteral("0901"),
                       QString::number(s) + QStringLiteral("0831")};
    if (!isEmptyDate(fromText)) p.from = sortKeyOf(fromText);
    if (!isEmptyDate(toText)) p.to = sortKeyOf(toText);
    return p;
}

StatisticsResult computeStatistics(const store::Store& store, const StatisticsRequest& request) {
    StatisticsResult result;
    const store::Condition where = keptLines(request);
    if (request.mode == StatisticsMode::ByNature) {
        result.summary =
            grouped(store, natureArticleSelect(), where, QStringLiteral("c.c_nature, f.f_article"),
                    QStringLiteral("c_nature, f_article"));
    } else {
        result.summary = grouped(store, organiserTotalSelect(), where, QStringLiteral("c.c_cod4"),
                                 QStringLiteral("c_nature, c_cod4"));
    }
    // The totals are those of every line of the period, before the mode
    // keeps its organisers' groups.
    const store::Condition period = periodLines(request);
    if (const auto sums = store.selectOne(
            QStringLiteral("SELECT COUNT(*), CAST(COALESCE(SUM(f.f_montant), 0) AS BIGINT), "
                           "CAST(COALESCE(SUM(f.f_qte), 0) AS BIGINT)") +
                sql::kCompetitionLines + period.where(),
            period.params())) {
        result.totals.lines = sums->value(0).toInt();
        result.totals.amount = Money::fromVariant(sums->value(1));
        result.totals.quantity = sums->value(2).toLongLong();
    }
    // One bar per nature (its articles added up) or per organiser.
    QString barKey;
    for (const auto& row : result.summary) {
        const Money amount = Money::fromVariant(row.value(QStringLiteral("f_montant")));
        const QString key =
            request.mode == StatisticsMode::ByNature ? text(row, "c_nature") : text(row, "c_cod4");
        const QString label = key.trimmed().isEmpty() ? QStringLiteral("(sans code)") : key;
        if (!result.bars.empty() && barKey.compare(key, Qt::CaseInsensitive) == 0)
            result.bars.back().amount += amount;
        else
            result.bars.push_back({label, amount});
        barKey = key;
    }
    if (result.totals.lines == 0) result.notice = kNothingKept;
    return result;
}

store::Rows articleTotals(const store::Store& store, const StatisticsRequest& request,
                          const store::Row& summaryRow) {
    store::Condition where = keptLines(request);
    if (request.mode == StatisticsMode::ByNature) {
        where &= store::Condition(QStringLiteral("c.c_nature = ? AND f.f_article = ?"),
                                  {text(summaryRow, "c_nature"), text(summaryRow, "f_article")});
        return grouped(store, natureArticleSelect(), where,
                       QStringLiteral("c.c_nature, f.f_article"),
                       QStringLiteral("c_nature, f_article"));
    }
    where &= store::Condition(QStringLiteral("c.c_cod4 = ?"), {text(summaryRow, "c_cod4")});
    return grouped(store, organiserArticleSelect(), where, QStringLiteral("c.c_cod4, f.f_article"),
                   QStringLiteral("f_article"));
}

store::Query detailQuery(const StatisticsRequest& request, const store::Row& articleRow) {
    store::Condition where = keptLines(request);
    if (request.mode == StatisticsMode::ByNature)
        where &= store::Condition(QStringLiteral("c.c_nature = ?"), {text(articleRow, "c_nature")});
    else
        where &= store::Condition(QStringLiteral("c.c_cod4 = ?"), {text(articleRow, "c_cod4")});
    where &= store::Condition(QStringLiteral("f.f_article = ?"), {text(articleRow, "f_article")});
    const QString select =
        QStringLiteral("SELECT ") + sql::kCompetitionColumns +
        QStringLiteral(", f.f_num_facture AS c_num_facture, f.f_tri_date AS c_tri_facture, ") +
        sql::kLineDate +
        QStringLiteral(
            " AS c_date_facture, f.f_num_lig, f.f_article, f.f_libelle, f.f_qte, "
            "f.f_pu, f.f_montant, f.f_tiers_fact") +
        sql::kCompetitionLines;
    return {select, where, QStringLiteral("c_codification, c_num_facture, f_num_lig")};
}

const std::vector<ReportColumn>& summaryColumns() { return journalColumns(); }

const std::vector<ReportColumn>& detailColumns() {
    static const std::vector<ReportColumn> columns = [] {
        std::vector<ReportColumn> c = journalColumns();
        for (auto it = c.begin(); it != c.end(); ++it)
            if (it->field == QStringLiteral("f_libelle")) {
                c.insert(it, {QStringLiteral("article"), "f_article"});
                break;
            }
        return c;
    }();
    return columns;
}

QByteArray statisticsCsv(const store::Store& store, const StatisticsRequest& request) {
    const StatisticsResult result = computeStatistics(store, request);
    const bool byNature = request.mode == StatisticsMode::ByNature;
    const std::vector<ReportColumn> columns{
        byNature ? ReportColumn{QStringLiteral("Nature"), "c_nature"}
                 : ReportColumn{QStringLiteral("Organisateur"), "c_cod4"},
        {QStringLiteral("Intitulé"), "c_intitule"},
        {QStringLiteral("Article"), "f_article"},
        {QStringLiteral("Produits facturés"), "f_libelle"},
        {QStringLiteral("Quantité"), "f_qte", Kind::Number},
        {QStringLiteral("Montant"), "f_montant", Kind::Amount},
    };
    store::Rows rows;
    if (byNature) {
        rows = result.summary;
    } else {
        // Each organiser's articles, then its cumulative row.
        const store::Rows articles =
            grouped(store, organiserArticleSelect(), keptLines(request),
                    QStringLiteral("c.c_cod4, f.f_article"), QStringLiteral("c_cod4, f_article"));
        size_t next = 0;
        for (const auto& total : result.summary) {
            const QString key = text(total, "c_cod4");
            while (next < articles.size() &&
                   text(articles[next], "c_cod4").compare(key, Qt::CaseInsensitive) == 0)
                rows.push_back(articles[next++]);
            rows.push_back(total);
        }
    }
    return csvDocument(columns, rows,
                       {totalsLine(columns, QStringLiteral("Total"), result.totals.quantity,
                                   result.totals.amount.cents())});
}

}  // namespace orve::accounting
