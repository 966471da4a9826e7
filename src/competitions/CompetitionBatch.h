#pragma once

#include "app/BatchCommands.h"
#include "competitions/RowInvoicing.h"

namespace orve::competitions {

// orve-batch competition calculate INDEX, competition invoice INDEX
// --engagement PRICE --ligne PRICE, competition list [--saison S]: what the
// competition window's buttons do, for the operator named by --as.
void registerCompetitionBatchCommands(app::BatchRegistry& registry);

// What every invoicing command prints: what an interrupted run left and was
// finished; the invoices and documents of a run, with its notes.
void reportFinished(app::BatchContext& c, const FinishedRows& finished);
void printOutcome(app::BatchContext& c, const InvoicingOutcome& outcome);

}  // namespace orve::competitions
