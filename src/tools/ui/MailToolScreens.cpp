#include "tools/ui/MailToolScreens.h"

#include "tools/ui/ORVE_out_mail.h"
#include "tools/ui/ORVE_out_mail_top.h"

namespace orve::tools {

void registerMailToolScreens(app::ScreenCatalog& catalog) {
    catalog.add(QStringLiteral("ORVE_out_mail"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_out_mail(s, d, parent);
                });
    catalog.add(QStringLiteral("ORVE_out_mail_top"),
                [](app::Session& s, app::Dialogs& d, const QString&, QWidget* parent) -> QWidget* {
                    return new ORVE_out_mail_top(s, d, parent);
                });
}

}  // namespace orve::tools
