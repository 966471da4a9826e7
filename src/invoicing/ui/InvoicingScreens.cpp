#include "invoicing/ui/InvoicingScreens.h"

#include "invoicing/ui/ORVE_facture_creation.h"

namespace orve::invoicing {

void registerInvoicingScreens(app::ScreenCatalog& catalog) {
    catalog.add(
        QStringLiteral("ORVE_facture_creation"),
        [](app::Session& s, app::Dialogs& d, const QString& mode, QWidget* parent) -> QWidget* {
            return new ORVE_facture_creation(s, d, mode, parent);
        });
}

}  // namespace orve::invoicing
