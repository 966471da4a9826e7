#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <vector>

#include "invoicing/DocumentSettings.h"
#include "reference/Visibility.h"
#include "store/Store.h"

// Credit notes: each cancels one invoice by a new header of type "A" under the
// next number, with the invoice's parties and its lines negated. A credit note
// names the invoice it cancels (ent_fact_origine), so that the law's reference
// is printed on it and no invoice is ever cancelled twice.
namespace orve::invoicing {

// Why one invoice of a list cannot be cancelled, in the operator's words.
struct CreditNoteRefusal {
    QString invoice;
    QString message;
};

// A list of invoices sorted out before anything is written: those that can be
// cancelled, in the list's order and each once (the list shows an invoice on
// as many rows as it has lines), and the others with their reason. The screen
// shows the refusals and, once the operator agrees, issues the accepted ones.
struct CreditNoteCheck {
    std::vector<QString> accepted;
    std::vector<CreditNoteRefusal> refused;
    // The refusals, one a line.
    QString refusalText() const;
};

// "Aucune facture de sélectionnée" (Refusal) for an empty list. Each invoice
// is refused when it does not exist, has no line, is itself a credit note
// ("L'avoir N° X ne peut pas être annulé par un avoir") or already has one
// ("La facture N° X a déjà été annulée par l'avoir N° Y").
// An invoice issued by another level than the operator's is refused too,
// unless the operator works at the national level.
CreditNoteCheck checkCreditNotes(const store::Store& store, const std::vector<QString>& invoices,
                                 const QString& operatorLevel = reference::kNationalLevel);

struct IssuedCreditNote {
    QString invoice;     // the number cancelled
    QString creditNote;  // its credit note's number
};

// Told of each credit note once it is committed, with how many are done out
// of how many; returns false to stop before the next one.
using CreditNoteProgress = std::function<bool(const IssuedCreditNote& issued, int done, int total)>;

// Issues one credit note per invoice, in the list's order, one transaction
// each: a failure leaves the credit notes already made whole and nothing of
// the one in hand. When any invoice of the list is refused, nothing is
// written and the Refusal gives every reason. Each is checked again under the
// numbering lock, so another workstation cancelling the same invoice
// meanwhile stops the run there (Refusal) with the earlier ones kept; the
// caller knows them through `progress`.
//
// The invoice list's rows that show a cancelled invoice take the credit note's
// date (the workstation's own listing).
std::vector<IssuedCreditNote> issueCreditNotes(
    store::Store& store, const std::vector<QString>& invoices, const QDate& today,
    const CreditNoteProgress& progress = {},
    const QString& operatorLevel = reference::kNationalLevel);

// The credit-note operation as the invoice window and orve-batch both run it:
// each credit note is committed, then its document is written and marked
// before the next one is made. Told of each with its document's file; returns
// false to stop before the next. A document that cannot be written stops the
// run there (StoreError or Refusal): the credit notes made stay made, the one
// in hand without its document, which the "pdf" command or the window's
// printing makes again.
using CreditNoteDocumentProgress =
    std::function<bool(const IssuedCreditNote& issued, const QString& file, int done, int total)>;
std::vector<IssuedCreditNote> issueCreditNotesWithDocuments(
    store::Store& store, const DocumentSettings& settings, const std::vector<QString>& invoices,
    const QDate& today, const CreditNoteDocumentProgress& progress = {},
    const QString& operatorLevel = reference::kNationalLevel);

}  // namespace orve::invoicing
