#include "shell/DemoSettings.h"

#include <QDir>

#include "store/Settings.h"

namespace orve::shell {

void writeDemoMentions(const QString& folder) {
    orve::store::Settings ini(QDir(folder).filePath(QStringLiteral("orve.ini")));
    ini.beginGroup(QStringLiteral("mentions"));
    ini.setValue("tva", QStringLiteral("TVA non applicable, art. 293 B du CGI"));
    ini.setValue("penalites",
                 QStringLiteral("Pénalités de retard : trois fois le taux d'intérêt légal"));
    ini.setValue("indemnite",
                 QStringLiteral("Indemnité forfaitaire pour frais de recouvrement : 40 €"));
    ini.endGroup();
    ini.sync();
}

}  // namespace orve::shell
