#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::competitions {

// The competition register window, opened from "les &Compétitions", and the
// batch invoicing windows of the national championship and private competitions.
void registerCompetitionScreens(app::ScreenCatalog& catalog);

}  // namespace orve::competitions
