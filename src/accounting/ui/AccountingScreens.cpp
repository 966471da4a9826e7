#include "accounting/ui/AccountingScreens.h"

#include "accounting/ui/ORVE_facture_compta.h"
#include "accounting/ui/ORVE_facture_jalvente.h"
#include "accounting/ui/ORVE_stat.h"

namespace orve::accounting {

void registerAccountingScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_facture_compta"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_facture_compta(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_facture_jalvente"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_facture_jalvente(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_stat"),
                [](app::Session& s, app::Dialogs& d, const QString& mode,
                   QWidget* parent) -> QWidget* { return new ORVE_stat(s, d, mode, parent); });
}

}  // namespace orve::accounting
