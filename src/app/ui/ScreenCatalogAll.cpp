#include "app/ui/ScreenCatalog.h"

namespace orve::reference {
void registerReferenceScreens(app::ScreenCatalog& catalog);
}

namespace orve::app {

// One line per subsystem that has windows.
void registerAllScreens(ScreenCatalog& catalog) { reference::registerReferenceScreens(catalog); }

}  // namespace orve::app
