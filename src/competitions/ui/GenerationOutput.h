#pragma once

#include <QString>
#include <vector>

#include "app/Dialogs.h"
#include "competitions/RowInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "store/Store.h"

// What the invoicing windows do around a generation: the printer of
// orve.ini checked before anything is made, the closing message, the
// documents sent to that printer afterwards.
namespace orve::competitions {

// Refusal when the printer named in orve.ini is not there.
void checkDocumentPrinter(const QString& printer);

// "Factures générées : N (N° … à …)." and the folder of their documents;
// "Génération interrompue. " first after a cancel.
QString generationMessage(const InvoicingOutcome& outcome, const QString& invoiceFolder);

// Sends the invoices' documents to the printer of orve.ini, when one is named.
void printGenerated(const store::Store& store, app::Dialogs& dialogs,
                    const invoicing::DocumentSettings& settings,
                    const std::vector<QString>& numbers);

}  // namespace orve::competitions
