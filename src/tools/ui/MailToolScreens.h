#pragma once

#include "app/ui/ScreenCatalog.h"

namespace orve::tools {

// ORVE_out_mail and ORVE_out_mail_top.
void registerMailToolScreens(app::ScreenCatalog& catalog);

}  // namespace orve::tools
