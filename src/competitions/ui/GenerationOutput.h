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
namespace orve::app {
class Session;
}

namespace orve::competitions {

// Refusal when the printer named in orve.ini is not there.
void checkDocumentPrinter(const QString& printer);

// "Factures générées : N (N° … à …)." and the folder of their documents;
// "Génération interrompue. " first after a cancel.
QString generationMessage(const InvoicingOutcome& outcome, const QString& invoiceFolder);

// What the windows do when they open and when an entry is cancelled: rows
// calculated but not invoiced go back to " " (but those of a run under way
// on some workstation), and what an interrupted run left is finished; the
// clerk is told when something was.
void resumeInterruptedWork(app::Session& session, app::Dialogs& dialogs);

// Sends the invoices' documents to the printer of orve.ini, when one is named.
void printGenerated(const store::Store& store, app::Dialogs& dialogs,
                    const invoicing::DocumentSettings& settings,
                    const std::vector<QString>& numbers);

}  // namespace orve::competitions
