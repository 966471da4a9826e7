#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "store/Refusal.h"
#include "store/Store.h"

using namespace orve;
using namespace orve::store;

namespace {
std::unique_ptr<Store> freshStore(QTemporaryDir& dir) { return Store::open(dir.path()); }
}  // namespace

TEST(Store, CreatesFiveFilesWithTheirTablesAndJoinsThem) {
    QTemporaryDir dir;
    auto s = freshStore(dir);
    for (File f : allFiles()) EXPECT_TRUE(QFile::exists(s->path(f))) << fileName(f).toStdString();
    EXPECT_EQ(s->scalar("PRAGMA journal_mode").toString(), "wal");
    // Tables live in their own files yet one statement reaches them all.
    s->insert("strentete", {{"ent_fact_no", "12"}, {"ent_c_index", "8FA00001"}});
    s->insert("strcompetition", {{"c_index", "8FA00001"}, {"c_intitule", "Facture Divers"}});
    s->insert("tri.strcompetition", {{"c_index", "scratch"}});
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
    s.reset();
    s = freshStore(dir);
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
    EXPECT_EQ(s->scalar("PRAGMA facture.user_version").toInt(), 1);
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
        EXPECT_TRUE(e.message().contains("bow_facture.db")) << e.message().toStdString();
        EXPECT_TRUE(e.message().contains("strentete")) << e.message().toStdString();
    }
    EXPECT_EQ(s->scalar("SELECT count(*) FROM strentete").toInt(), 1);
}

TEST(Store, MissingFolderIsAClearMessage) {
    try {
        Store::open("/nonexistent/orve/donnees");
        FAIL();
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().contains("n'existe pas")) << e.message().toStdString();
    }
}
