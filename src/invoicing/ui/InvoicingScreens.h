#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::invoicing {

// The invoice entry window, in the mode its menu entry asks.
void registerInvoicingScreens(app::ScreenCatalog& catalog);

}  // namespace orve::invoicing
