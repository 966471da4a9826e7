#include "reference/ui/ReferenceScreens.h"

#include "app/ui/ScreenCatalog.h"
#include "reference/ui/ORVE_ges_article.h"
#include "reference/ui/ORVE_ges_naturec.h"
#include "reference/ui/ORVE_tiers_bowling.h"
#include "reference/ui/ORVE_tiers_club.h"
#include "reference/ui/ORVE_tiers_dept.h"
#include "reference/ui/ORVE_tiers_lr.h"

namespace orve::reference {

template <typename Screen>
static app::ScreenCatalog::Factory factory() {
    // Reference windows have a single mode.
    return [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
        return new Screen(s, d, parent);
    };
}

void registerReferenceScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_tiers_lr"), factory<ORVE_tiers_lr>());
    catalog.add(QStringLiteral("ORVE_tiers_dept"), factory<ORVE_tiers_dept>());
    catalog.add(QStringLiteral("ORVE_tiers_bowling"), factory<ORVE_tiers_bowling>());
    catalog.add(QStringLiteral("ORVE_tiers_club"), factory<ORVE_tiers_club>());
    catalog.add(QStringLiteral("ORVE_ges_article"), factory<ORVE_ges_article>());
    catalog.add(QStringLiteral("ORVE_ges_naturec"), factory<ORVE_ges_naturec>());
}

}  // namespace orve::reference
