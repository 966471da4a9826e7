#include <gtest/gtest.h>

#include <QDateTime>
#include <QSysInfo>
#include <functional>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/InvoicingRuns.h"
#include "competitions/PseudoCompetitions.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::competitions;

namespace {

const reference::Viewer kLeague06{"ligue06", "LR06", "D1"};
const reference::Viewer kCommittee13{"CD13", "13", "D1"};
const reference::Viewer kNational{"gestu", "JKV", "D1"};

CompetitionRecord card(const QString& season, const QString& kind = kClubs) {
    CompetitionRecord r;
    r.season = season;
    r.title = QStringLiteral("Coupe d'essai");
    r.composition = QStringLiteral("2");
    r.nature = QStringLiteral("CDCNH");
    r.billedKind = kind;
    r.eliminatoryLines = QStringLiteral("6");
    r.finalLines = QString();
    r.date = QStringLiteral("14/03/") + season;
    return r;
}

// "key|party|state|teams/eliminatory/finals" of each party row, by key.
QStringList rows(const store::Store& s, const QString& index) {
    QStringList out;
    for (const auto& r : s.select(partyRowsQuery(index)))
        out << QStringLiteral("%1|%2|%3|%4/%5/%6")
                   .arg(r.value("c_index").toString(), r.value("c_nom_organisateur").toString(),
                        r.value("c_facture").toString(), r.value("c_nb_equipe").toString(),
                        r.value("c_nb_equipe_eliminatoire").toString(),
                        r.value("c_nb_equipe_finale").toString());
    return out;
}

QString rowOf(const store::Store& s, const QString& index, const QString& party) {
    return s
        .scalar(QStringLiteral("SELECT c_index FROM strcompetition WHERE index_reference = ? AND "
                               "c_nom_organisateur LIKE ?"),
                {index, party + QStringLiteral(" - %")})
        .toString();
}

QString column(const store::Store& s, const QString& index, const char* name) {
    return s
        .scalar(QStringLiteral("SELECT %1 FROM strcompetition WHERE c_index = ?")
                    .arg(QLatin1String(name)),
                {index})
        .toString();
}

void addClub(store::Store& s, const QString& code, const QString& league, const QString& district) {
    s.insert(QStringLiteral("strclub"), {{"club_code", code},
                                         {"club_nom", QStringLiteral("Club ") + code},
                                         {"club_region", league},
                                         {"club_district", district},
                                         {"club_dept", "0" + code.mid(2, 2)}});
}

std::string refusal(const std::function<void()>& f) {
    try {
        f();
    } catch (const Refusal& r) {
        return r.message().toStdString();
    }
    return "(no refusal)";
}

}  // namespace

TEST(CompetitionRegister, KeysShareOneSequencePerSeasonDigit) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();

    // No club yet: the master is saved all the same, and the window is told.
    const ValidationOutcome first = saveCompetition(s, kLeague06, card("2020"));
    EXPECT_EQ(first.index, "FD000001");
    EXPECT_EQ(first.emptyListMessage.value_or(""), QStringLiteral("aucun club à facturer"));
    EXPECT_EQ(saveCompetition(s, kLeague06, card("2030")).index, "FD000002");
    EXPECT_EQ(saveCompetition(s, kLeague06, card("2021")).index, "FD100001");
    EXPECT_EQ(
        saveCompetition(s, kLeague06, card("2020", kCommittees)).emptyListMessage.value_or(""),
        QStringLiteral("aucun département à facturer"));
    EXPECT_EQ(column(s, "FD000002", "c_saison"), "2030");
    EXPECT_EQ(column(s, "FD000001", "c_facture"), kMasterState);
    EXPECT_EQ(column(s, "FD000001", "index_reference"), kMasterReference);
    // A line count left blank is stored as 0; the date keeps its sort key.
    EXPECT_EQ(column(s, "FD000001", "c_ligne_finale"), "0");
    EXPECT_EQ(column(s, "FD000001", "c_ligne_eliminatoire"), "6");
    EXPECT_EQ(column(s, "FD000001", "c_tri_finale"), "20200314");

    // Party rows follow the last key above the prefix's first one, whatever
    // its season digit, and never take a key twice.
    s.insert(QStringLiteral("strcompetition"),
             {{"c_index", "FD100050"}, {"index_reference", "FD100001"}, {"c_facture", " "}});
    addClub(s, "CL13001", "LR06", "D1");
    addClub(s, "CL13002", "LR06", "D1");
    addClub(s, "CL75001", "LR11", "D1");
    const ValidationOutcome built = saveCompetition(s, kLeague06, card("2020"));
    EXPECT_EQ(built.index, "FD000004");
    EXPECT_EQ(built.partyRows, 2);
    EXPECT_FALSE(built.emptyListMessage);
    EXPECT_EQ(rows(s, built.index), QStringList({"FD000051|CL13001 - Club CL13001| |0/0/0",
                                                 "FD000052|CL13002 - Club CL13002| |0/0/0"}));
    EXPECT_EQ(nextMasterIndex(s, "2040"), "FD000053");
    EXPECT_EQ(nextPartyIndex(s, "2020"), "FD000053");
}

TEST(CompetitionRegister, RevalidationKeepsRowsAndSwitchesKinds) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    CompetitionRecord r = card("2027");
    r.index = saveCompetition(s, kLeague06, r).index;
    // The clubs of the operator's league, in code order.
    const QStringList clubs = rows(s, r.index);
    ASSERT_EQ(clubs.size(), 5) << clubs.join('\n').toStdString();
    EXPECT_TRUE(clubs[0].contains("|CL06001 - Nice Azur Bowling| |0/0/0"))
        << clubs[0].toStdString();
    EXPECT_TRUE(clubs[4].contains("|CL83001 - Toulon Bowling Passion|"));
    const QString phoceen = rowOf(s, r.index, "CL13001");
    EXPECT_EQ(column(s, phoceen, "c_organisateur"), kClubs);
    EXPECT_EQ(column(s, phoceen, "c_dept"), "013");
    EXPECT_EQ(column(s, phoceen, "c_nature"), "CDCNH");

    // Counts, state and invoice number survive a validation; the card's
    // fields are copied again.
    setTeamCounts(s, kNational, phoceen, {"3", "2", ""});
    s.exec("UPDATE strcompetition SET c_facture = 'C', c_num_facture = '77' WHERE c_index = ?",
           {phoceen});
    r.title = QStringLiteral("Coupe renommée");
    r.billLines = false;
    r.codes = {"", "", "DE", "D13", ""};
    EXPECT_EQ(saveCompetition(s, kLeague06, r).partyRows, 5);
    // The codifications by which the statistics count it, on every row.
    EXPECT_EQ(loadCompetition(s, r.index).codes, r.codes);
    EXPECT_EQ(column(s, phoceen, "c_cod3") + column(s, phoceen, "c_cod4"), "DED13");
    EXPECT_EQ(rows(s, r.index).size(), 5);
    EXPECT_TRUE(rows(s, r.index).contains(phoceen + "|CL13001 - Bowling Club Phocéen|C|3/2/0"));
    EXPECT_EQ(column(s, phoceen, "c_num_facture"), "77");
    EXPECT_EQ(column(s, phoceen, "c_intitule"), QStringLiteral("Coupe renommée"));
    EXPECT_EQ(column(s, phoceen, "c_fact_ligne"), "N");

    // To committees: the club rows go, whatever their state.
    r.billedKind = kCommittees;
    saveCompetition(s, kLeague06, r);
    QStringList committees = rows(s, r.index);
    ASSERT_EQ(committees.size(), 3) << committees.join('\n').toStdString();
    EXPECT_TRUE(committees.join('\n').contains("|CD013 - Bouches-du-Rhône| |0/0/0"));
    EXPECT_EQ(column(s, rowOf(s, r.index, "CD013"), "c_dept"), "013");
    EXPECT_EQ(column(s, rowOf(s, r.index, "CD013"), "c_organisateur"), kCommittees);
    // And back: committee rows go, club rows are made afresh.
    r.billedKind = kClubs;
    saveCompetition(s, kLeague06, r);
    EXPECT_EQ(rows(s, r.index).size(), 5);
    EXPECT_TRUE(rows(s, r.index).join('\n').contains("|CL13001 - Bowling Club Phocéen| |0/0/0"));

    // A committee operator invoices the clubs of its department only.
    const ValidationOutcome cd = saveCompetition(s, kCommittee13, card("2027"));
    EXPECT_EQ(cd.partyRows, 3);
    for (const QString& row : rows(s, cd.index))
        EXPECT_TRUE(row.contains("|CL13")) << row.toStdString();
    // An installation of district "DD" narrows a league operator to that district.
    const reference::Viewer districtUser{"ligue06", "LR06", "DD"};
    EXPECT_EQ(saveCompetition(s, districtUser, card("2027")).emptyListMessage.value_or(""),
              QStringLiteral("aucun club à facturer"));
    s.exec("UPDATE strclub SET club_district = 'DD' WHERE club_code = 'CL13002'");
    const ValidationOutcome dd = saveCompetition(s, districtUser, card("2027", kClubs));
    EXPECT_EQ(rows(s, dd.index).size(), 1);
    EXPECT_TRUE(rows(s, dd.index).front().contains("CL13002"));
}

TEST(CompetitionRegister, NationalLevelRebuildsItsLeagueRows) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    CompetitionRecord r = card("2027", kCommittees);
    r.index = saveCompetition(s, kNational, r).index;
    const QStringList first = rows(s, r.index);
    ASSERT_EQ(first.size(), 6);
    // The party name is cut to 39 characters.
    EXPECT_TRUE(first.front().contains("|LR06 - Ligue Régionale Provence-Alpes-C| |"))
        << first.front().toStdString();
    EXPECT_EQ(column(s, rowOf(s, r.index, "LR06"), "c_organisateur"), kLeagues);

    const QString lr06 = rowOf(s, r.index, "LR06");
    setTeamCounts(s, kNational, lr06, {"4", "1", "1"});
    s.exec("UPDATE strcompetition SET c_facture = 'A' WHERE c_index = ?", {lr06});
    saveCompetition(s, kNational, r);
    const QStringList rebuilt = rows(s, r.index);
    ASSERT_EQ(rebuilt.size(), 6);
    // Made afresh, whatever their state: their counts are gone.
    EXPECT_FALSE(rebuilt.join('\n').contains("|A|"));
    EXPECT_TRUE(rebuilt.join('\n').contains("|LR06 - Ligue Régionale Provence-Alpes-C| |0/0/0"));
}

TEST(CompetitionRegister, InvoicedRowsFreezeTheCompetition) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    CompetitionRecord r = card("2027");
    r.index = saveCompetition(s, kLeague06, r).index;
    EXPECT_EQ(competitionOpenness(s, r.index), Openness::Open);
    const QString phoceen = rowOf(s, r.index, "CL13001");
    s.exec("UPDATE strcompetition SET c_facture = 'F' WHERE c_index = ?", {phoceen});
    EXPECT_EQ(competitionOpenness(s, r.index), Openness::Frozen);
    EXPECT_EQ(refusal([&] { saveCompetition(s, kLeague06, r); }),
              "les caractéristiques de cette compétition ne sont plus modifiables");
    EXPECT_EQ(refusal([&] {
                  setTeamCounts(s, kNational, phoceen, {"1", "1", "1"});
              }),
              "CL13001 - Bowling Club Phocéen : cette ligne est facturée, ses nombres d'équipes "
              "ne sont plus modifiables.");

    // Further invoices go through a complementary competition of its own.
    r.title = QStringLiteral("Complément");
    const ValidationOutcome more = createComplementaryCompetition(s, kLeague06, r);
    EXPECT_NE(more.index, r.index);
    EXPECT_EQ(more.index, "FD700052");  // after the demo's keys and this one's rows
    EXPECT_EQ(more.partyRows, 5);
    EXPECT_EQ(loadCompetition(s, more.index).title, QStringLiteral("Complément"));
    EXPECT_EQ(competitionOpenness(s, more.index), Openness::Open);
    EXPECT_EQ(rows(s, r.index).size(), 5);
    EXPECT_EQ(column(s, phoceen, "c_facture"), "F");

    s.exec("UPDATE strcompetition SET c_facture = 'F' WHERE c_index = ?", {r.index});
    EXPECT_EQ(competitionOpenness(s, r.index), Openness::Closed);
    EXPECT_EQ(refusal([&] { saveCompetition(s, kLeague06, r); }),
              "Cette compétition est facturée, elle n'est plus modifiable");
    // A closed competition is still listed with its season.
    bool listed = false;
    for (const auto& m : s.select(competitionsQuery("2027")))
        listed |= m.value("c_index").toString() == r.index;
    EXPECT_TRUE(listed);
    EXPECT_TRUE(s.select(competitionsQuery("2020")).empty());
}

TEST(CompetitionRegister, CardChecksAndCountsRefuseBadInput) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    CompetitionRecord r = card("2027");
    r.nature.clear();
    EXPECT_EQ(refusal([&] { saveCompetition(s, kLeague06, r); }), "code nature obligatoire");
    r = card("2027");
    r.composition.clear();
    EXPECT_EQ(refusal([&] { checkCompetition(r); }), "code formule obligatoire");
    r = card("2027");
    r.date = format::kEmptyDateMask;
    EXPECT_EQ(refusal([&] { checkCompetition(r); }), "Date compétition obligatoire");
    r.date = "31/02/2027";
    EXPECT_EQ(refusal([&] { checkCompetition(r); }), "Date compétition obligatoire");
    EXPECT_EQ(lineCountText(" 012 "), "12");
    EXPECT_EQ(lineCountText(""), "0");
    // Lines per player that are not a number are refused by name, not billed as 0.
    for (const QString& bad : {"trois", "1,5", "-3"}) {
        r = card("2027");
        r.finalLines = lineCountText(bad);
        const QString expected =
            QStringLiteral(
                "Le champ « Finales : Nombre de lignes par joueur » n'accepte que "
                "des chiffres : « %1 ».")
                .arg(bad);
        EXPECT_EQ(refusal([&] { saveCompetition(s, kLeague06, r); }), expected.toStdString());
    }
    EXPECT_EQ(competitionSortKey("07/02/2027"), "20270207");

    r = card("2027");
    r.index = saveCompetition(s, kLeague06, r).index;
    const QString aix = rowOf(s, r.index, "CL13002");
    setTeamCounts(s, kNational, aix, {"2", "1", "0"});
    for (const QString& bad : {"2,5", "-1", "deux", "1e3"}) {
        EXPECT_EQ(refusal([&] {
                      setTeamCounts(s, kNational, aix, {"4", "4", bad});
                  }),
                  QStringLiteral("CL13002 - Les Quilles d'Aix : « %1 » n'est pas un nombre entier "
                                 "positif ou nul (Equipe Finale).")
                      .arg(bad)
                      .toStdString());
    }
    // Nothing of a refused row is written.
    EXPECT_TRUE(rows(s, r.index).contains(aix + "|CL13002 - Les Quilles d'Aix| |2/1/0"));
    setTeamCounts(s, kNational, aix, {" 7 ", "", "0"});
    EXPECT_TRUE(rows(s, r.index).contains(aix + "|CL13002 - Les Quilles d'Aix| |7/0/0"));
}

TEST(CompetitionRegister, OpeningReleasesCalculatedRowsButNotThoseOfARunOrWithAnInvoice) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    s.exec("UPDATE strcompetition SET c_facture = 'C' WHERE c_index IN ('FD700002', 'FD700016')");
    s.exec(
        "UPDATE strcompetition SET c_facture = 'A', c_num_facture = '9' WHERE c_index = "
        "'FD700009'");
    s.exec("UPDATE strcompetition SET c_facture = 'F' WHERE c_index = 'FD700003'");
    const QString running = column(s, "FD700016", "index_reference").trimmed();
    ASSERT_NE(running, column(s, "FD700002", "index_reference").trimmed());
    // A run killed on another competition long ago, one of a process of this
    // workstation that is gone: neither holds anything.
    s.insert("strtraitement",
             {{"tr_portee", "competition:" + column(s, "FD700002", "index_reference").trimmed()},
              {"tr_jeton", "vieux"},
              {"tr_poste", "ailleurs"},
              {"tr_signe", QDateTime::currentSecsSinceEpoch() - 3600}});
    s.insert("strtraitement", {{"tr_portee", "competition:FD700001"},
                               {"tr_jeton", "mort"},
                               {"tr_poste", QSysInfo::machineHostName()},
                               {"tr_processus", 4194300},
                               {"tr_signe", QDateTime::currentSecsSinceEpoch()}});
    {
        RunLease lease(s, RunScope::competition(running), "gestu");
        const std::string held = "est en cours de facturation par gestu";
        EXPECT_NE(
            refusal([&] { RunLease again(s, RunScope::competition(running), "CD13"); }).find(held),
            std::string::npos);
        EXPECT_NE(refusal([&] {
                      calculateCompetition(s, {"gestu", "JKV", "D1"}, running, "CDCNH", false);
                  }).find(held),
                  std::string::npos);
        EXPECT_EQ(releaseCalculatedRows(s), 1);
        EXPECT_EQ(column(s, "FD700002", "c_facture"), " ");
        EXPECT_EQ(column(s, "FD700016", "c_facture"), "C");  // the run's own
    }
    // The run over, its rows are released like any others.
    EXPECT_EQ(releaseCalculatedRows(s), 1);
    EXPECT_EQ(column(s, "FD700016", "c_facture"), " ");
    // A row with an invoice keeps it, whatever opens.
    EXPECT_EQ(column(s, "FD700009", "c_facture"), "A");
    EXPECT_EQ(column(s, "FD700009", "c_num_facture"), "9");
    EXPECT_EQ(column(s, "FD700003", "c_facture"), "F");
    EXPECT_EQ(column(s, "FD700001", "c_facture"), "G");
    EXPECT_EQ(column(s, invoicing::kLicenceIndex, "c_facture"), "X");
}

TEST(CompetitionCalculation, EachBranchMarksAndClears) {
    struct Case {
        const char* what;
        CalculationInput in;
        const char* nature;
        bool national;
        CalculationDecision out;
    };
    const Case cases[] = {
        // L E NE NEE NEF
        {"lines only, no round", {true, false, 5, 0, 0}, "CDCNH", false, {false, 0, 0, 0}},
        {"entry only, rounds", {false, true, 0, 3, 0}, "CDCNH", false, {false, 0, 0, 0}},
        {"both, finals only", {true, true, 0, 0, 1}, "CDCNH", false, {true, 0, 0, 1}},
        {"both, nothing", {true, true, 0, 0, 0}, "CDCNH", false, {false, 0, 0, 0}},
        {"lines, eliminatory", {true, false, 2, 3, 0}, "CDCNH", false, {true, 0, 3, 0}},
        {"entry, teams", {false, true, 4, 2, 2}, "CDCNH", false, {true, 4, 0, 0}},
        {"national CHAF, no flag", {false, false, 3, 2, 0}, "CHAF", true, {true, 0, 2, 0}},
        {"regional CHAF, no flag", {false, false, 3, 2, 0}, "chaf", false, {false, 0, 2, 0}},
        {"national DBHON", {false, false, 4, 0, 1}, "DBHON", true, {true, 0, 0, 1}},
        {"national DBEXC, entry", {false, true, 4, 0, 0}, "DBEXC", true, {true, 0, 0, 0}},
        {"regional DBEXC", {false, true, 4, 1, 0}, "DBEXC", false, {true, 4, 0, 0}},
        {"national other nature", {false, false, 0, 2, 0}, "CDCNH", true, {false, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        const CalculationDecision d = decideRow(c.in, QString::fromLatin1(c.nature), c.national);
        EXPECT_EQ(d.marked, c.out.marked) << c.what;
        EXPECT_EQ(d.teams, c.out.teams) << c.what;
        EXPECT_EQ(d.eliminatory, c.out.eliminatory) << c.what;
        EXPECT_EQ(d.finals, c.out.finals) << c.what;
    }
}

TEST(CompetitionCalculation, MarksOpenRowsOfTheCompetitionOnly) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    // The demo's club competition: CL06001 2/2/1, CL13001 3/2/1, CL13002 1/0/0,
    // CL13003 2/1/0, CL83001 none; entries and lines billed.
    const QString index = "FD700001";
    EXPECT_EQ(refusal([&] { calculateCompetition(s, kLeague06, index, "CDCNH", true); }),
              "Vous devez d'abord valider cette compétition");
    s.exec("UPDATE strcompetition SET c_facture = 'C' WHERE c_index = 'FD700016'");
    const QString phoceen = rowOf(s, index, "CL13001");
    s.exec("UPDATE strcompetition SET c_facture = 'F' WHERE c_index = ?", {phoceen});
    // Entries no longer billed on one row: its teams are cleared, it stays
    // marked on its rounds.
    s.exec("UPDATE strcompetition SET c_fact_engagement = 'N' WHERE c_index = ?",
           {rowOf(s, index, "CL06001")});

    EXPECT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 3);
    const QStringList r = rows(s, index);
    EXPECT_TRUE(r.contains(rowOf(s, index, "CL06001") + "|CL06001 - Nice Azur Bowling|C|0/2/1"));
    EXPECT_TRUE(r.contains(phoceen + "|CL13001 - Bowling Club Phocéen|F|3/2/1"));
    EXPECT_TRUE(r.contains(rowOf(s, index, "CL13002") + "|CL13002 - Les Quilles d'Aix|C|1/0/0"));
    EXPECT_TRUE(
        r.contains(rowOf(s, index, "CL83001") + "|CL83001 - Toulon Bowling Passion| |0/0/0"));
    // Another competition's calculated row went back to " ".
    EXPECT_EQ(column(s, "FD700016", "c_facture"), " ");
    EXPECT_EQ(s.select(rowsToInvoiceQuery(index)).size(), 3u);

    // The card's nature decides, not the rows' copies: as "DBHON" at the
    // national level the teams go.
    EXPECT_EQ(calculateCompetition(s, kNational, index, "DBHON", false), 3);
    EXPECT_TRUE(rows(s, index).contains(rowOf(s, index, "CL13003") +
                                        "|CL13003 - Strike Club Aubagne|C|0/1/0"));
}

TEST(CompetitionRegister, EachLevelChangesOnlyWhatItOwnsAndOldCompetitionsTakeTheirRowsLevel) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QString league = saveCompetition(s, kLeague06, card("2027")).index;
    const QString committee = saveCompetition(s, kCommittee13, card("2027")).index;
    const QString committees = saveCompetition(s, kLeague06, card("2027", kCommittees)).index;
    const QString national = saveCompetition(s, kNational, card("2027")).index;
    const auto owners = [&] {
        const store::Store& now = session->store();
        return QStringList{competitionOwner(now, league), competitionOwner(now, committee),
                           competitionOwner(now, committees), competitionOwner(now, national),
                           competitionOwner(now, rowOf(now, committee, "CL13001"))};
    };
    const QStringList expected{"LR06", "CD013", "LR06", "JKV", "CD013"};
    EXPECT_EQ(owners(), expected);

    // A committee on the national level's or a league's, a league on a
    // committee's: refused before anything is written.
    const std::string onNational =
        "Cette compétition est celle du niveau national : seuls ce niveau et le niveau national "
        "peuvent la modifier, la calculer ou la facturer. Vous pouvez la consulter.";
    CompetitionRecord r = card("2027");
    r.index = national;
    const QStringList before = rows(s, national);
    EXPECT_EQ(refusal([&] { saveCompetition(s, kCommittee13, r); }), onNational);
    EXPECT_EQ(refusal([&] { calculateCompetition(s, kCommittee13, national, "CDCNH", false); }),
              onNational);
    EXPECT_EQ(rows(s, national), before);
    EXPECT_NE(refusal([&] {
                  setTeamCounts(s, kLeague06, rowOf(s, committee, "CL13001"), {"1", "0", "0"});
              }),
              "(no refusal)");
    r.index = league;
    EXPECT_NE(refusal([&] { createComplementaryCompetition(s, kCommittee13, r); }), "(no refusal)");
    // The owner and the national level may.
    setTeamCounts(s, kCommittee13, rowOf(s, committee, "CL13001"), {"2", "0", "0"});
    setTeamCounts(s, kNational, rowOf(s, committee, "CL13001"), {"3", "0", "0"});
    EXPECT_NO_THROW(calculateCompetition(s, kNational, league, "CDCNH", false));
    EXPECT_NO_THROW(calculateCompetition(s, kLeague06, league, "CDCNH", false));

    // Stored before owners were recorded: the rows tell, once, at sign-in;
    // invoices take their competition's owner, or the national level's.
    s.exec("UPDATE strcompetition SET c_niveau = NULL");
    s.insert("strentete",
             {{"ent_fact_no", "2028000001"}, {"ent_c_index", rowOf(s, league, "CL13001")}});
    s.insert("strentete", {{"ent_fact_no", "2028000002"}, {"ent_c_index", "8FA00000"}});
    session.reset();
    session = inst.startAs("gestu");
    EXPECT_EQ(owners(), expected);
    const auto level = [&](const char* n) {
        return session->store()
            .scalar("SELECT ent_niveau FROM strentete WHERE ent_fact_no = ?", {n})
            .toString();
    };
    EXPECT_EQ(level("2028000001"), "LR06");
    EXPECT_EQ(level("2028000002"), "JKV");
}
