#pragma once

#include "app/BatchCommands.h"

namespace orve::accounting {

// orve-batch transfert [--saison S] [--mois MM/YYYY] [filtres] | transfert --annuler FICHIER,
// journal [--saison S] [--mois MM/YYYY] [filtres] --csv FICHIER,
// stats --mode 1..4 [--saison S] [--du JJ/MM/AAAA] [--au JJ/MM/AAAA] [filtres] --csv FICHIER.
void registerAccountingBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::accounting
