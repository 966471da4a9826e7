#include <gtest/gtest.h>

#include "ImportTestSupport.h"
#include "imports/ChampionshipImport.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::imports;

namespace {

ChampionshipSettings season2027() {
    return ChampionshipSettings::fromTexts("2027", "27/05/2027", QDate(2026, 11, 21));
}

// Key, nature, party and the three counts of each championship row, by key.
QStringList championshipRows(const store::Store& s) {
    QStringList out;
    for (const auto& r : s.select("SELECT c_index, c_nature, c_codification, c_nom_organisateur, "
                                  "c_cod3, c_cod4, c_cod5 FROM strcompetition WHERE c_nature IN "
                                  "('CDCND', 'CDCNH') AND c_index LIKE '_FD%' "
                                  "ORDER BY c_index")) {
        QStringList cols;
        for (int i = 0; i < r.count(); ++i) cols << r.value(i).toString();
        out << cols.join('|');
    }
    return out;
}

void addRow(store::Store& s, const QString& index, const QString& nature = "LIC") {
    s.insert("strcompetition", {{"c_index", index},
                                {"index_reference", "00000000"},
                                {"c_saison", "2027"},
                                {"c_nature", nature}});
}

}  // namespace

TEST(ChampionshipImport, EachClubGivesTwoConsecutiveCompetitionsAfterTheHighestOfItsPrefix) {
    test::TestInstall inst;
    auto session = inst.start();
    // The demo's own championship rows of the season would be duplicates here.
    session->store().exec("DELETE FROM strcompetition WHERE c_index LIKE '7FD%'");
    store::Store& s = session->store();
    // Keys of other prefixes around "7FD" say nothing of its numbering.
    addRow(s, "7FD00040");
    addRow(s, "7PR00090");
    addRow(s, "FD700077");
    addRow(s, "6FD00500");
    ChampionshipImport import(s, season2027());
    import.check(
        test::importText("CL13001 Bowling Club Phocéen;3;2;1;4;3;2\n"
                         "CL971004 - Bowling Club de Jarry;;;;1;0;0\n"
                         "cl75001Paris Quilles Club;0;0;0;0;0;0\n"));
    EXPECT_EQ(import.duplicates(), 0);
    const ImportReport r = import.write(false);
    EXPECT_EQ(r.created, 6);
    // A club the installation does not know is imported, and named.
    ASSERT_EQ(r.lines().size(), 1u);
    EXPECT_EQ(r.lines()[0].number, 2);
    EXPECT_FALSE(r.lines()[0].skipped);
    EXPECT_EQ(r.lines()[0].reason,
              "club CL971004 inconnu : compétitions importées sans club à facturer");
    EXPECT_EQ(championshipRows(s),
              (QStringList{"7FD00041|CDCND|CL13001|Bowling Club Phocéen|3|2|1",
                           "7FD00042|CDCNH|CL13001|Bowling Club Phocéen|4|3|2",
                           "7FD00043|CDCND|CL971004|Bowling Club de Jarry|0|0|0",
                           "7FD00044|CDCNH|CL971004|Bowling Club de Jarry|1|0|0",
                           "7FD00045|CDCND|CL75001|Paris Quilles Club|0|0|0",
                           "7FD00046|CDCNH|CL75001|Paris Quilles Club|0|0|0"}));
    const auto row = *s.selectOne("SELECT * FROM strcompetition WHERE c_index = '7FD00042'");
    EXPECT_EQ(row.value("c_saison").toString(), "2027");
    EXPECT_EQ(row.value("c_type").toString(), "FD");
    EXPECT_EQ(row.value("c_intitule").toString(), "CHAMPIONNAT DES CLUBS-NATIONAL");
    EXPECT_EQ(row.value("c_formule").toString(), "00");
    EXPECT_EQ(row.value("c_date_finale").toString(), "27/05/2027");
    EXPECT_EQ(row.value("c_tri_finale").toString(), "20270527");
    EXPECT_EQ(row.value("c_dept").toString(), "00");
    EXPECT_EQ(row.value("c_num_bowling").toString(), "000");
    EXPECT_EQ(row.value("c_organisateur").toString(), "C");
    EXPECT_EQ(row.value("c_arbitre").toString(), "NC");
    EXPECT_EQ(row.value("c_date_enreg").toString(), "01/12/2017");
    EXPECT_EQ(row.value("c_date_modif").toString(), "01/12/2017");
    EXPECT_EQ(row.value("c_facture").toString(), " ");
    EXPECT_EQ(row.value("c_nat_fact").toString(), "C");
    EXPECT_EQ(row.value("c_fact_ligne").toString(), "N");
    EXPECT_EQ(row.value("c_fact_engagement").toString(), "N");
    EXPECT_EQ(row.value("c_envoi_mail").toString(), "N");
    EXPECT_EQ(row.value("c_add_tiers").toString(), "N");
    EXPECT_EQ(row.value("index_reference").toString(), "00000000");

    // Another season has its own prefix, starting at 1.
    ChampionshipImport next(s, ChampionshipSettings::fromTexts("2028", "30/05/2028", inst.today()));
    next.check(test::importText("CL13001 Bowling Club Phocéen;1;1;1;1;1;1\n"));
    next.write(false);
    EXPECT_EQ(s.scalar("SELECT c_tri_finale FROM strcompetition WHERE c_index = '8FD00002'"),
              "20280530");
}

TEST(ChampionshipImport, RepeatedLinesCreateOnePairAndBadLinesAreNamed) {
    test::TestInstall inst;
    auto session = inst.start();
    // The demo's own championship rows of the season would be duplicates here.
    session->store().exec("DELETE FROM strcompetition WHERE c_index LIKE '7FD%'");
    store::Store& s = session->store();
    ChampionshipImport import(s, season2027());
    import.check(
        test::importText("CL13001 Phocéen;1;0;0;1;0;0\n"
                         "CL13001 Phocéen ; 1;0;0;1;0;0\n"
                         "CL13002 Aix;1;0;0;1;0;0\n"
                         "CL13001 Phocéen;1;0;0;1;0;0\n"
                         "Club sans code;1;0;0;1;0;0\n"
                         "CL1300 Trop court;1;0;0;1;0;0\n"
                         "CL13003 Aubagne;un;0;0;1;0;0\n"
                         ";1;1;1;1;1;1\n"));
    const ImportReport r = import.write(false);
    // Only consecutive repeats count: the fourth line is a second entry.
    EXPECT_EQ(r.created, 6);
    QStringList reasons;
    for (const auto& l : r.lines()) reasons << QString::number(l.number) + ' ' + l.reason;
    EXPECT_EQ(reasons,
              (QStringList{"2 répète la ligne 1",
                           "5 code club « Club » invalide (CL suivi du département et du numéro "
                           "du club attendu)",
                           "6 code club « CL1300 » invalide (CL suivi du département et du "
                           "numéro du club attendu)",
                           "7 nombre de lignes (champ 2) « un » non numérique", "8 club absent"}));
    EXPECT_FALSE(s.exists("SELECT 1 FROM strcompetition WHERE c_codification = 'CL13003'"));
}

TEST(ChampionshipImport, ASecondImportAsksAndNoKeepsOnlyTheNewOnes) {
    test::TestInstall inst;
    auto session = inst.start();
    // The demo's own championship rows of the season would be duplicates here.
    session->store().exec("DELETE FROM strcompetition WHERE c_index LIKE '7FD%'");
    store::Store& s = session->store();
    const QString first = QStringLiteral("CL13001 Phocéen;1;0;0;1;0;0\nCL13002 Aix;1;0;0;1;0;0\n");
    ChampionshipImport once(s, season2027());
    once.check(test::importText(first));
    once.write(false);
    // The same championship a season later is no duplicate.
    addRow(s, "6FD00001", "CDCND");
    s.exec(
        "UPDATE strcompetition SET c_saison = '2026', c_codification = 'CL13003' WHERE c_index "
        "= '6FD00001'");

    ChampionshipImport again(s, season2027());
    again.check(test::importText(first + "CL13003 Aubagne;1;0;0;1;0;0\n"));
    EXPECT_EQ(again.duplicates(), 4);
    EXPECT_EQ(duplicateQuestion(again.duplicates()),
              "4 compétitions de ce fichier existent déjà. Les importer une seconde fois ?");
    EXPECT_EQ(again.write(false).created, 2);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strcompetition WHERE c_index LIKE '7FD%'").toInt(), 6);
    EXPECT_EQ(s.scalar("SELECT c_codification FROM strcompetition WHERE c_index = '7FD00006'"),
              "CL13003");

    ChampionshipImport twice(s, season2027());
    twice.check(test::importText(first));
    EXPECT_EQ(twice.write(true).created, 4);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strcompetition WHERE c_codification = 'CL13001' AND "
                       "c_saison = '2027'")
                  .toInt(),
              4);
}

TEST(ChampionshipImport, SeasonAndFinalMustBeAYearAndADate) {
    EXPECT_EQ(defaultFinalDate(2027), "27/05/2027");
    EXPECT_THROW(ChampionshipSettings::fromTexts("27", "27/05/2027", QDate(2026, 11, 21)), Refusal);
    EXPECT_THROW(ChampionshipSettings::fromTexts("2027", "31/02/2027", QDate(2026, 11, 21)),
                 Refusal);
    EXPECT_THROW(ChampionshipSettings::fromTexts("2027", "__/__/____", QDate(2026, 11, 21)),
                 Refusal);
    const auto ok = ChampionshipSettings::fromTexts(" 2030 ", "1/6/2030", QDate(2026, 11, 21));
    EXPECT_EQ(ok.season, 2030);
    EXPECT_EQ(ok.finalDate, QDate(2030, 6, 1));
}
