#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "accounting/CsvExport.h"
#include "accounting/SalesJournal.h"
#include "invoicing/SelectionFilter.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// Turnover statistics ("Les Statistiques de Ventes"): the invoiced lines of
// the selected competitions over a period, totalled by nature of competition,
// by league, by departmental committee or by inter-region, with the way down
// from a total to the lines behind it. Reads only; each grid is one grouped
// statement, no work table.
namespace orve::accounting {

enum class StatisticsMode { ByNature = 1, ByLeague = 2, ByCommittee = 3, ByInterRegion = 4 };

// The menu's mode "1".."4"; Refusal for anything else.
StatisticsMode statisticsModeOf(const QString& mode);
// The summary grid's caption in a mode.
QString summaryCaption(StatisticsMode mode);

// The period as sort dates "yyyymmdd", bounds included.
struct StatisticsPeriod {
    QString from;
    QString to;
};
// "01/09/" + (season − 1) and "31/08/" + season, as the date fields show them.
QString defaultPeriodStart(const QString& season);
QString defaultPeriodEnd(const QString& season);
// A date field left as its empty mask keeps the season's bound; anything
// else must be a date ("la date : … n'est pas valide").
StatisticsPeriod statisticsPeriod(const QString& season, const QString& fromText,
                                  const QString& toText);

struct StatisticsRequest {
    invoicing::SelectionCondition selection;
    StatisticsPeriod period;
    StatisticsMode mode = StatisticsMode::ByNature;
};

struct ChartBar {
    QString label;
    Money amount;
};

struct StatisticsResult {
    // The summary grid: (nature, article) totals in mode 1; one "CUM" row per
    // organiser in the other modes.
    store::Rows summary;
    ReportTotals totals;  // of the lines the mode keeps
    // One bar per nature (mode 1) or per organiser (other modes).
    std::vector<ChartBar> bars;
    // "aucune ligne de facturation correspond à votre demande" when nothing is kept.
    std::optional<QString> notice;
};

StatisticsResult computeStatistics(const store::Store& store, const StatisticsRequest& request);

// The articles behind a summary row (the second grid): in mode 1 the
// nature's total of that article, in the other modes the organiser's total
// of each article.
store::Rows articleTotals(const store::Store& store, const StatisticsRequest& request,
                          const store::Row& summaryRow);

// The invoice lines behind a row of the second grid (the third grid).
store::Query detailQuery(const StatisticsRequest& request, const store::Row& articleRow);

// The columns of the three grids; the summary has no article column.
const std::vector<ReportColumn>& summaryColumns();
const std::vector<ReportColumn>& detailColumns();

// The summary as a spreadsheet file: in the other modes each organiser's
// articles, then its "CUM" row; the grand total last.
QByteArray statisticsCsv(const store::Store& store, const StatisticsRequest& request);

}  // namespace orve::accounting
