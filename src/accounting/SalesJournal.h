#pragma once

#include <QString>
#include <vector>

#include "accounting/CsvExport.h"
#include "invoicing/SelectionFilter.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// The sales journal ("Le Journal des Ventes"): the invoice lines of the
// competitions the panel chooses, optionally of one invoicing month, with
// their totals. It reads only: one statement joins competitions, lines and
// headers, and the grid pages through it.
namespace orve::accounting {

// The state of the competitions listed (c_facture), as the journal's options
// choose it; "Toutes" is no filter.
enum class InvoicingStatus {
    AwaitingLines,      // "Attente lignage": " "
    ManualInvoicing,    // "A facturer Manuellement": "X", the pseudo-competitions
    AwaitingInvoicing,  // "Attente de facturation": "C"
    Invoiced,           // "Facturées": "F"
    All,                // "Toutes"
    NotPrinted,         // "Facture non éditéees": "A"
};

struct StatusOption {
    InvoicingStatus status;
    QString caption;
};
// In the order of the options Option1_0 .. Option1_5.
const std::vector<StatusOption>& statusOptions();

struct ReportTotals {
    Money amount;
    qint64 quantity = 0;
    int lines = 0;
};

// The grid's columns in their usual order, amounts in cents.
const std::vector<ReportColumn>& journalColumns();

// The journal's rows, by invoice date (c_tri_facture) until a column head
// is clicked.
store::Query journalQuery(const invoicing::SelectionCondition& selection,
                          InvoicingStatus status = InvoicingStatus::All);

// Amount and quantity of the whole selection, in one pass.
ReportTotals journalTotals(const store::Store& store,
                           const invoicing::SelectionCondition& selection,
                           InvoicingStatus status = InvoicingStatus::All);

// The journal as a spreadsheet file: every row in the journal's order, then
// the totals.
QByteArray journalCsv(const store::Store& store, const invoicing::SelectionCondition& selection,
                      InvoicingStatus status = InvoicingStatus::All);

// The condition on c_facture of a status; empty for "Toutes".
store::Condition statusCondition(InvoicingStatus status);

}  // namespace orve::accounting
