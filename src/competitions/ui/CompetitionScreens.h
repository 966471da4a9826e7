#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::competitions {

// The competition register window, opened from "les &Compétitions".
void registerCompetitionScreens(app::ScreenCatalog& catalog);

}  // namespace orve::competitions
