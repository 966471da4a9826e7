#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::tools {

// The new-season and renumbering windows, and the tools of the "&Outils"
// menu: each tool entry is run by the menu rather than opened, its question,
// report and closing message going through the dialogs.
void registerToolScreens(app::ScreenCatalog& catalog);

}  // namespace orve::tools
