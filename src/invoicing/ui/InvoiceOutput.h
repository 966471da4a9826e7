#pragma once

#include <QString>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceDocument.h"

namespace orve::app {
class Session;
}

namespace orve::invoicing {

// What a screen does with one invoice's document: checks the printer named
// in orve.ini first (nothing is made when it is missing), writes the PDF and
// marks the records, sends the document to that printer, and opens the file
// in the desktop's PDF viewer when orve.ini asks for it. Returns the file.
// Throws Refusal ("No printer was found by the name of '…'.",
// "aucune ligne sur cette facture") or StoreError.
QString produceInvoiceDocument(app::Session& session, const QString& number);
// Its two halves around a document written elsewhere: the printer named in
// orve.ini is checked before anything is made (Refusal when missing); once
// the file is written it goes to that printer and, when asked, the viewer.
void checkInvoicePrinter(const DocumentSettings& settings);
void deliverInvoiceDocument(const store::Store& store, const DocumentSettings& settings,
                            const QString& number, const QString& path);

// Paints a document on the named printer (found by wildcard, without regard
// to case). Throws Refusal when no printer has that name.
void printInvoiceDocument(const QString& printerName, const InvoiceDocumentData& doc,
                          const DocumentSettings& settings);

}  // namespace orve::invoicing
