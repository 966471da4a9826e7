#include <gtest/gtest.h>

#include "reference/Articles.h"
#include "reference/Centres.h"
#include "reference/Clubs.h"
#include "reference/Committees.h"
#include "reference/Leagues.h"
#include "reference/Natures.h"
#include "reference/Visibility.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::reference;

namespace {

QStringList column(const store::Rows& rows, const char* field) {
    QStringList values;
    for (const auto& r : rows) values << r.value(field).toString();
    return values;
}

QString refusalOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Refusal& r) {
        return r.message();
    }
    return {};
}

const Viewer kNational{"gestu", "JKV", "D1"};
const Viewer kLeagueD1{"ligue06", "LR06", "D1"};
const Viewer kLeagueDD{"ligue06", "LR06", "DD"};
const Viewer kCommittee{"CD13", "13", "D1"};

}  // namespace

TEST(ReferenceVisibility, EachKindOfUserSeesItsOwnParties) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();

    EXPECT_EQ(committees::list(s, kNational).size(), 10u);
    EXPECT_EQ(column(committees::list(s, kLeagueD1), "de_no"), (QStringList{"013", "083"}));
    // A "DD" installation shows every district of the league.
    EXPECT_EQ(column(committees::list(s, kLeagueDD), "de_no"), (QStringList{"006", "013", "083"}));
    EXPECT_EQ(column(committees::list(s, kCommittee), "de_no"), (QStringList{"013"}));
    EXPECT_TRUE(committees::list(s, Viewer{"CD98", "98", "D1"}).empty());

    EXPECT_EQ(clubs::list(s, kNational).size(), 14u);
    EXPECT_EQ(column(clubs::list(s, kLeagueD1), "club_code"),
              (QStringList{"CL13001", "CL13002", "CL13003", "CL83001"}));
    EXPECT_EQ(clubs::list(s, kLeagueDD).size(), 5u);
    EXPECT_EQ(column(clubs::list(s, kCommittee), "club_code"),
              (QStringList{"CL13001", "CL13002", "CL13003"}));

    // Centres know no district: a league user sees the whole league.
    EXPECT_EQ(centres::list(s, kNational).size(), 6u);
    EXPECT_EQ(column(centres::list(s, kLeagueD1), "b_compte_tiers"),
              (QStringList{"BOW0131", "BOW0832"}));

    // The filter takes the caller's column names and binds the user's values.
    const store::Condition f = visibilityFilter(kLeagueD1, {"c_lr", "c_district", "c_dept"});
    EXPECT_EQ(f.where(), " WHERE c_lr = ? AND c_district = ?");
    EXPECT_EQ(f.params(), (store::Params{"LR06", "D1"}));
    EXPECT_EQ(visibilityFilter(kCommittee, {"c_lr", "c_district", "c_dept"}).params(),
              (store::Params{"013"}));
    EXPECT_TRUE(visibilityFilter(kNational, {"c_lr", "c_district", "c_dept"}).isEmpty());
    // A quote in a login or league is only a value: it finds nothing and breaks nothing.
    EXPECT_TRUE(committees::list(s, Viewer{"x", "LR06' or '1'='1", "D1"}).empty());
}

TEST(ReferenceCodes, NumbersKeysAndItems) {
    EXPECT_EQ(formatNumber("5", 3), "005");
    EXPECT_EQ(formatNumber(" 0013 ", 3), "013");
    EXPECT_EQ(formatNumber("LR06", 2), "LR06");
    EXPECT_EQ(clubs::clubKey("5", "7"), "CL05007");
    EXPECT_EQ(clubs::clubKey("098", "12"), "CL98012");
    EXPECT_EQ(itemCode("013 # Bouches-du-Rhône"), "013");
    EXPECT_EQ(itemCode("Choisir"), "");
    EXPECT_EQ(committees::joinEntity({true, "5"}), "CD05");
    EXPECT_EQ(committees::joinEntity({false, "LR06"}), "LR06");
    EXPECT_TRUE(committees::splitEntity("CD13").committee);
    EXPECT_EQ(committees::splitEntity("CD13").code, "13");
    EXPECT_FALSE(committees::splitEntity("LR06").committee);
    EXPECT_EQ(articles::checkAccount(" 7061 ").text, "000007061");
    EXPECT_EQ(articles::checkAccount("70a").message, "L'affectaion comptable est une zone numeric");
    EXPECT_EQ(articles::checkAccount("70a").text, "70a");
}

TEST(ReferenceLeagues, CsrInvoicingNeedsNameAndMail) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    const QDate today(2026, 12, 3);
    Card card = cardOf(*leagues::find(s, "LR69"));
    EXPECT_EQ(leagues::invoicingOf(""), leagues::Invoicing::Csr);
    card["re_csr_nom"] = "   ";
    card["re_mail2"] = "csr@x.example";
    EXPECT_EQ(refusalOf([&] { leagues::save(s, "LR69", card, leagues::Invoicing::Csr, today); }),
              "Nom et Mail du Président du CSR obligatoires");
    EXPECT_EQ(leagues::find(s, "LR69")->value("re_fact").toString(), "LR");
    leagues::save(s, "LR69", card, leagues::Invoicing::League, today);
    const auto row = leagues::find(s, "LR69");
    EXPECT_EQ(row->value("re_csr_nom").toString(), "   ");
    EXPECT_EQ(row->value("re_date_enreg").toString(), "03/12/2026");
}

TEST(ReferenceCommittees, EntityLookUpsAndSave) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    EXPECT_EQ(committees::lookUpEntity(s, {true, "5"}).message, "Cette CD n'existe pas");
    EXPECT_EQ(committees::lookUpEntity(s, {true, "6"}).name, "Alpes-Maritimes");
    EXPECT_EQ(committees::lookUpEntity(s, {false, "6"}).message, "Cette LR n'existe pas");
    EXPECT_EQ(committees::lookUpLeague(s, "LR11").name, "Ligue Régionale Île-de-France");

    committees::CommitteeEdit edit{
        cardOf(*committees::find(s, "6")), "LR06", "d3", "41", {true, "99"}};
    EXPECT_EQ(refusalOf([&] { committees::save(s, "006", edit, QDate(2026, 11, 21)); }),
              "L'entité de facturation est obligatoire");
    edit.entity = {true, "6"};
    edit.card["de_lib"] = "Alpes-Maritimes; l'\"azur\"";
    committees::save(s, "6", edit, QDate(2026, 11, 21));
    const auto row = committees::find(s, "006");
    EXPECT_EQ(row->value("de_facturation").toString(), "CD06");
    EXPECT_EQ(row->value("de_district").toString(), "D3");
    EXPECT_EQ(row->value("de_compta").toString(), "000041");
    EXPECT_EQ(row->value("de_lib").toString(), "Alpes-Maritimes; l'\"azur\"");
    EXPECT_EQ(committees::cardCaption(*row),
              "FICHE DU COMITE DEPARTEMENTAL : 006 - Alpes-Maritimes; l'\"azur\"");
}

TEST(ReferenceCentres, ApprovalDateLanesAndType) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    centres::CentreEdit edit{cardOf(*centres::find(s, "BOW0832")), "18", false, "05/03/2019"};
    centres::save(s, "BOW0832", edit, QDate(2026, 11, 21));
    auto row = centres::find(s, "BOW0832");
    EXPECT_EQ(row->value("b_homologation_tri").toString(), "20190305");
    EXPECT_EQ(row->value("b_pistes").toInt(), 18);
    EXPECT_EQ(row->value("b_type").toString(), "Bois");
    EXPECT_EQ(row->value("b_region").toString(), "LR06");

    edit.approvalDate = "__/__/____";
    edit.synthetic = true;
    centres::save(s, "BOW0832", edit, QDate(2026, 11, 21));
    row = centres::find(s, "BOW0832");
    EXPECT_EQ(row->value("b_homologation").toString(), "__/__/____");
    EXPECT_EQ(row->value("b_homologation_tri").toString(), "________");
    EXPECT_EQ(row->value("b_type").toString(), "Synthétique");

    edit.lanes = "douze";
    EXPECT_FALSE(
        refusalOf([&] { centres::save(s, "BOW0832", edit, QDate(2026, 11, 21)); }).isEmpty());
    edit.lanes = "12";
    edit.approvalDate = "31/02/2019";
    EXPECT_FALSE(
        refusalOf([&] { centres::save(s, "BOW0832", edit, QDate(2026, 11, 21)); }).isEmpty());
    edit.approvalDate = "12/0_/2019";
    EXPECT_FALSE(
        refusalOf([&] { centres::save(s, "BOW0832", edit, QDate(2026, 11, 21)); }).isEmpty());
    EXPECT_EQ(centres::find(s, "BOW0832")->value("b_pistes").toInt(), 18);
}

TEST(ReferenceClubs, AddBuildsTheKeyAndRefusesDuplicates) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    clubs::ClubEdit edit{{}, "", "41", "LR06", "5", "7"};
    edit.card["club_nom"] = "Club d'essai";
    EXPECT_EQ(refusalOf([&] { clubs::add(s, edit, QDate(2026, 11, 21)); }), "District obligatoire");
    edit.district = "D1";
    EXPECT_EQ(clubs::add(s, edit, QDate(2026, 11, 21)), "CL05007");
    const auto row = clubs::find(s, "CL05007");
    EXPECT_EQ(row->value("club_dept").toString(), "005");
    EXPECT_EQ(row->value("club_num").toString(), "007");
    EXPECT_EQ(row->value("club_compta").toString(), "000041");
    EXPECT_EQ(refusalOf([&] { clubs::add(s, edit, QDate(2026, 11, 21)); }),
              "Ce club existe déjà...");
    edit.number = "sept";
    EXPECT_FALSE(refusalOf([&] { clubs::add(s, edit, QDate(2026, 11, 21)); }).isEmpty());

    // Editing never moves a club to another key, league or department.
    edit = {cardOf(*clubs::find(s, "CL13001")), "D2", "411131", "LR11", "075", "9"};
    clubs::save(s, "CL13001", edit, QDate(2026, 11, 22));
    const auto edited = clubs::find(s, "CL13001");
    EXPECT_EQ(edited->value("club_region").toString(), "LR06");
    EXPECT_EQ(edited->value("club_district").toString(), "D2");
    EXPECT_EQ(edited->value("club_date_enreg").toString(), "22/11/2026");

    EXPECT_EQ(clubs::departmentItems(s, kCommittee).size(), 1u);
    EXPECT_EQ(clubs::leagueItems(s, kCommittee).at(0).code, "LR06");
    EXPECT_EQ(clubs::departmentItems(s, kNational).size(), 10u);
    EXPECT_EQ(clubs::departmentItems(s, kLeagueD1).size(), 3u);
}

TEST(ReferenceArticles, NumberingNaturesAndTariffs) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    EXPECT_EQ(articles::nextCode(s), "00000013");
    s.insert("strarticle", {{"a_index", "00000041"}});
    EXPECT_EQ(articles::add(s, {"Nouvel article", "DIV", "706", ""}), "00000042");
    EXPECT_EQ(articles::find(s, "00000042")->value("a_cpta").toString(), "000000706");
    EXPECT_EQ(refusalOf([&] {
                  articles::add(s, {"Sans nature", "", "", ""});
              }),
              "code nature obligatoire");

    EXPECT_EQ(articles::natureItems(kLeagueD1).size(), 2u);
    EXPECT_EQ(articles::natureItems(kNational).size(), 6u);
    EXPECT_EQ(articles::natureItems(kNational)[3].text(), "XXX # compétition fédérales");
    EXPECT_EQ(articles::natureDisplay("XXX"), "Facturation compétition fédérale");

    const QString badSeason = "code saison incohérent (compris entre 2018 et 2030)";
    for (const char* season : {"2017", "2031", "", "20a9"})
        EXPECT_EQ(refusalOf([&] {
                      articles::saveTariff(s, {"00000042", "DIV", season, "1"}, true);
                  }),
                  badSeason);
    articles::saveTariff(s, {"00000042", "DIV", "2018", "12,50"}, true);
    articles::saveTariff(s, {"00000042", "DIV", "2030", "3"}, true);
    EXPECT_EQ(refusalOf([&] {
                  articles::saveTariff(s, {"00000042", "DIV", "2018", "9"}, true);
              }),
              "ce tarif est déjà enregistré");
    EXPECT_FALSE(refusalOf([&] {
                     articles::saveTariff(s, {"00000042", "DIV", "2019", "douze"}, true);
                 }).isEmpty());
    articles::saveTariff(s, {"00000042", "DIV", "2018", "13,05"}, false);
    const auto prices = articles::tariffs(s, "00000042", "DIV");
    EXPECT_EQ(column(prices, "t_saison"), (QStringList{"2018", "2030"}));
    EXPECT_EQ(column(prices, "t_tarif"), (QStringList{"1305", "300"}));
}

TEST(ReferenceArticles, FirstArticleOfAnEmptyTable) {
    test::TestInstall install(test::TestInstall::Kind::Empty);
    auto session = install.start();
    EXPECT_EQ(articles::add(session->store(), {"Premier", "LIC", "1", ""}), "00000001");
}

TEST(ReferenceNatures, SavePushesOptionsIntoEveryCompetitionOfTheNature) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    s.insert("strcompetition", {{"c_index", "FD600001"},
                                {"c_nature", "CHAF"},
                                {"c_facture", "F"},
                                {"c_nat_fact", "R"},
                                {"c_fact_ligne", "O"},
                                {"c_fact_engagement", "O"}});
    s.insert("strcompetition",
             {{"c_index", "FD600002"}, {"c_nature", "DBHON"}, {"c_nat_fact", "R"}});

    EXPECT_EQ(refusalOf([&] {
                  natures::save(s, {"chaf", "x", true, false, false}, true);
              }),
              "Ce code existe déjà");
    // Every competition of the nature, the demo's included.
    const int chaf =
        s.scalar("select count(*) from strcompetition where c_nature = 'CHAF'").toInt();
    EXPECT_EQ(natures::save(s, {"CHAF", "challenge fédéral", true, false, true}, false), chaf);
    EXPECT_EQ(s.scalar("select c_nat_fact || c_fact_ligne || c_fact_engagement from strcompetition "
                       "where c_index = 'FD600001'")
                  .toString(),
              "ENO");
    EXPECT_EQ(
        s.scalar("select c_nat_fact from strcompetition where c_index = 'FD600002'").toString(),
        "R");
    EXPECT_EQ(s.scalar("select n_libelle from strnaturec where n_code = 'CHAF'").toString(),
              "CHALLENGE FÉDÉRAL");

    // The pseudo-competitions follow their nature too.
    natures::save(s, {"LIC", "Licences", true, true, false}, false);
    EXPECT_EQ(s.scalar("select c_nat_fact || c_fact_engagement from strcompetition where c_index = "
                       "'8FA00000'")
                  .toString(),
              "EN");

    natures::save(s, {"new1", "nouvelle nature", false, true, true}, true);
    const auto added = s.selectOne("select * from strnaturec where n_code = 'NEW1'");
    ASSERT_TRUE(added);
    EXPECT_EQ(added->value("n_code").toString(), "NEW1");
    EXPECT_EQ(added->value("n_libelle").toString(), "NOUVELLE NATURE");
    EXPECT_EQ(added->value("n_type").toString(), "FD");
    natures::remove(s, "NEW1");
    EXPECT_FALSE(s.exists("select 1 from strnaturec where n_code = 'NEW1'"));
}

TEST(ReferenceRecords, DigitFieldsRefuseOtherTextAndNamesAreMandatory) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();
    const QDate today(2026, 11, 21);
    const QString digits = "Le champ « %1 » n'accepte que des chiffres : « 41O13A ».";
    const QString required = "Le champ « %1 » est obligatoire.";

    clubs::ClubEdit club{cardOf(*clubs::find(s, "CL13001")), "D1", "41O13A", "LR06", "13", "8"};
    EXPECT_EQ(refusalOf([&] { clubs::save(s, "CL13001", club, today); }),
              digits.arg("Code comptable"));
    EXPECT_EQ(refusalOf([&] { clubs::add(s, club, today); }), digits.arg("Code comptable"));
    club.account = "411131";
    club.card["club_nom"] = "  ";
    EXPECT_EQ(refusalOf([&] { clubs::save(s, "CL13001", club, today); }),
              required.arg("Nom du Club"));
    EXPECT_EQ(refusalOf([&] { clubs::add(s, club, today); }), required.arg("Nom du Club"));
    EXPECT_FALSE(clubs::find(s, "CL13008"));
    EXPECT_FALSE(clubs::find(s, "CL13001")->value("club_nom").toString().trimmed().isEmpty());

    committees::CommitteeEdit committee{
        cardOf(*committees::find(s, "6")), "LR06", "D3", "41O13A", {true, "6"}};
    EXPECT_EQ(refusalOf([&] { committees::save(s, "6", committee, today); }),
              digits.arg("Imputation comptable"));
    committee.account = "41";
    committee.card["de_lib"] = "";
    EXPECT_EQ(refusalOf([&] { committees::save(s, "6", committee, today); }),
              required.arg("Intitulé du Comité Départemental"));

    Card league = cardOf(*leagues::find(s, "LR69"));
    league["re_lib"] = " ";
    EXPECT_EQ(
        refusalOf([&] { leagues::save(s, "LR69", league, leagues::Invoicing::League, today); }),
        required.arg("Intitulé de la Ligue Régionale"));

    centres::CentreEdit centre{cardOf(*centres::find(s, "BOW0832")), "18", false, "__/__/____"};
    centre.card["b_nom"] = "";
    EXPECT_EQ(refusalOf([&] { centres::save(s, "BOW0832", centre, today); }), required.arg("Nom"));

    const QString lastArticle = articles::nextCode(s);
    EXPECT_EQ(refusalOf([&] {
                  articles::add(s, {"Article", "DIV", "41O13A", ""});
              }),
              digits.arg("Compte comptable"));
    EXPECT_EQ(refusalOf([&] {
                  articles::add(s, {" ", "DIV", "706", ""});
              }),
              required.arg("Libellé"));
    EXPECT_EQ(articles::nextCode(s), lastArticle);
    EXPECT_EQ(refusalOf([&] {
                  natures::save(s, {"NEUF", " ", true, true, true}, true);
              }),
              required.arg("Libellé"));
    EXPECT_FALSE(s.exists("SELECT 1 FROM strnaturec WHERE n_code = 'NEUF'"));
}

TEST(ReferenceListings, GridsListInTheRulesOrderWithValuesBound) {
    test::TestInstall install;
    auto session = install.start();
    auto& s = session->store();

    // Leagues stay in the order the table holds them, not by code.
    s.insert("strregion", {{"re_code", "LR01"}, {"re_lib", "Ligue ajoutée"}});
    const auto listed = s.select(leagues::listing());
    EXPECT_EQ(listed.size(), 7u);
    EXPECT_EQ(listed.front().value("re_code").toString(), "LR06");
    EXPECT_EQ(listed.back().value("re_code").toString(), "LR01");

    s.insert("strarticle", {{"a_index", "00000000"}, {"a_nature", "DIV"}});
    EXPECT_EQ(s.select(articles::listing()).front().value("a_index").toString(), "00000000");
    s.insert("strnaturec", {{"n_code", "AAA"}});
    EXPECT_EQ(s.select(natures::listing()).front().value("n_code").toString(), "AAA");

    // An article's prices for one nature only, by season; a quote is just a value.
    articles::saveTariff(s, {"00000000", "DIV", "2030", "1"}, true);
    articles::saveTariff(s, {"00000000", "LIC", "2019", "2"}, true);
    articles::saveTariff(s, {"00000000", "DIV", "2020", "3"}, true);
    EXPECT_EQ(column(s.select(articles::tariffListing("00000000", "DIV")), "t_saison"),
              (QStringList{"2020", "2030"}));
    EXPECT_TRUE(s.select(articles::tariffListing("00000000' or '1'='1", "DIV")).empty());
}
