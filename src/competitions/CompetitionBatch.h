#pragma once

#include "app/BatchCommands.h"

namespace orve::competitions {

// orve-batch competition calculate INDEX, competition invoice INDEX
// --engagement PRICE --ligne PRICE, competition list [--saison S]: what the
// competition window's buttons do, for the operator named by --as.
void registerCompetitionBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::competitions
