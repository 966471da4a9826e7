#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::reference {

// The league, committee, centre, club, article and nature windows.
void registerReferenceScreens(app::ScreenCatalog& catalog);

}  // namespace orve::reference
