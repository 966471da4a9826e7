#include "imports/ui/ImportScreens.h"

#include "imports/ui/ORVE_int_cdc.h"
#include "imports/ui/ORVE_int_club.h"
#include "imports/ui/ORVE_int_dept.h"
#include "imports/ui/ORVE_int_prive.h"

namespace orve::imports {

template <typename Screen>
static app::ScreenCatalog::Factory factory() {
    // Import windows have a single mode.
    return [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
        return new Screen(s, d, parent);
    };
}

void registerImportScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_int_club"), factory<ORVE_int_club>());
    catalog.add(QStringLiteral("ORVE_int_dept"), factory<ORVE_int_dept>());
    catalog.add(QStringLiteral("ORVE_int_cdc"), factory<ORVE_int_cdc>());
    catalog.add(QStringLiteral("ORVE_int_prive"), factory<ORVE_int_prive>());
}

}  // namespace orve::imports
