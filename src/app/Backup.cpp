#include "app/Backup.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "store/Refusal.h"

namespace orve::app {

QString driveRoot(const QString& letter) { return letter + QStringLiteral(":/"); }

namespace {

void copyOne(const QString& source, const QString& target) {
    sqlite3* from = nullptr;
    sqlite3* to = nullptr;
    const QByteArray src = QFile::encodeName(source);
    const QByteArray dst = QFile::encodeName(target);
    auto closeBoth = [&] {
        if (from) sqlite3_close(from);
        if (to) sqlite3_close(to);
    };
    if (sqlite3_open_v2(src.constData(), &from, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        const QString why = QString::fromUtf8(sqlite3_errmsg(from));
        closeBoth();
        throw StoreError(QStringLiteral("Sauvegarde impossible : le fichier %1 ne peut pas être "
                                        "lu (%2).")
                             .arg(QDir::toNativeSeparators(source), why));
    }
    if (sqlite3_open_v2(dst.constData(), &to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        const QString why = QString::fromUtf8(sqlite3_errmsg(to));
        closeBoth();
        throw StoreError(QStringLiteral("Sauvegarde impossible : %1 ne peut pas être écrit (%2).")
                             .arg(QDir::toNativeSeparators(target), why));
    }
    sqlite3_busy_timeout(from, 5000);
    sqlite3_backup* b = sqlite3_backup_init(to, "main", from, "main");
    int rc = SQLITE_ERROR;
    if (b) {
        do {
            rc = sqlite3_backup_step(b, -1);
            if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED) sqlite3_sleep(50);
        } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
        sqlite3_backup_finish(b);
    }
    const QString why = QString::fromUtf8(sqlite3_errmsg(to));
    // The copy is a plain single file: no WAL beside it on the medium.
    if (rc == SQLITE_DONE)
        sqlite3_exec(to, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
    closeBoth();
    if (rc != SQLITE_DONE) {
        QFile::remove(target);
        throw StoreError(
            QStringLiteral("Sauvegarde impossible de %1 vers %2 : %3")
                .arg(QFileInfo(source).fileName(), QDir::toNativeSeparators(target), why));
    }
}

}  // namespace

QStringList backupDataFolder(const QString& dataFolder, const QString& destination) {
    const QFileInfo dest(destination);
    if (!dest.isDir()) {
        throw Refusal(QStringLiteral("Le support de sauvegarde « %1 » est introuvable. Vérifiez "
                                     "qu'il est branché.")
                          .arg(QDir::toNativeSeparators(destination)));
    }
    const QDir data(dataFolder);
    const QStringList names = data.entryList({QStringLiteral("bow_*.db")}, QDir::Files, QDir::Name);
    QStringList copied;
    for (const QString& name : names) {
        const QString target = QDir(destination).filePath(name);
        const QString partial = target + QStringLiteral(".partiel");
        QFile::remove(partial);
        copyOne(data.filePath(name), partial);
        QFile::remove(target);
        if (!QFile::rename(partial, target)) {
            QFile::remove(partial);
            throw StoreError(QStringLiteral("Sauvegarde impossible : %1 ne peut pas être remplacé.")
                                 .arg(QDir::toNativeSeparators(target)));
        }
        copied << name;
    }
    return copied;
}

}  // namespace orve::app
