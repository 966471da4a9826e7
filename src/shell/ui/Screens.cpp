#include "shell/ui/Screens.h"

#include "imports/ui/ImportScreens.h"
#include "invoicing/ui/InvoicingScreens.h"
#include "reference/ui/ReferenceScreens.h"

namespace orve::shell {

void registerScreens(app::ScreenCatalog& catalog) {
    reference::registerReferenceScreens(catalog);
    invoicing::registerInvoicingScreens(catalog);
    imports::registerImportScreens(catalog);
}

}  // namespace orve::shell
