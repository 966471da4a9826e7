#pragma once

#include <QString>
#include <vector>

#include "accounting/TransferLayout.h"
#include "invoicing/SelectionFilter.h"
#include "store/Condition.h"
#include "store/Store.h"

// What a transfer reads, shared by the grid that shows it and the run that
// writes it, so that the file holds exactly the lines the clerk was shown.
namespace orve::accounting {

// The selected invoices a level may still transfer (`level` as
// reference::Viewer::level() gives it).
store::Condition transferCondition(const invoicing::SelectionCondition& selection,
                                   const QString& level);

// The lines of a file of the layout, read in one statement (one consistent
// view of the invoices, whatever other workstations commit meanwhile), in the
// file's order.
std::vector<NationalLine> nationalFileLines(const store::Store& store,
                                            const store::Condition& where);
std::vector<LeagueLine> leagueFileLines(const store::Store& store, const store::Condition& where);

}  // namespace orve::accounting
