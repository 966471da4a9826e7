#include "shell/ui/Screens.h"

#include "reference/ui/ReferenceScreens.h"

namespace orve::shell {

void registerScreens(app::ScreenCatalog& catalog) {
    reference::registerReferenceScreens(catalog);
}

}  // namespace orve::shell
