#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <functional>

#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreAddress.h"
#include "support/TestServer.h"

using namespace orve;
using namespace orve::store;

namespace {
// On the server run, a new database of the suite's server; otherwise a folder.
std::unique_ptr<Store> freshStore(QTemporaryDir& dir) {
    if (test::onServer())
        return Store::create(StoreAddress::parse(test::createDatabase()), dir.path());
    return Store::create(dir.path());
}
}  // namespace

TEST(Store, CreatesFiveFilesWithTheirTablesAndJoinsThem) {
    ORVE_SQLITE_FILES_ONLY();  // the server run has its own store tests
    QTemporaryDir dir;
    auto s = freshStore(dir);
    for (File f : allFiles()) EXPECT_TRUE(QFile::exists(s->path(f))) << fileName(f).toStdString();
    EXPECT_EQ(s->scalar("PRAGMA journal_mode").toString(), "wal");
    // Tables live in their own files yet one statement reaches them all.
    s->insert("strentete", {{"ent_fact_no", "12"}, {"ent_c_index", "8FA00001"}});
    s->insert("strcompetition", {{"c_index", "8FA00001"}, {"c_intitule", "Facture Divers"}});
    s->scratch().insert("strcompetition", {{"c_index", "scratch"}});
    EXPECT_EQ(s->scalar("SELECT c_intitule FROM strentete JOIN strcompetition "
                        "ON ent_c_index = c_index")
                  .toString(),
              "Facture Divers");
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strcompetition").toInt(), 1);
    EXPECT_EQ(
        s->scalar("SELECT count(*) FROM facture.sqlite_master WHERE name='strfacture'").toInt(), 1);
    EXPECT_EQ(s->scalar("SELECT count(*) FROM tiers.sqlite_master WHERE name='strclub'").toInt(),
              1);
    // Reopening an upgraded folder keeps the data and the version.
    const int version = s->scalar("PRAGMA facture.user_version").toInt();
    EXPECT_GE(version, 2);
    s.reset();
    s = freshStore(dir);
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
    EXPECT_EQ(s->scalar("PRAGMA facture.user_version").toInt(), version);
}

TEST(Store, CodesCompareWithoutCaseAndCountsAsNumbers) {
    QTemporaryDir dir;
    auto s = freshStore(dir);
    s->insert("strnaturec", {{"n_code", "CHAF"}});
    EXPECT_TRUE(s->exists("SELECT 1 FROM strnaturec WHERE n_code = ?", {"chaf"}));
    // Text keys stay text: "098" and "98" are two committees.
    s->insert("strdept", {{"de_no", "098"}});
    EXPECT_FALSE(s->exists("SELECT 1 FROM strdept WHERE de_no = ?", {"98"}));
    s->insert("strfacture", {{"f_num_facture", "00000001"}, {"f_montant", 950}});
    s->insert("strfacture", {{"f_num_facture", "00000001"}, {"f_montant", 10000}});
    EXPECT_EQ(s->scalar("SELECT max(f_montant) FROM strfacture").toLongLong(), 10000);
}

TEST(Store, BoundValuesKeepTextAsTyped) {
    QTemporaryDir dir;
    auto s = freshStore(dir);
    const QString nasty = "L'Étoile; DROP TABLE strclub; --\"é";
    s->insert("strclub", {{"club_code", "CL13001"}, {"club_nom", nasty}});
    EXPECT_EQ(s->scalar("SELECT club_nom FROM strclub WHERE club_nom = ?", {nasty}).toString(),
              nasty);
    EXPECT_EQ(s->update("strclub", {{"club_ville", "Aix"}}, "club_code = ?", {"cl13001"}), 1);
}

TEST(Store, TransactionRollsBackUnlessCommittedAndNests) {
    QTemporaryDir dir;
    auto s = freshStore(dir);
    {
        Transaction tx(*s);
        s->insert("strtypec", {{"t_code", "FD"}});
    }
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strtypec").toInt(), 0);
    {
        Transaction outer(*s);
        s->insert("strtypec", {{"t_code", "FD"}});
        {
            Transaction inner(*s);
            s->insert("strtypec", {{"t_code", "PR"}});
        }  // the inner part alone is undone
        s->insert("strentete", {{"ent_fact_no", "1"}});
        outer.commit();
    }
    EXPECT_EQ(s->scalar("SELECT group_concat(t_code) FROM strtypec").toString(), "FD");
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
    // A failing statement inside a transaction leaves nothing behind.
    try {
        Transaction tx(*s);
        s->insert("strentete", {{"ent_fact_no", "2"}});
        s->insert("strentete", {{"ent_fact_no", "1"}});  // the number is taken
        tx.commit();
        FAIL() << "a duplicate invoice number was accepted";
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().contains(test::onServer() ? "(facture)" : "bow_facture.db"))
            << e.message().toStdString();
        EXPECT_TRUE(e.message().contains("strentete")) << e.message().toStdString();
    }
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
}

TEST(Store, MissingFolderIsAClearMessage) {
    ORVE_SQLITE_FILES_ONLY();  // the server run has its own store tests
    try {
        Store::open("/nonexistent/orve/donnees");
        FAIL();
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().contains("n'existe pas")) << e.message().toStdString();
    }
}

namespace {
// The message of the StoreError the work throws; `busy` tells whether the
// store took it for another workstation holding the data.
QString errorOf(const std::function<void()>& work, bool* busy = nullptr) {
    try {
        work();
    } catch (const StoreError& e) {
        if (busy) *busy = e.busy();
        return e.message();
    }
    return {};
}
}  // namespace

TEST(Store, AStepThatFailsIsAnErrorNotTheLastRow) {
    ORVE_SQLITE_FILES_ONLY();  // the server run has its own store tests
    QTemporaryDir dir;
    auto s = freshStore(dir);
    // Rows 1 and 2 come back, row 3 overflows while it is being read.
    const QString sql =
        "SELECT CASE WHEN t = 3 THEN abs(-9223372036854775807 - 1) ELSE t END FROM "
        "(SELECT 1 AS t UNION ALL SELECT 2 UNION ALL SELECT 3) AS steps";
    EXPECT_THROW(s->select(sql), StoreError);
    EXPECT_THROW(s->exists("SELECT abs(-9223372036854775807 - 1)"), StoreError);

    // A damaged page of bow_tiers.db: the listing names that file and says why.
    for (int i = 0; i < 400; ++i)
        s->insert("strclub", {{"club_code", QString("CL%1").arg(i, 5, 10, QChar('0'))},
                              {"club_nom", QString(200, QChar('a' + i % 26))}});
    const QString tiers = s->path(File::Tiers);
    s.reset();  // the last connection folds the journal back into the file
    {
        QFile f(tiers);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        const qint64 pages = f.size() / 4096;
        ASSERT_GT(pages, 10);
        for (qint64 page = pages / 2; page < pages - 1; ++page) {
            f.seek(page * 4096);
            f.write(QByteArray(4096, '\x5a'));
        }
    }
    s = Store::open(dir.path());
    bool busy = true;
    const QString message =
        errorOf([&] { s->select("SELECT * FROM strclub ORDER BY club_nom"); }, &busy);
    EXPECT_FALSE(busy);
    EXPECT_TRUE(message.contains("bow_tiers.db")) << message.toStdString();
    EXPECT_TRUE(message.contains("strclub")) << message.toStdString();
    EXPECT_TRUE(message.contains("endommagé")) << message.toStdString();
}

TEST(Store, ACommitThatFailsLeavesNothingAndTheStoreUsable) {
    QTemporaryDir dir;
    auto s = freshStore(dir);
    // A check the engine makes only at COMMIT: a deferred foreign key.
    if (!test::onServer()) s->exec("PRAGMA foreign_keys = ON");
    s->exec("CREATE TEMP TABLE parent (id INTEGER PRIMARY KEY)");
    s->exec(
        "CREATE TEMP TABLE child (pid INTEGER REFERENCES parent(id) "
        "DEFERRABLE INITIALLY DEFERRED)");
    {
        Transaction tx(*s);
        s->insert("strtypec", {{"t_code", "FD"}});
        s->insert("child", {{"pid", 42}});
        EXPECT_THROW(tx.commit(), StoreError);
    }
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strtypec").toInt(), 0);
    // The engine is out of the transaction too: the next operation works.
    {
        Transaction tx(*s);
        s->insert("strtypec", {{"t_code", "PR"}});
        tx.commit();
    }
    EXPECT_EQ(s->scalar("SELECT group_concat(t_code) FROM strtypec").toString(), "PR");
}

TEST(Store, AFileLockedByAnotherWorkstationIsNamedAndReleased) {
    ORVE_SQLITE_FILES_ONLY();  // the server run has its own store tests
    QTemporaryDir dir;
    auto s = freshStore(dir);
    const QString other = "other-workstation";
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", other);
        db.setDatabaseName(s->path(File::Facture));
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("BEGIN IMMEDIATE"));
        // Held past the busy timeout.
        bool busy = false;
        const QString message = errorOf(
            [&] {
                Transaction tx(*s);
                s->insert("strentete", {{"ent_fact_no", "1"}});
                tx.commit();
            },
            &busy);
        EXPECT_TRUE(busy);
        EXPECT_TRUE(message.contains("bow_facture.db")) << message.toStdString();
        EXPECT_FALSE(message.contains("bow_jkv.db")) << message.toStdString();
        EXPECT_TRUE(
            message.contains("la base est utilisée par un autre poste (réessayez dans un "
                             "instant)"))
            << message.toStdString();
        q.exec("ROLLBACK");
        q.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(other);
    Transaction tx(*s);
    s->insert("strentete", {{"ent_fact_no", "1"}});
    tx.commit();
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
}

TEST(Store, SharedFilesAreNeverMadeAgainAtOpen) {
    ORVE_SQLITE_FILES_ONLY();  // the server run has its own store tests
    QTemporaryDir dir;
    freshStore(dir).reset();
    // The scratch file may come back empty; a shared one may not.
    QFile::remove(QDir(dir.path()).filePath("bow_tri.db"));
    EXPECT_NO_THROW(Store::open(dir.path()));
    const QString facture = QDir(dir.path()).filePath("bow_facture.db");
    QFile::remove(facture);
    QFile::remove(facture + "-wal");
    QFile::remove(facture + "-shm");
    const QString expected =
        QString(
            "Le fichier de données bow_facture.db est introuvable (ou vide) dans %1. Restaurez-le "
            "depuis une sauvegarde.")
            .arg(QDir::toNativeSeparators(dir.path()));
    EXPECT_EQ(errorOf([&] { Store::open(dir.path()); }), expected);
    EXPECT_FALSE(QFile::exists(facture));
    QFile empty(facture);
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_EQ(errorOf([&] { Store::open(dir.path()); }), expected);

    // A garbage file is named as itself, with a cause the operator understands.
    QTemporaryDir other;
    freshStore(other).reset();
    QFile tiers(QDir(other.path()).filePath("bow_tiers.db"));
    ASSERT_TRUE(tiers.open(QIODevice::WriteOnly | QIODevice::Truncate));
    tiers.write(QByteArray("ceci n'est pas une base\n").repeated(500));
    tiers.close();
    const QString message = errorOf([&] { Store::open(other.path()); });
    EXPECT_TRUE(message.contains("bow_tiers.db")) << message.toStdString();
    EXPECT_FALSE(message.contains("bow_jkv.db")) << message.toStdString();
    EXPECT_TRUE(message.contains("ce fichier n'est pas une base ORVE ou il est endommagé"))
        << message.toStdString();
}
