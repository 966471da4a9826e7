#pragma once

#include <QString>
#include <QStringList>

namespace orve::app {

inline const QString kBackupNoLetter = QStringLiteral("Aucune lettre");
inline const QString kBackupStarting = QStringLiteral("Sauvegarde de l'ensemble de vos données");
inline const QString kBackupDone = QStringLiteral("sauvegarde terminée");

// Where a drive letter typed by the operator leads: the root of that drive.
QString driveRoot(const QString& letter);

// Copies every bow_*.db of the data folder into destination with SQLite's
// online backup, so the copy is consistent even while screens hold the files.
// Each copy is written beside its final name and moved over it at the end, so
// an older backup is never half overwritten. Returns the names copied.
QStringList backupDataFolder(const QString& dataFolder, const QString& destination);

}  // namespace orve::app
