#include "shell/ui/Screens.h"

#include "accounting/ui/AccountingScreens.h"
#include "competitions/ui/CompetitionScreens.h"
#include "imports/ui/ImportScreens.h"
#include "invoicing/ui/InvoicingScreens.h"
#include "reference/ui/ReferenceScreens.h"
#include "tools/ui/MailToolScreens.h"
#include "tools/ui/ToolScreens.h"

namespace orve::shell {

void registerScreens(app::ScreenCatalog& catalog) {
    reference::registerReferenceScreens(catalog);
    invoicing::registerInvoicingScreens(catalog);
    tools::registerToolScreens(catalog);
    tools::registerMailToolScreens(catalog);
    competitions::registerCompetitionScreens(catalog);
    imports::registerImportScreens(catalog);
    accounting::registerAccountingScreens(catalog);
}

}  // namespace orve::shell
