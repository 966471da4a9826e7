#pragma once

#include "app/BatchCommands.h"

namespace orve::competitions {

// orve-batch cdc calculate|invoice [--saison S] [--hommes PRIX] [--dames PRIX]
// and prive calculate|invoice [--saison S] [--joueur PRIX]: what the national
// championship and private invoicing windows' buttons do.
void registerNationalBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::competitions
