#pragma once

#include "app/BatchCommands.h"

namespace orve::imports {

// orve-batch import clubs|depts|cdc|prive FICHIER [--saison S] [--date jj/mm/aaaa]
// [--doublons oui|non]: the imports of the federation's files, with their report.
void registerImportBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::imports
