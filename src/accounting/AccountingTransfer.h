#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "accounting/SalesJournal.h"
#include "accounting/TransferLayout.h"
#include "invoicing/SelectionFilter.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// The transfer of invoices to accounting: the lines not yet transferred of
// the competitions the panel chooses, written to a file of the operator's
// layout in the data folder, their invoices marked "O"; a file shown again,
// and cancelled.
//
// Writing a file and marking its invoices are one unit. The file is written
// under a temporary name, the marks and a row of strtransfert naming both
// files are committed in one transaction, then the file takes its name. A
// run stopped before the commit leaves no mark (its temporary is removed by
// the next run); one stopped after it leaves its marks and its temporary,
// which the next run puts in place. Transfers follow one another, so a
// second transfer never takes an invoice the first one took.
namespace orve::accounting {

// The lines to transfer, as the grid lists them (by invoice number), with the
// accounts of the layout: t_kvarn and t_jkv.
// A transfer takes the invoices its operator's level issued (`level` as
// reference::Viewer::level() gives it); an invoice with no recorded level is
// the national level's.
store::Query transferSelectionQuery(const invoicing::SelectionCondition& selection,
                                    TransferLayout layout, const QString& level);
ReportTotals transferSelectionTotals(const store::Store& store,
                                     const invoicing::SelectionCondition& selection,
                                     const QString& level);
// The grid's columns.
const std::vector<ReportColumn>& transferColumns();

// National lines whose tariff gives no account (written without one), by
// article and nature: the clerk may complete the tariffs before writing.
struct LinesWithoutAccount {
    QString article;
    QString nature;
    int lines = 0;
};
std::vector<LinesWithoutAccount> linesWithoutAccount(const store::Store& store,
                                                     const invoicing::SelectionCondition& selection,
                                                     const QString& level);
// What the clerk is told about them, in French.
QString linesWithoutAccountText(const std::vector<LinesWithoutAccount>& lines);

// Points where a transfer can be stopped by a test, to prove that nothing
// half-done remains.
enum class TransferStage {
    FileWritten,  // the temporary file is complete, nothing is marked
    Marked,       // the marks are made, not committed
    Committed,    // the marks are committed, the file still has its temporary name
};

struct TransferOptions {
    // Called at each stage; a test throws from it.
    std::function<void(TransferStage)> checkpoint;
};

struct TransferResult {
    QString path;
    int lines = 0;
    int invoices = 0;
    Money amount;
};

// "Transfert_" + yyyymmdd + ".csv".
QString nationalTransferName(const QDate& day);

// Writes the transfer file of the layout in `folder` and marks its invoices:
// the national file of the day is replaced, a league file takes the next
// free counter. Refusal "aucune facture à transférer" when nothing is left.
TransferResult writeTransfer(store::Store& store, const QString& folder, TransferLayout layout,
                             const QString& level, const invoicing::SelectionCondition& selection,
                             const QDate& today, const TransferOptions& options = {});

// Finishes what a stopped transfer left in `folder`: a temporary whose marks
// were committed takes its name, any other temporary is removed. Returns how
// many files were put in place.
int recoverInterruptedTransfers(store::Store& store, const QString& folder);

// The file a date typed in Mskdate names: folder + "Transfert_yyyymmdd.csv".
// Refuses a date that is not one.
QString transferFileOfDate(const QString& folder, const QString& dateText);

// Reads a transfer file into the workstation's strcompta (x_1..x_12, one
// row per data line) for the grid. Refusals: "ce fichier n'existe pas",
// "Aucun anregistrement sur ce fichier".
struct TransferFileView {
    QString path;
    TransferLayout layout = TransferLayout::National;
    QStringList captions;  // the file's header fields
    int lines = 0;
    Money amount;
};
TransferFileView showTransferFile(store::Store& store, const QString& path);
// strcompta as the grid lists it: by x_1.
store::Query transferFileQuery();

// Puts back the invoices of a transfer file for a later transfer
// (ent_compta "N"), in one transaction. A line whose invoice is gone is
// reported ("l'entete de la facture N° … n'existe plus !!! Problème-- voir "
// + the support contact) and the others go on.
struct CancelResult {
    int invoices = 0;     // headers put back
    QStringList missing;  // one message per invoice that is gone
};
CancelResult cancelTransfer(store::Store& store, const QString& path,
                            const QString& supportContact);

// orve.ini [support] contact, or the program's own default.
QString supportContact(const QString& settingsPath);

}  // namespace orve::accounting
