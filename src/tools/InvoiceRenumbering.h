#pragma once

#include <QDate>
#include <QString>

#include "store/Store.h"

// Moving the invoice numbering forward (a new year's "2027000001", say). No
// counter exists: the numbering continues from the highest header, so a
// placeholder header just below the wanted number makes the next invoice,
// made on any workstation, take exactly that number.
namespace orve::tools {

inline const QString kRenumberingLabel = QStringLiteral("Changement de numerotation");
inline const QString kRenumberingRefused =
    QStringLiteral("Impossible, le prochain N° doit être supérieur au dernier utilisé !!!");
// What the window shows as the last number while no invoice exists.
inline const QString kNoInvoiceYet = QStringLiteral("000001");
// Numbers in use have ten digits: the year and a six-digit sequence.
inline constexpr int kLongestInvoiceNumber = 10;

// The highest invoice number by its numeric value, as stored ("000001" when
// there is none).
QString lastInvoiceNumber(const store::Store& store);

struct RenumberingResult {
    QString nextNumber;   // what the next invoice will take
    QString placeholder;  // the header written; empty when the numbering already led there
    // "Traitement termine" and the number the next invoice takes.
    QString message() const;
};

// Writes the placeholder header (number = typed − 1, "Changement de
// numerotation", today's dates, already mailed and transferred: "O", "O"; no
// line, no customer). Refuses a number that is not above the last one
// (checked again under the numbering lock, so an invoice made meanwhile on
// another workstation counts). When the typed number is the one the
// numbering gives anyway, nothing needs writing. One transaction.
RenumberingResult renumberInvoices(store::Store& store, const QString& typedNext,
                                   const QDate& today);

}  // namespace orve::tools
