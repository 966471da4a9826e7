#pragma once

#include <QDate>
#include <QString>

// A demo installation's history at scale, to measure the reports on years
// of invoicing rather than on a handful of invoices.
namespace orve::shell {

struct ScaleReport {
    int seasons = 0;
    qint64 clubs = 0;
    qint64 competitions = 0;  // master and party rows
    qint64 invoices = 0;      // credit notes included
    qint64 creditNotes = 0;
    qint64 lines = 0;
    qint64 transferred = 0;  // invoices already marked transferred
    double seconds = 0;
};

// Adds to the demo installation in `dir` about `lines` invoice lines spread
// over the seasons 2018 up to the working season (in proportion to the days
// each has run): clubs, federal and private competitions with their invoiced
// party rows, licence, miscellaneous, league and regional-day invoices under
// each season's pseudo-competitions, credit notes cancelling some invoices,
// and the invoices of the older seasons already transferred to accounting.
// The same `lines` and `today` always give the same data.
ScaleReport addScaleHistory(const QString& dir, const QDate& today, qint64 lines);

// The value of --scale: a positive number of lines, or a Refusal.
qint64 scaleLines(const QString& option);
// What was added, in one line for the operator.
QString describe(const ScaleReport& report);

}  // namespace orve::shell
