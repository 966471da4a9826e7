#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceDocument.h"
#include "store/Store.h"

// The invoice document as a file: the PDF written into the invoice folder,
// then the records marked as printed.
namespace orve::invoicing {

// invoice folder / (entity code when not blank, else account) + "_FN_" +
// eight-digit number + ".pdf": the mailing builds the same name. Only the
// letters, digits, "-" and "_" of the code are kept, so no code can name
// another folder ("CL/13001" gives "CL13001_FN_…").
QString invoicePdfPath(const QString& invoiceFolder, const QString& account, const QString& entity,
                       const QString& number);

// Writes the PDF of a stored invoice or credit note, replacing an older file,
// then marks the header (ent_fact_edt "O", ent_montant) and the competition
// row that carries its number (c_facture "F", c_edt_fact "OUI", c_add_tiers
// "N", c_envoi_mail "N"; pseudo-competitions, c_facture "X", are left alone),
// the header first, each file in a transaction of its own. Returns the
// file's path.
//
// The file, readable by its owner only, is written to a temporary of its own,
// synced to the disk and renamed over the older one: its name holds a whole
// document or the previous one, never part of one, however many runs write it
// at once. Nothing is marked unless it is there. A failure throws StoreError,
// "Disque plein : …" or "Impossible d'écrire le fichier … : …", naming the file.
QString generateInvoicePdf(store::Store& store, const DocumentSettings& settings,
                           const QString& number);

// The documents of the credit notes numbered first to last (by value); each
// header gets ent_fact_edt "O" once its file is written. Returns the files
// written; stops at the first failure, as generateInvoicePdf.
std::vector<QString> generateCreditNotePdfs(store::Store& store, const DocumentSettings& settings,
                                            const QString& first, const QString& last);

// Called between whole documents with "done of total"; false stops the run
// before its next document (those under way are finished and marked).
using DocumentProgress = std::function<bool(int done, int total)>;

// The documents of many stored invoices, rendered on every core (orve-batch
// pdf NUMBER…): each marked as generateInvoicePdf marks it once its file is
// on disk. Returns the files written, in the order of `numbers`; a failure
// throws after the documents already written have been marked.
std::vector<QString> generateInvoicePdfs(store::Store& store, const DocumentSettings& settings,
                                         const std::vector<QString>& numbers,
                                         const DocumentProgress& progress = {});

// A run of documents: the store's thread reads each invoice and hands it
// over; worker threads, one per core, draw and write the files; the store's
// thread then makes a group of finished files durable with one sync and marks
// them (header ent_fact_edt "O" and ent_montant, then competition row "F"),
// one transaction a file. An invoice is marked only once its file is whole on disk, so a
// kill at any moment leaves it unmarked, or marked with its document there.
//
//     DocumentRun run(store, settings);
//     for (const QString& n : numbers) run.add(n);   // marks what is done meanwhile
//     const auto files = run.finish();               // waits for and marks the rest
//
// Only the thread that owns the store calls it.
class DocumentRun {
  public:
    DocumentRun(store::Store& store, const DocumentSettings& settings);
    // Waits for the documents under way; those not marked by finish() stay unmarked.
    ~DocumentRun();
    DocumentRun(const DocumentRun&) = delete;
    DocumentRun& operator=(const DocumentRun&) = delete;

    // Reads the invoice and queues its document; waits while the workers are
    // well ahead of their queue, marking what they finished.
    void add(const QString& number);
    // The same for an invoice its caller has just written and holds whole
    // (a batch that made it need not read it back).
    void add(const InvoiceDocumentData& document);
    // Waits for every document and marks it; `progress` hears each group
    // marked (its answer is ignored: what is under way is finished). Returns
    // the files, in the order the invoices were added. A failure of any
    // document throws here (or from add) once the others are marked.
    std::vector<QString> finish(const DocumentProgress& progress = {});
    // Documents marked so far.
    int marked() const;

  private:
    struct Shared;
    void collect(bool waitForOne);
    void markCollected(bool force);
    void rethrowFailure();

    store::Store& m_store;
    DocumentSettings m_settings;
    std::shared_ptr<Shared> m_shared;
    std::vector<QString> m_paths;  // by order of add(); empty until written
    int m_marked = 0;
};

}  // namespace orve::invoicing
