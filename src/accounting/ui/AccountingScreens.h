#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::accounting {

// The transfer to accounting, the sales journal and the statistics (modes 1 to 4).
void registerAccountingScreens(app::ScreenCatalog& catalog);

}  // namespace orve::accounting
