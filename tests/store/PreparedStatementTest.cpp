#include <gtest/gtest.h>

#include "store/PreparedStatement.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::store;

TEST(PreparedStatement, OnePreparationRunsManyRowsOfEveryKindOfValue) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    Store& s = session->store();
    {
        Transaction tx(s);
        auto insert = PreparedStatement::insertInto(
            s, "strcompetition", {"c_index", "c_intitule", "c_nb_lignes", "c_numero"});
        const QString accents = QStringLiteral("Œuvre « Étang » — 12 € ; 'quote' \"deux\"");
        EXPECT_EQ(insert.exec({"A1", accents, 7, QVariant()}), 1);
        EXPECT_EQ(insert.exec({"A2", QString(), qint64(9000000000LL), "x"}), 1);
        EXPECT_EQ(insert.exec({"A3", "", 0, QString(300000, 'z')}), 1);
        PreparedStatement update(s, "UPDATE strcompetition SET c_phase = ? WHERE c_index LIKE ?");
        EXPECT_EQ(update.exec({"P", "A%"}), 3);
        EXPECT_EQ(update.exec({"Q", "A1"}), 1);
        tx.commit();
    }
    EXPECT_EQ(s.scalar("SELECT c_intitule FROM strcompetition WHERE c_index = 'A1'").toString(),
              QStringLiteral("Œuvre « Étang » — 12 € ; 'quote' \"deux\""));
    EXPECT_TRUE(s.scalar("SELECT c_numero FROM strcompetition WHERE c_index = 'A1'").isNull());
    EXPECT_EQ(s.scalar("SELECT c_nb_lignes FROM strcompetition WHERE c_index = 'A2'").toLongLong(),
              9000000000LL);
    EXPECT_EQ(s.scalar("SELECT length(c_numero) FROM strcompetition WHERE c_index = 'A3'").toInt(),
              300000);
    EXPECT_EQ(s.scalar("SELECT group_concat(c_phase) FROM (SELECT c_phase FROM strcompetition "
                       "ORDER BY c_index) AS p")
                  .toString(),
              "Q,P,P");
}

TEST(PreparedStatement, AFailingRowIsNamedAndRollsBackWithItsTransaction) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    Store& s = session->store();
    const int before = s.scalar("SELECT count(*) FROM strclub").toInt();
    try {
        Transaction tx(s);
        auto insert = PreparedStatement::insertInto(s, "strclub", {"club_code", "club_nom"});
        insert.exec({"CL13001", "Premier"});
        // The unique code refuses the second row.
        insert.exec({"cl13001", "Doublon"});
        tx.commit();
        FAIL() << "a duplicate code was written";
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().contains("strclub")) << e.message().toStdString();
        EXPECT_TRUE(e.message().contains("ajout")) << e.message().toStdString();
    }
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strclub").toInt(), before);
    // The store goes on: the next operation works.
    Transaction tx(s);
    PreparedStatement(s, "INSERT INTO strclub (club_code) VALUES (?)").exec({"CL13002"});
    tx.commit();
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strclub").toInt(), before + 1);
}
