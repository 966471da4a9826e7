#pragma once

#include "app/BatchCommands.h"

namespace orve::invoicing {

// orve-batch mail --nature N [--test ADDR[,COPY]] [--texte NOM] [--objet TEXT]
// [--competition] [--refacturer] [NUMBER…], mail-text set NOM (text on
// standard input) and mail-text list.
void registerMailBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::invoicing
