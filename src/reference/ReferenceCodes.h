#pragma once

#include <QMap>
#include <QString>
#include <vector>

#include "store/Store.h"

namespace orve::reference {

// A record card: column name to the text shown (and typed) in its box.
using Card = QMap<QString, QString>;

// Every column of a row as text; nulls become empty boxes.
Card cardOf(const store::Row& row);
// The named columns of a card, in order, ready to be written.
store::Fields fieldsOf(const Card& card, const QStringList& columns);

// A number typed by the operator, zero-padded to a width ("5" gives "005",
// "0013" gives "013"); text that is not a number is kept, trimmed.
QString formatNumber(const QString& text, int width);
// Whether a trimmed text is made of digits only (and is not empty).
bool isWholeNumber(const QString& text);

// An item of a drop-down list: a key and its label joined by " # ".
struct ListItem {
    QString code;
    QString label;
    QString text() const { return code + QStringLiteral(" # ") + label; }
};
using ListItems = std::vector<ListItem>;
// First item of every list in which nothing is chosen yet.
inline const QString kChoose = QStringLiteral("Choisir");
// The key part of an item: what comes before "#", trimmed; empty for "Choisir".
QString itemCode(const QString& itemText);

}  // namespace orve::reference
