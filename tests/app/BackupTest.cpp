#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include "app/Backup.h"
#include "store/Refusal.h"
#include "store/Store.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::app;

namespace {
// Every row of every table, as text, so two files can be compared by content.
QStringList contentOf(const QString& path) {
    QStringList out;
    const QString name = "backup-check-" + path;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", name);
        db.setDatabaseName(path);
        db.open();
        QSqlQuery tables(db);
        tables.exec("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name");
        QStringList names;
        while (tables.next()) names << tables.value(0).toString();
        for (const QString& t : names) {
            QSqlQuery q(db);
            q.exec("SELECT * FROM " + t + " ORDER BY rowid");
            while (q.next()) {
                QStringList cols;
                for (int i = 0; i < 60; ++i) cols << q.value(i).toString();
                out << t + ":" + cols.join('|');
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}
}  // namespace

TEST(Backup, CopiesEveryDataFileWhileTheyAreOpen) {
    test::TestInstall inst;
    auto s = inst.start();  // the files stay open, as with screens on them
    // Uncommitted work of a screen never reaches the copy; committed work does.
    s->store().insert("strtypec", {{"t_code", "ZZ"}});
    QTemporaryDir usb;
    const QStringList copied = backupDataFolder(s->dataFolder(), usb.path());
    EXPECT_EQ(copied, (QStringList{"bow_facture.db", "bow_jkv.db", "bow_mail.db", "bow_tiers.db",
                                   "bow_tri.db"}));
    for (const QString& name : copied) {
        const QStringList original = contentOf(QDir(s->dataFolder()).filePath(name));
        EXPECT_FALSE(original.isEmpty() && name != "bow_tri.db" && name != "bow_facture.db")
            << name.toStdString();
        EXPECT_EQ(contentOf(QDir(usb.path()).filePath(name)), original) << name.toStdString();
        EXPECT_FALSE(QFile::exists(QDir(usb.path()).filePath(name + "-wal")));
    }
    // A second backup replaces the first.
    s->store().insert("strtypec", {{"t_code", "YY"}});
    backupDataFolder(s->dataFolder(), usb.path());
    EXPECT_TRUE(contentOf(QDir(usb.path()).filePath("bow_jkv.db"))
                    .contains("strtypec:YY" + QString(59, '|')));
}

TEST(Backup, UnwritableOrMissingDestinationLeavesDataUntouched) {
    test::TestInstall inst;
    auto s = inst.start();
    const QStringList before = contentOf(QDir(s->dataFolder()).filePath("bow_jkv.db"));
    EXPECT_THROW(backupDataFolder(s->dataFolder(), "/nonexistent/usb"), Refusal);
    QTemporaryDir usb;
    // A folder standing where the copy must be written makes the medium unwritable for it,
    // whatever rights the test runs with.
    QDir(usb.path()).mkdir("bow_facture.db.partiel");
    try {
        backupDataFolder(s->dataFolder(), usb.path());
        FAIL() << "an unwritable copy was accepted";
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().startsWith("Sauvegarde impossible")) << e.message().toStdString();
    }
    EXPECT_FALSE(QFile::exists(QDir(usb.path()).filePath("bow_facture.db")));
    EXPECT_EQ(contentOf(QDir(s->dataFolder()).filePath("bow_jkv.db")), before);
}
