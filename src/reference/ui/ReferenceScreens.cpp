#include "app/ui/ScreenCatalog.h"
#include "reference/ui/ORVE_tiers_lr.h"

namespace orve::reference {

template <typename Screen>
static app::ScreenCatalog::Factory factory() {
    return [](app::Session& s, app::Dialogs& d, QWidget* parent) -> QWidget* {
        return new Screen(s, d, parent);
    };
}

void registerReferenceScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_tiers_lr"), factory<ORVE_tiers_lr>());
}

}  // namespace orve::reference
