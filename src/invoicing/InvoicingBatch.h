#pragma once

#include "app/BatchCommands.h"

namespace orve::invoicing {

// orve-batch pdf NUMBER… and orve-batch pdf --credit-notes FIRST LAST.
void registerInvoicingBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::invoicing
