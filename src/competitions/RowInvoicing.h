#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <vector>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Money.h"
#include "store/Refusal.h"
#include "store/Store.h"

// What every batch that invoices competition rows shares: one invoice per
// row in state "C", its header made out to one party of the reference
// tables, written under the numbering lock, the row "A", then the documents
// drawn on every core and the row "F" once its file is on disk. The
// competition window (party rows) and the national championship and private
// windows (master rows) differ only in how they find the party and the lines.
namespace orve::competitions {

// Tariff articles of the fees.
inline const QString kEntryFeeArticle = QStringLiteral("99999991");
inline const QString kLineFeeArticle = QStringLiteral("99999990");

// Called between whole invoices with "done of total"; false cancels.
using InvoicingProgress = std::function<bool(int done, int total)>;

struct InvoicingOutcome {
    std::vector<QString> numbers;   // invoices written, in order
    std::vector<QString> files;     // documents written
    std::vector<QString> finished;  // invoices an interrupted run had left, finished first
    std::vector<QString> lost;      // rows taken away meanwhile (no longer "C"), not invoiced
    bool cancelled = false;
};

// A run stopped by a failure (disk full, server gone, …): the invoices it had
// written stay written; the message says what was committed, what was not,
// and what the next run (or the opening of the window) finishes.
class InterruptedRun : public OperatorMessage {
  public:
    InterruptedRun(const QString& message, InvoicingOutcome outcome)
        : OperatorMessage(message), m_outcome(std::move(outcome)) {}
    const InvoicingOutcome& outcome() const { return m_outcome; }

  private:
    InvoicingOutcome m_outcome;
};

// One invoice to write, prepared before anything is written so that a row
// whose party is missing refuses the run with nothing half done.
struct PreparedInvoice {
    QString rowIndex;  // c_index of the row invoiced
    QString title;     // ent_fact_competition
    QString codification;
    QString nature;
    invoicing::InvoiceParty party;
    std::vector<invoicing::InvoiceLine> lines;
    // What the document prints of the row itself.
    QString competitionDate, season, code1, code2;
};

// The end-of-month / 15th-of-next-month due date of an invoice made on `today`.
QDate endOfMonthDueDate(const QDate& today);

// The season's price of a fee article; the given nature's first, as tariffs
// are kept by nature. 0 when the season has none.
Money seasonTariff(const store::Store& store, const QString& article, const QString& season,
                   const QString& nature);

// A party of the reference tables as an invoice header names it, read from
// its own table: a league ("re_code", at its president's or its CSR's as it
// asked), a club ("club_code"), a committee (`code` is "CD" + its number).
// Refusal naming `rowName` when the party does not exist.
invoicing::InvoiceParty leagueInvoiceParty(const store::Store& store, const QString& code,
                                           const QString& rowName);
invoicing::InvoiceParty clubInvoiceParty(const store::Store& store, const QString& code,
                                         const QString& rowName);
invoicing::InvoiceParty committeeInvoiceParty(const store::Store& store, const QString& code,
                                              const QString& rowName);
// A bowling centre by its account, at its invoicing address (b_fac_…).
invoicing::InvoiceParty centreInvoiceParty(const store::Store& store, const QString& account,
                                           const QString& rowName);

class RunLease;

// What a run's closing message adds to the invoices it counts: the invoices
// of an interrupted run it finished first, the rows another workstation took
// meanwhile. Empty when neither.
QString outcomeNotes(const InvoicingOutcome& outcome);

// The party code at the head of a party row's name: "CL13001 - Bowling Club
// Phocéen" gives "CL13001".
QString partyCodeOf(const QString& partyName);

// Writes one invoice per prepared row still in state "C" (each invoice with
// its lines in one transaction, then its row "A" in the next), while the
// documents of those already written are drawn on every core; each row is
// "F" once its file is on disk. A row another workstation took meanwhile is
// left and named in `lost`. A cancel stops between whole invoices. A failure
// throws InterruptedRun, which says what was done; what was done stays done.
InvoicingOutcome writeRowInvoices(store::Store& store, const invoicing::DocumentSettings& settings,
                                  const std::vector<PreparedInvoice>& invoices, const QDate& today,
                                  const QDate& due, const InvoicingProgress& progress,
                                  RunLease& lease);

// What a killed or failed run left, finished: an invoice written for a row
// the run never reached (the row still " " or "C", nothing pointing at the
// invoice, the invoice not cancelled, made out to the row's party) is the
// row's invoice, and the row becomes "A"; every row "A" then gets its
// document and becomes "F", its header printed; a competition whose party
// rows are all "F" closes. Rows of a live run of another workstation (or of
// this one) are left to it; those of the run `ownToken` are not. A row with
// an invoice is never made invoiceable again: only a credit note does that.
struct FinishedRows {
    int attached = 0;              // rows given back the invoice a run wrote for them
    std::vector<QString> numbers;  // invoices whose documents were made
    std::vector<QString> files;
    bool empty() const { return attached == 0 && numbers.empty(); }
    // "N facture(s) laissée(s) par une génération interrompue … terminée(s) …", or "".
    QString report() const;
};
FinishedRows finishInterruptedRows(store::Store& store, const invoicing::DocumentSettings& settings,
                                   const QString& ownToken = {});

// The competition closes ("F") once every one of its party rows is "F".
void closeCompetitionWhenInvoiced(store::Store& store, const QString& index);

}  // namespace orve::competitions
