#include "competitions/ui/CompetitionScreens.h"

#include "competitions/ui/ORVE_ges_competition.h"

namespace orve::competitions {

void registerCompetitionScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_ges_competition"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_ges_competition(s, d, parent);
                });
}

}  // namespace orve::competitions
