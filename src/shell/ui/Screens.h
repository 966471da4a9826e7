#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::shell {

// Every window the menu can open, each subsystem adding its own.
void registerScreens(app::ScreenCatalog& catalog);

}  // namespace orve::shell
