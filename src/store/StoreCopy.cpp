#include "store/StoreCopy.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "store/Refusal.h"

namespace orve::store {

namespace {

// SQLite's online backup of one file: consistent even while others write.
void copyFile(const QString& source, const QString& target) {
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
    closeBoth();
    if (rc != SQLITE_DONE) {
        QFile::remove(target);
        throw StoreError(
            QStringLiteral("Sauvegarde impossible de %1 vers %2 : %3")
                .arg(QFileInfo(source).fileName(), QDir::toNativeSeparators(target), why));
    }
}

// A copy is a plain single file: no journal beside it on the medium.
void makeStandalone(const QString& path) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) ==
        SQLITE_OK)
        sqlite3_exec(db, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

void moveInto(const QString& from, const QString& target) {
    QFile::remove(target);
    if (!QFile::rename(from, target)) {
        QFile::remove(from);
        throw StoreError(QStringLiteral("Sauvegarde impossible : %1 ne peut pas être remplacé.")
                             .arg(QDir::toNativeSeparators(target)));
    }
}

QString joined(const QStringList& names) { return names.join(QStringLiteral(", ")); }

}  // namespace

StoreCopy::Report StoreCopy::copy(const Store& from, Store& to) {
    Report report;
    Snapshot moment(from);
    Transaction tx(to);
    for (File f : sharedFiles()) {
        for (const QString& table : from.tables(f)) {
            const QStringList targetColumns = to.columns(table);
            if (targetColumns.isEmpty())
                throw Refusal(QStringLiteral("La table %1 manque dans la destination.").arg(table));
            if (to.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(table)).toLongLong() > 0)
                throw Refusal(
                    QStringLiteral("La destination contient déjà des données (table %1) : "
                                   "rien n'a été copié.")
                        .arg(table));
            QStringList columns;
            for (const QString& c : from.columns(table))
                if (targetColumns.contains(c, Qt::CaseInsensitive)) columns << c;
            QStringList marks(columns.size() + 1, QStringLiteral("?"));
            const QString insert = QStringLiteral("INSERT INTO %1 (rowid, %2) VALUES (%3)")
                                       .arg(table, joined(columns), joined(marks));
            const Rows rows = from.select(QStringLiteral("SELECT rowid, %1 FROM %2 ORDER BY rowid")
                                              .arg(joined(columns), table));
            for (const Row& row : rows) {
                Params values;
                for (int i = 0; i < row.count(); ++i) values.push_back(row.value(i));
                to.exec(insert, values);
            }
            // New rows on the server continue after the copied keys.
            if (to.postgres())
                to.exec(QStringLiteral("SELECT setval(pg_get_serial_sequence(?, 'rowid'), "
                                       "COALESCE((SELECT max(rowid) FROM %1), 0) + 1, false)")
                            .arg(table),
                        {(f == File::Jkv ? QStringLiteral("jkv") : schemaName(f)) + '.' + table});
            ++report.tables;
            report.rows += static_cast<qint64>(rows.size());
        }
    }
    // What was read and what was written must agree before anything is kept.
    for (File f : sharedFiles()) {
        for (const QString& table : from.tables(f)) {
            QStringList sums{QStringLiteral("count(*)")};
            for (const QString& c : to.wholeNumberColumns(table))
                if (from.wholeNumberColumns(table).contains(c, Qt::CaseInsensitive))
                    sums << QStringLiteral("COALESCE(sum(%1), 0)").arg(c);
            const QString sql = QStringLiteral("SELECT %1 FROM %2").arg(joined(sums), table);
            const auto a = from.selectOne(sql);
            const auto b = to.selectOne(sql);
            for (int i = 0; a && b && i < a->count(); ++i) {
                if (a->value(i).toLongLong() != b->value(i).toLongLong())
                    throw StoreError(
                        QStringLiteral("La copie de la table %1 ne correspond pas à "
                                       "l'original (%2 : %3 au lieu de %4) : rien n'a "
                                       "été gardé.")
                            .arg(table, sums[i], b->value(i).toString(), a->value(i).toString()));
            }
        }
    }
    tx.commit();
    return report;
}

QStringList StoreCopy::backup(const Store& store, const QString& destination) {
    const QFileInfo dest(destination);
    if (!dest.isDir()) {
        throw Refusal(QStringLiteral("Le support de sauvegarde « %1 » est introuvable. Vérifiez "
                                     "qu'il est branché.")
                          .arg(QDir::toNativeSeparators(destination)));
    }
    if (!store.postgres()) return backupFiles(store, destination);
    // From the server: the same five files a folder installation would give,
    // made in a folder of their own on the medium, then moved into place.
    QTemporaryDir work(QDir(destination).filePath(QStringLiteral(".orve-sauvegarde-XXXXXX")));
    if (!work.isValid())
        throw StoreError(QStringLiteral("Sauvegarde impossible : %1 ne peut pas être écrit.")
                             .arg(QDir::toNativeSeparators(destination)));
    {
        auto copy = Store::create(work.path());
        StoreCopy::copy(store, *copy);
    }
    QStringList written;
    for (File f : allFiles()) {
        const QString made = QDir(work.path()).filePath(fileName(f));
        makeStandalone(made);
        moveInto(made, QDir(destination).filePath(fileName(f)));
        written << fileName(f);
    }
    return written;
}

QStringList StoreCopy::backupFiles(const Store& store, const QString& destination) {
    QStringList copied;
    for (File f : allFiles()) {
        const QString source = f == File::Tri ? store.scratch().path(File::Tri) : store.path(f);
        if (!QFileInfo::exists(source)) continue;
        const QString target = QDir(destination).filePath(fileName(f));
        const QString partial = target + QStringLiteral(".partiel");
        QFile::remove(partial);
        copyFile(source, partial);
        makeStandalone(partial);
        moveInto(partial, target);
        copied << fileName(f);
    }
    return copied;
}

QStringList StoreCopy::dump(const Store& store) {
    QStringList out;
    Snapshot moment(store);
    for (File f : sharedFiles()) {
        for (const QString& table : store.tables(f)) {
            const QStringList columns = store.columns(table);
            for (const Row& row :
                 store.select(QStringLiteral("SELECT rowid, %1 FROM %2 ORDER BY rowid")
                                  .arg(joined(columns), table))) {
                QStringList values;
                for (int i = 0; i < row.count(); ++i)
                    values << (row.value(i).isNull() ? QStringLiteral("∅")
                                                     : row.value(i).toString());
                out << table + QStringLiteral(": ") + values.join(QChar('|'));
            }
        }
    }
    return out;
}

}  // namespace orve::store
