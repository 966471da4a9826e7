#pragma once

#include "app/BatchCommands.h"

namespace orve::tools {

// saison, renumeroter, outil, verifier.
void registerToolsBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::tools
