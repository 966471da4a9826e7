#include "app/BatchCommands.h"

namespace orve::app {

// One line per subsystem that offers commands.
void registerAllBatchCommands(BatchRegistry& registry) {
    registerAppBatchCommands(registry);
}

}  // namespace orve::app
