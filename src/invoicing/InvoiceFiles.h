#pragma once

#include <QString>
#include <vector>

#include "invoicing/DocumentSettings.h"
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
// "N", c_envoi_mail "N"; pseudo-competitions, c_facture "X", are left alone)
// in one transaction. Returns the file's path.
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

}  // namespace orve::invoicing
