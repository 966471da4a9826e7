#pragma once

#include <QDate>
#include <QString>
#include <optional>

#include "store/Money.h"

// Every text form of a date or a number that the screens, documents and files
// use. They live here, once, so that a journal and an invoice can never disagree.
namespace orve::format {

// "dd/mm/yyyy", as shown and stored for the operator.
QString displayDate(const QDate& d);
// "yyyymmdd", the companion sort key of a displayed date.
QString sortDate(const QDate& d);
// "yyyymm", the key of a month.
QString monthKey(const QDate& d);
// Reads "dd/mm/yyyy" (also "d/m/yyyy"); nothing for an impossible date.
std::optional<QDate> parseDisplayDate(const QString& text);
// "dd/mm/yyyy" rearranged as "yyyymmdd" character by character (last four,
// middle two, first two), as the sort keys of masked date fields are made.
QString displayToSortKey(const QString& display);
// The empty date mask.
inline const QString kEmptyDateMask = QStringLiteral("__/__/____");

// "# ##0.00" and "### ##0.00": grouped by three with a blank, decimal comma.
QString amount(Money m);
// The same followed by " €".
QString amountEuro(Money m);
// "##0.00" + " €": no grouping.
QString amountEuroPlain(Money m);
// "### ##0": grouped whole number.
QString count(qint64 n);
// "###0": plain whole number.
QString countPlain(qint64 n);
// Decimal comma, no grouping, no currency: amounts written to exchange files.
QString fileAmount(Money m);
// The absolute value with at least `integerDigits` digits before the
// separator, zero-padded: "00012.50" for 12,50 with 5 digits and '.'.
QString zeroPaddedAmount(Money m, int integerDigits, QChar separator);

// The numeric value of the leading digits of a text (blanks skipped, a sign
// allowed): "41a" is 41, "abc" is 0.
qint64 leadingNumber(const QString& text);
// A number zero-padded to a width ("000", "00000000"); longer numbers stay whole.
QString zeroPad(qint64 n, int width);
// A code zero-padded when it is a number ("5" gives "005"); any other text
// is returned trimmed, as typed.
QString padCode(const QString& text, int width);
// The numeric value of a text zero-padded: "41a" gives "000041" at width 6.
QString padValue(const QString& text, int width);

// A value read from a file or typed, as a message repeats it: cut at 200
// characters with "…", so a garbage line cannot bury the message itself.
QString echoed(const QString& value);

}  // namespace orve::format
