#pragma once

#include <QMap>
#include <QString>
#include <vector>

#include "app/ListItems.h"
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

// Refusals naming the field by its caption on the card, so that a window and
// orve-batch refuse alike: a field of digits holding anything else ("41O13A"
// is not account 41), and a name left blank.
// "Le champ « Code comptable » n'accepte que des chiffres : « 41O13A »."
void requireDigits(const QString& caption, const QString& text);
// "Le champ « Nom du Club » est obligatoire."
void requireText(const QString& caption, const QString& text);

// The values of codification list 1 to 5 (strcodification), in order: what
// a competition's c_cod1 to c_cod5 hold and the panels filter on.
QStringList codificationValues(const store::Store& store, int list);

// Drop-down list items are the program's own, one level down.
using app::itemCode;
using app::kChoose;
using app::ListItem;
using app::ListItems;

}  // namespace orve::reference
