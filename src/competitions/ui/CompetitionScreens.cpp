#include "competitions/ui/CompetitionScreens.h"

#include "competitions/ui/ORVE_facture_cdc.h"
#include "competitions/ui/ORVE_facture_jkv.h"
#include "competitions/ui/ORVE_ges_competition.h"

namespace orve::competitions {

void registerCompetitionScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_ges_competition"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_ges_competition(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_facture_cdc"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_facture_cdc(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_facture_jkv"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_facture_jkv(s, d, parent);
                });
}

}  // namespace orve::competitions
