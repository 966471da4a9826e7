#include "app/ui/FrenchDesktop.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace orve::app {

QString qtTranslationsFolder() { return QLibraryInfo::path(QLibraryInfo::TranslationsPath); }

bool installFrench(QCoreApplication& application) {
    const QLocale french(QLocale::French, QLocale::France);
    QLocale::setDefault(french);
    // Owned by the application: it lives exactly as long as the texts it translates.
    auto* translator = new QTranslator(&application);
    if (!translator->load(french, QStringLiteral("qtbase"), QStringLiteral("_"),
                          qtTranslationsFolder())) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

}  // namespace orve::app
