#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "store/Store.h"

// Reports saved for a spreadsheet: UTF-8 with a byte order mark, semicolons
// and decimal commas, so that a French spreadsheet opens them as they are.
namespace orve::accounting {

// A column of a report, as its grid shows it and as its file writes it.
struct ReportColumn {
    enum class Kind { Text, Number, Amount };
    QString caption;  // the grid's caption; some columns have none
    QString field;
    Kind kind = Kind::Text;
    QString fileCaption;  // the file's header when the grid has none
    QString header() const { return caption.isEmpty() ? fileCaption : caption; }
};

// The whole file: header line, one line per row (amounts in cents written
// "1234,50", counts as numbers, text beginning with a formula sign behind an
// apostrophe), then the trailer lines (totals), CRLF ends.
QByteArray csvDocument(const std::vector<ReportColumn>& columns, const store::Rows& rows,
                       const std::vector<QStringList>& trailer = {});

// A totals line under the columns: the label first, the quantity under the
// quantity column and the amount under the amount column.
QStringList totalsLine(const std::vector<ReportColumn>& columns, const QString& label,
                       qint64 quantity, qint64 amountCents,
                       const QString& quantityField = QStringLiteral("f_qte"),
                       const QString& amountField = QStringLiteral("f_montant"));

// One field as a spreadsheet reads it back: quoted when it holds a
// separator, a quote or a line break.
QString csvField(const QString& text);

// Writes the file in one piece (a temporary beside it, then renamed), or
// throws with the French reason and leaves any older file as it was.
void writeReportFile(const QString& path, const QByteArray& content);

}  // namespace orve::accounting
