#pragma once

#include <QDate>

#include "store/Store.h"

namespace orve::invoicing {

// A few coherent invoices of the demo installation, written through the
// invoice rules: licences to a club, miscellaneous to a committee, a league
// invoice, a credit note cancelling the committee's invoice, and a long
// regional-day invoice over two pages. Their documents are not printed.
void createDemoInvoices(store::Store& store, const QDate& today);

}  // namespace orve::invoicing
