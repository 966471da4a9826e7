#include "app/Backup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "store/StoreCopy.h"

namespace orve::app {

QString driveRoot(const QString& letter) { return letter + QStringLiteral(":/"); }

QStringList backupStore(const store::Store& store, const QString& destination) {
    return store::StoreCopy::backup(store, destination);
}

}  // namespace orve::app
