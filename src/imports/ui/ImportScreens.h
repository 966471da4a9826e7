#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::imports {

// The club, committee, national championship and private tournament imports.
void registerImportScreens(app::ScreenCatalog& catalog);

}  // namespace orve::imports
