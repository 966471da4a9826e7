#include "shell/ui/Screens.h"

#include "competitions/ui/CompetitionScreens.h"
#include "invoicing/ui/InvoicingScreens.h"
#include "reference/ui/ReferenceScreens.h"

namespace orve::shell {

void registerScreens(app::ScreenCatalog& catalog) {
    reference::registerReferenceScreens(catalog);
    invoicing::registerInvoicingScreens(catalog);
    competitions::registerCompetitionScreens(catalog);
}

}  // namespace orve::shell
