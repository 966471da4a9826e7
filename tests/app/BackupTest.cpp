#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "app/Backup.h"
#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreCopy.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::app;
using store::StoreCopy;

namespace {
const QStringList kFiles{"bow_facture.db", "bow_jkv.db", "bow_mail.db", "bow_tiers.db",
                         "bow_tri.db"};

QStringList sorted(QStringList names) {
    names.sort();
    return names;
}

// What a backup folder holds, read as an installation's data folder.
QStringList backedUp(const QString& folder) { return StoreCopy::dump(*store::Store::open(folder)); }
}  // namespace

TEST(Backup, CopiesEveryStoreWhileItIsOpen) {
    test::TestInstall inst;
    auto s = inst.start();  // the store stays open, as with screens on it
    s->store().insert("strtypec", {{"t_code", "ZZ"}});
    QTemporaryDir usb;
    // Whatever the installation runs on, the medium gets the five SQLite files.
    EXPECT_EQ(sorted(backupStore(s->store(), usb.path())), kFiles);
    for (const QString& name : kFiles) {
        EXPECT_TRUE(QFileInfo(QDir(usb.path()).filePath(name)).size() > 0) << name.toStdString();
        EXPECT_FALSE(QFile::exists(QDir(usb.path()).filePath(name + "-wal")));
    }
    const QStringList original = StoreCopy::dump(s->store());
    EXPECT_GT(original.size(), 100);
    EXPECT_EQ(backedUp(usb.path()), original);

    // A second backup replaces the first.
    s->store().insert("strtypec", {{"t_code", "YY"}});
    backupStore(s->store(), usb.path());
    EXPECT_EQ(backedUp(usb.path()).filter(QRegularExpression("^strtypec: \\d+\\|YY$")).size(), 1);
}

TEST(Backup, UnwritableOrMissingDestinationLeavesDataUntouched) {
    test::TestInstall inst;
    auto s = inst.start();
    const QStringList before = StoreCopy::dump(s->store());
    EXPECT_THROW(backupStore(s->store(), "/nonexistent/usb"), Refusal);
    QTemporaryDir usb;
    // A folder standing where a copy must go makes the medium unwritable for it,
    // whatever rights the test runs with.
    QDir(usb.path()).mkdir("bow_facture.db");
    try {
        backupStore(s->store(), usb.path());
        FAIL() << "an unwritable copy was accepted";
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().startsWith("Sauvegarde impossible")) << e.message().toStdString();
    }
    EXPECT_TRUE(QFileInfo(QDir(usb.path()).filePath("bow_facture.db")).isDir());
    EXPECT_TRUE(QDir(usb.path()).entryList({"*.partiel"}, QDir::Files).isEmpty());
    EXPECT_EQ(StoreCopy::dump(s->store()), before);
}
