#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/ui/ORVE_ges_competition.h"
#include "reference/Visibility.h"
#include "support/ScreenTesting.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::competitions;

namespace {

using test::child;
using test::next;
using test::pickItem;
using test::type;

int rowOf(app::DataGrid* grid, const QString& index) {
    grid->storeModel()->fetchAll();
    for (int row = 0; row < grid->rowCount(); ++row)
        if (grid->value(row, "c_index").toString() == index) return row;
    return -1;
}

// A window with the card filled as an operator would fill it, not yet validated.
struct Window {
    Window(app::Session& session, app::ScriptedDialogs& dialogs) : screen(session, dialogs) {}
    QLineEdit* box(const char* name) { return child<QLineEdit>(&screen, name); }
    void click(const char* name) { child<QAbstractButton>(&screen, name)->click(); }
    app::DataGrid* grid(const char* name) { return child<app::DataGrid>(&screen, name); }
    void fillCard() {
        click("CmdAjoutCompet");
        pickItem(child<QComboBox>(&screen, "Combo11"), "CDCNH");
        type(box("txt_intitule"), "Coupe des quadrettes");
        pickItem(child<QComboBox>(&screen, "Combo12"), "4 - Quadrette");
        type(box("Mskdate"), "14/03/2027");
    }
    ORVE_ges_competition screen;
};

}  // namespace

TEST(CompetitionScreen, CardMirrorsItsChoicesAndTheSeasonChooserListsTheSeason) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    // Rows calculated or written in an earlier use of the window are put back on opening.
    CompetitionRecord earlier;
    earlier.season = "2027";
    earlier.title = "Coupe d'automne";
    earlier.composition = "2";
    earlier.nature = "CHAF";
    earlier.date = "08/11/2026";
    const QString index =
        saveCompetition(session->store(), reference::Viewer::of(*session), earlier).index;
    ASSERT_EQ(session->store().exec("UPDATE strcompetition SET c_facture = CASE WHEN c_index = "
                                    "(SELECT MIN(c_index) FROM strcompetition WHERE "
                                    "index_reference = ?) THEN 'C' ELSE 'A' END WHERE "
                                    "index_reference = ?",
                                    {index, index}),
              session->store().scalar("SELECT COUNT(*) FROM strregion").toInt());
    app::ScriptedDialogs dialogs;
    Window w(*session, dialogs);
    // Calculated rows go back; a row with an invoice never does.
    EXPECT_EQ(session->store()
                  .scalar("SELECT COUNT(*) FROM strcompetition WHERE c_facture = 'C'")
                  .toInt(),
              0);
    EXPECT_EQ(session->store()
                  .scalar("SELECT COUNT(*) FROM strcompetition WHERE c_facture = 'A'")
                  .toInt(),
              session->store().scalar("SELECT COUNT(*) FROM strregion").toInt() - 1);

    auto* seasons = child<QComboBox>(&w.screen, "cbo_saison");
    EXPECT_EQ(seasons->itemText(0), "2013");
    EXPECT_EQ(seasons->itemText(seasons->count() - 1), "2028");
    EXPECT_EQ(seasons->currentText(), "2027");
    auto* card = child<QGroupBox>(&w.screen, "Frame1");
    EXPECT_FALSE(card->isEnabled());
    EXPECT_FALSE(child<QPushButton>(&w.screen, "CmdValideCompet")->isEnabled());
    EXPECT_FALSE(child<QPushButton>(&w.screen, "Cmdcalcul")->isEnabled());

    w.click("CmdAjoutCompet");
    EXPECT_TRUE(card->isEnabled());
    EXPECT_TRUE(w.box("txt_index")->isReadOnly());
    EXPECT_EQ(w.box("txt_saison")->text(), "2027");
    EXPECT_EQ(w.box("txt_type")->text(), "FD");
    EXPECT_EQ(w.box("txt_nat_fact")->text(), "C");
    EXPECT_EQ(w.box("txt_fact_engagement")->text(), "O");
    EXPECT_EQ(w.box("txt_fact_ligne")->text(), "O");
    EXPECT_EQ(w.box("Mskdate")->displayText(), "__/__/____");
    EXPECT_FALSE(w.grid("DBGrid3")->isVisibleTo(&w.screen));

    // Each option writes its letter; the other button of its group is released.
    const std::pair<const char*, std::pair<const char*, const char*>> options[] = {
        {"txt_nat_fact", {"Option3_1", "D"}},        {"txt_nat_fact", {"Option3_0", "C"}},
        {"txt_fact_engagement", {"Option4_1", "N"}}, {"txt_fact_engagement", {"Option4_0", "O"}},
        {"txt_fact_ligne", {"Option5_1", "N"}},      {"txt_fact_ligne", {"Option5_0", "O"}}};
    for (const auto& [mirror, click] : options) {
        w.click(click.first);
        EXPECT_EQ(w.box(mirror)->text(), click.second) << click.first;
    }
    EXPECT_FALSE(child<QRadioButton>(&w.screen, "Option5_1")->isChecked());

    pickItem(child<QComboBox>(&w.screen, "Combo11"), "DBHON");
    EXPECT_EQ(w.box("txt_naturec")->text(), "DBHON");
    pickItem(child<QComboBox>(&w.screen, "Combo12"), "5 - Equipe de 5");
    EXPECT_EQ(w.box("txt_formule")->text(), "5");
    pickItem(child<QComboBox>(&w.screen, "Combo12"), "Choisir");
    EXPECT_EQ(w.box("txt_formule")->text(), "0");
    type(w.box("Mskdate"), "07/02/2027");
    EXPECT_EQ(w.box("txt_tri_finale")->text(), "20270207");
    // An impossible date leaves the key of the last good one.
    type(w.box("Mskdate"), "31/02/2027");
    EXPECT_EQ(w.box("txt_tri_finale")->text(), "20270207");
    type(w.box("txt_ligne_eliminatoire"), "6 lignes");
    EXPECT_EQ(w.box("txt_ligne_eliminatoire")->text(), "6 lignes");  // refused at saving
    type(w.box("txt_ligne_finale"), "12");
    EXPECT_EQ(w.box("txt_ligne_finale")->text(), "12");

    // Another season lists its own competitions and puts the entry away.
    pickItem(seasons, "2013");
    EXPECT_EQ(w.grid("DBGrid1")->rowCount(), 0);
    EXPECT_FALSE(card->isEnabled());
    EXPECT_EQ(w.box("txt_naturec")->text(), "");
    EXPECT_TRUE(dialogs.shown().empty()) << next(dialogs);
}

TEST(CompetitionScreen, ValidationAsksForTheCardThenBuildsTheClubRowsOfTheLeague) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    app::ScriptedDialogs dialogs;
    Window w(*session, dialogs);
    const int listed = w.grid("DBGrid1")->rowCount();

    w.click("CmdAjoutCompet");
    type(w.box("txt_intitule"), "Coupe des quadrettes");
    w.click("CmdValideCompet");
    EXPECT_EQ(next(dialogs), "code nature obligatoire");
    pickItem(child<QComboBox>(&w.screen, "Combo11"), "CDCNH");
    w.click("CmdValideCompet");
    EXPECT_EQ(next(dialogs), "code formule obligatoire");
    pickItem(child<QComboBox>(&w.screen, "Combo12"), "4 - Quadrette");
    w.click("CmdValideCompet");
    EXPECT_EQ(next(dialogs), "Date compétition obligatoire");
    EXPECT_EQ(w.box("txt_index")->text(), "");
    type(w.box("Mskdate"), "14/03/2027");
    w.click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);

    const QString index = w.box("txt_index")->text();
    EXPECT_TRUE(index.startsWith("FD7")) << index.toStdString();
    EXPECT_EQ(w.grid("DBGrid1")->rowCount(), listed + 1);
    EXPECT_GE(rowOf(w.grid("DBGrid1"), index), 0);
    const int clubs =
        session->store().scalar("SELECT COUNT(*) FROM strclub WHERE club_region = 'LR06'").toInt();
    ASSERT_GT(clubs, 0);
    app::DataGrid* parties = w.grid("DBGrid10");
    EXPECT_EQ(parties->rowCount(), clubs);
    EXPECT_EQ(parties->value(0, "c_organisateur").toString(), "C");
    // The card stays on the competition, validated until it changes again.
    auto* validate = child<QPushButton>(&w.screen, "CmdValideCompet");
    EXPECT_FALSE(validate->isEnabled());
    EXPECT_TRUE(w.box("txt_saison")->isReadOnly());
    EXPECT_TRUE(w.grid("DBGrid3")->isVisibleTo(&w.screen));

    // A club joins the league: validated again, its row comes last by key but
    // the parties are listed by name.
    session->store().insert("strclub", {{"club_code", "CL06000"},
                                        {"club_nom", "Antibes Quilles"},
                                        {"club_region", "LR06"},
                                        {"club_dept", "006"}});
    w.click("Option5_1");
    EXPECT_TRUE(validate->isEnabled());
    w.click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    EXPECT_EQ(parties->rowCount(), clubs + 1);
    EXPECT_TRUE(parties->value(0, "c_nom_organisateur").toString().startsWith("CL06000"));
    EXPECT_GT(parties->value(0, "c_index").toString(), parties->value(1, "c_index").toString());

    // Switching to committees replaces the club rows by the league's committees.
    w.click("Option3_1");
    EXPECT_TRUE(validate->isEnabled());
    w.click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    EXPECT_EQ(w.box("txt_index")->text(), index);
    EXPECT_EQ(
        parties->rowCount(),
        session->store().scalar("SELECT COUNT(*) FROM strdept WHERE de_region = 'LR06'").toInt());
    EXPECT_TRUE(parties->value(0, "c_nom_organisateur").toString().startsWith("CD"));

    // Cancelling leaves the card empty; the competition is listed in its season only.
    w.click("CmdAnnulCompet");
    EXPECT_EQ(w.box("txt_index")->text(), "");
    EXPECT_EQ(parties->rowCount(), 0);
    pickItem(child<QComboBox>(&w.screen, "cbo_saison"), "2026");
    EXPECT_EQ(rowOf(w.grid("DBGrid1"), index), -1);
}

TEST(CompetitionScreen, TypedCountsAreWrittenOrRefusedByNameAndCalculationNeedsAValidatedCard) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    app::ScriptedDialogs dialogs;
    Window w(*session, dialogs);
    w.fillCard();
    w.click("Option5_1");  // entry fees only
    w.click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    app::DataGrid* parties = w.grid("DBGrid10");
    ASSERT_GE(parties->rowCount(), 2);
    const QString first = parties->value(0, "c_index").toString();
    const QString party = parties->value(0, "c_nom_organisateur").toString().trimmed();
    const auto stored = [&](const char* field, const QString& row) {
        return session->store()
            .scalar(QStringLiteral("SELECT %1 FROM strcompetition WHERE c_index = ?")
                        .arg(QString::fromLatin1(field)),
                    {row})
            .toString();
    };

    parties->editCell(0, parties->columnOf("Nbre Equipes"), "3");
    QCoreApplication::processEvents();
    EXPECT_EQ(stored("c_nb_equipe", first), "3");
    EXPECT_EQ(parties->model()->index(0, 1).data().toString(), "3");

    parties->editCell(0, parties->columnOf("Equipe élimin."), "2,5");
    const QString refusal = QString::fromStdString(next(dialogs));
    EXPECT_TRUE(refusal.contains(party)) << refusal.toStdString();
    QCoreApplication::processEvents();
    EXPECT_EQ(parties->model()->index(0, 2).data().toString(), "0");
    EXPECT_EQ(stored("c_nb_equipe_eliminatoire", first), "0");
    EXPECT_EQ(stored("c_nb_equipe", first), "3");
    // The party, its state and its invoice are not the operator's to type.
    parties->editCell(0, parties->columnOf("Etat"), "F");
    QCoreApplication::processEvents();
    EXPECT_EQ(stored("c_facture", first).trimmed(), "");
    EXPECT_EQ(parties->model()->index(0, 4).data().toString().trimmed(), "");

    // Nothing calculated yet: nothing to invoice.
    w.click("Cmdfacture");
    EXPECT_EQ(next(dialogs), "Aucune facture à émettre.");
    EXPECT_EQ(parties->rowCount(), 0);

    // A changed card must be validated before it is calculated.
    type(w.box("txt_intitule"), "Coupe des quadrettes 2027");
    w.click("Cmdcalcul");
    EXPECT_EQ(next(dialogs), "Vous devez d'abord valider cette compétition");
    w.click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    // Choosing again what the card already holds changes nothing.
    w.click("Option5_1");
    child<QToolButton>(&w.screen, "ImgCalcul")->click();
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    ASSERT_EQ(parties->rowCount(), 1);
    EXPECT_EQ(parties->value(0, "c_index").toString(), first);
    EXPECT_EQ(parties->model()->index(0, 4).data().toString(), "C");

    // Nothing is made when the operator does not confirm.
    dialogs.queueAnswer(false);
    w.click("Cmdfacture");
    EXPECT_EQ(next(dialogs), "Confirmez-vous vouloir générer les 1 factures affichées ?");
    EXPECT_FALSE(child<QGroupBox>(&w.screen, "Frame3")->isVisibleTo(&w.screen));

    // Chosen again from the list, unchanged, it opens for changes: it is
    // validated before it is calculated.
    app::DataGrid* list = w.grid("DBGrid1");
    list->choose(rowOf(list, w.box("txt_index")->text()));
    EXPECT_TRUE(child<QPushButton>(&w.screen, "CmdValideCompet")->isEnabled());
    w.click("Cmdcalcul");
    EXPECT_EQ(next(dialogs), "Vous devez d'abord valider cette compétition");
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
}

TEST(CompetitionScreen, AnInvoicedCompetitionIsFrozenOrClosed) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    app::ScriptedDialogs dialogs;
    auto w = std::make_unique<Window>(*session, dialogs);
    w->fillCard();
    w->click("CmdValideCompet");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    const QString index = w->box("txt_index")->text();
    const int parties = w->grid("DBGrid10")->rowCount();
    session->store().exec(
        "UPDATE strcompetition SET c_facture = 'F', c_num_facture = '2027000099' WHERE c_index = "
        "(SELECT MIN(c_index) FROM strcompetition WHERE index_reference = ?)",
        {index});
    w = std::make_unique<Window>(*session, dialogs);
    app::DataGrid* list = w->grid("DBGrid1");
    const int listed = list->rowCount();

    // Frozen: only a complementary competition, which the operator declines.
    dialogs.queueAnswer(false);
    list->choose(rowOf(list, index));
    EXPECT_EQ(next(dialogs), "les caractéristiques de cette compétition ne sont plus modifiables");
    EXPECT_EQ(next(dialogs),
              "Voulez-vous créer des avoirs/factures complémentaires à cette compétition ? ");
    EXPECT_EQ(w->box("txt_index")->text(), index);
    EXPECT_FALSE(child<QPushButton>(&w->screen, "CmdValideCompet")->isEnabled());
    EXPECT_FALSE(child<QGroupBox>(&w->screen, "Frame1")->isEnabled());
    EXPECT_EQ(list->rowCount(), listed);

    // Accepted: a new competition with the same card and its own rows.
    dialogs.queueAnswer(true);
    list->choose(rowOf(list, index));
    EXPECT_EQ(next(dialogs), "les caractéristiques de cette compétition ne sont plus modifiables");
    EXPECT_EQ(next(dialogs),
              "Voulez-vous créer des avoirs/factures complémentaires à cette compétition ? ");
    ASSERT_TRUE(dialogs.shown().empty()) << next(dialogs);
    const QString complementary = w->box("txt_index")->text();
    EXPECT_NE(complementary, index);
    EXPECT_EQ(list->rowCount(), listed + 1);
    EXPECT_EQ(w->box("txt_intitule")->text(), "Coupe des quadrettes");
    EXPECT_EQ(w->grid("DBGrid10")->rowCount(), parties);
    EXPECT_EQ(w->grid("DBGrid10")->value(0, "c_facture").toString().trimmed(), "");
    EXPECT_FALSE(child<QPushButton>(&w->screen, "CmdValideCompet")->isEnabled());

    // Closed: the master itself is invoiced.
    session->store().exec("UPDATE strcompetition SET c_facture = 'F' WHERE c_index = ?", {index});
    w->click("CmdAnnulCompet");
    list->choose(rowOf(list, index));
    EXPECT_EQ(next(dialogs), "Cette compétition est facturée, elle n'est plus modifiable");
    EXPECT_FALSE(child<QPushButton>(&w->screen, "CmdValideCompet")->isEnabled());
    EXPECT_TRUE(dialogs.shown().empty()) << next(dialogs);
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
}

TEST(CompetitionScreen, AnotherLevelsCompetitionIsShownReadOnlyAndNamesItsOwner) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("CD13");
    const QString national =
        session->store()
            .scalar(
                "SELECT c_index FROM strcompetition WHERE c_intitule = 'Challenge fédéral' "
                "AND index_reference = '00000000'")
            .toString();
    ASSERT_FALSE(national.isEmpty());
    const int rows =
        session->store()
            .scalar("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ?", {national})
            .toInt();
    app::ScriptedDialogs dialogs;
    Window w(*session, dialogs);
    app::DataGrid* list = w.grid("DBGrid1");
    list->choose(rowOf(list, national));
    EXPECT_TRUE(dialogs.shown().empty()) << next(dialogs);
    EXPECT_EQ(child<QLabel>(&w.screen, "lbl_niveau")->text(),
              "Compétition du niveau national : consultation seule.");
    EXPECT_FALSE(child<QPushButton>(&w.screen, "CmdValideCompet")->isEnabled());
    EXPECT_FALSE(child<QGroupBox>(&w.screen, "Frame1")->isEnabled());
    const QString refusal =
        "Cette compétition est celle du niveau national : seuls ce niveau et le niveau "
        "national peuvent la modifier, la calculer ou la facturer. Vous pouvez la consulter.";
    w.click("Cmdcalcul");
    EXPECT_EQ(next(dialogs), refusal.toStdString());
    w.click("Cmdfacture");
    EXPECT_EQ(next(dialogs), refusal.toStdString());
    // Nothing of the committee's reached the competition.
    EXPECT_EQ(
        session->store()
            .scalar("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ?", {national})
            .toInt(),
        rows);
    EXPECT_EQ(session->store()
                  .scalar("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ? AND "
                          "c_facture = 'C'",
                          {national})
                  .toInt(),
              0);
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
}
