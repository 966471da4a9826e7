#pragma once

namespace orve::app {
class BatchRegistry;
}

namespace orve::invoicing {

// orve-batch pdf NUMBER… and orve-batch pdf --credit-notes FIRST LAST.
void registerInvoicingBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::invoicing
