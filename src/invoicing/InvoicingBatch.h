#pragma once

#include "app/BatchCommands.h"

namespace orve::invoicing {

// orve-batch pdf NUMBER…, pdf --credit-notes FIRST LAST, and avoir NUMBER….
void registerInvoicingBatchCommands(app::BatchRegistry& registry);

// orve-batch factures-essai NOMBRE: invoices of three lines made through the
// invoice rules, to try the numbering from several workstations at once.
void registerInvoiceLoadCommand(app::BatchRegistry& registry);

}  // namespace orve::invoicing
