#pragma once

#include <QDate>
#include <QString>

#include "invoicing/InvoiceHomes.h"
#include "store/Store.h"

// The rows of strcompetition under which invoicing files the invoices that
// belong to no competition: they live among the
// competitions, so the competitions keep them present.
namespace orve::competitions {

// Missing rows are added with their fixed values; existing ones are left
// alone, so an edited title or season survives every sign-in.
void ensurePseudoCompetitions(store::Store& store, const QDate& today);

}  // namespace orve::competitions
