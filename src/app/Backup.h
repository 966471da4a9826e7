#pragma once

#include <QString>
#include <QStringList>

#include "store/Store.h"

namespace orve::app {

inline const QString kBackupNoLetter = QStringLiteral("Aucune lettre");
inline const QString kBackupStarting = QStringLiteral("Sauvegarde de l'ensemble de vos données");
inline const QString kBackupDone = QStringLiteral("sauvegarde terminée");

// Where a drive letter typed by the operator leads: the root of that drive.
QString driveRoot(const QString& letter);

// Writes the five data files (SQLite, whatever the installation runs on) into
// destination, consistent as of one moment even while screens or other
// workstations write; an older backup is never half overwritten. Returns the
// names written.
QStringList backupStore(const store::Store& store, const QString& destination);

}  // namespace orve::app
