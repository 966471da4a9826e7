#include "app/ui/ScreenCatalog.h"

namespace orve::app {

// One line per subsystem that has windows.
void registerAllScreens(ScreenCatalog& catalog) { (void)catalog; }

}  // namespace orve::app
