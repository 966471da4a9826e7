#pragma once

#include <QString>

// The marks the invoice and competition tables carry, by name: each letter is
// written here only, so a row is never marked with a letter that nothing else
// reads.
namespace orve::invoicing {

// Where a competition row stands (c_facture).
inline const QString kMasterState = QStringLiteral("G");      // the competition itself
inline const QString kOpenState = QStringLiteral(" ");        // made, not calculated
inline const QString kCalculatedState = QStringLiteral("C");  // to invoice
inline const QString kWrittenState = QStringLiteral("A");     // invoice written, no document yet
inline const QString kInvoicedState = QStringLiteral("F");    // invoiced, document on disk
// A pseudo-competition: the home of hand-made invoices, never one number.
inline const QString kPseudoState = QStringLiteral("X");

// Yes and no of ent_fact_edt (document made), ent_envoi_mail and
// c_envoi_mail (mailed), ent_compta (transferred to accounting).
inline const QString kYes = QStringLiteral("O");
inline const QString kNo = QStringLiteral("N");
// c_edt_fact: the competition row's invoice has its document.
inline const QString kDocumentMade = QStringLiteral("OUI");
inline const QString kNoDocument = QStringLiteral("NON");

}  // namespace orve::invoicing
