#include "shell/ui/Screens.h"

#include "accounting/ui/AccountingScreens.h"
#include "invoicing/ui/InvoicingScreens.h"
#include "reference/ui/ReferenceScreens.h"

namespace orve::shell {

void registerScreens(app::ScreenCatalog& catalog) {
    reference::registerReferenceScreens(catalog);
    invoicing::registerInvoicingScreens(catalog);
    accounting::registerAccountingScreens(catalog);
}

}  // namespace orve::shell
