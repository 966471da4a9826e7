#pragma once

#include <QString>

class QCoreApplication;

namespace orve::app {

// Qt's own texts (file dialogs, message box buttons, context menus, date
// editors) and the formats of dates and numbers in French, for the whole
// program. Call once, right after the application object is made. Returns
// false when Qt's French translations are not installed (qt6-translations-l10n
// on Debian): Qt's own texts then stay English, everything else works.
bool installFrench(QCoreApplication& application);

// The folder Qt's translations are read from, for a message when they are missing.
QString qtTranslationsFolder();

}  // namespace orve::app
