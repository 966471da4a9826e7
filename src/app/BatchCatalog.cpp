#include "app/BatchCommands.h"
#include "invoicing/InvoicingBatch.h"

namespace orve::app {

// One line per subsystem that offers commands.
void registerAllBatchCommands(BatchRegistry& registry) {
    registerAppBatchCommands(registry);
    invoicing::registerInvoicingBatchCommands(registry);
}

}  // namespace orve::app
