#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include "invoicing/SelectionFilter.h"
#include "invoicing/ui/SelectionPanel.h"
#include "store/Refusal.h"
#include "store/Seasons.h"
#include "store/Settings.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

void competition(store::Store& s, const QString& index, const QString& season, const QString& type,
                 const QString& nature, const QString& organiser, const QString& name,
                 const QString& cod1, const QString& cod2) {
    s.insert("strcompetition", {{"c_index", index},
                                {"c_saison", season},
                                {"c_type", type},
                                {"c_nature", nature},
                                {"c_organisateur", organiser},
                                {"c_nom_organisateur", name},
                                {"c_cod1", cod1},
                                {"c_cod2", cod2},
                                {"c_facture", "F"},
                                {"c_intitule", index}});
}

// The indexes a condition keeps, in its order.
QString kept(store::Store& s, const SelectionCondition& c) {
    store::Params p{QStringLiteral("F")};
    for (const auto& v : c.competitions.params()) p.push_back(v);
    QStringList out;
    for (const auto& r : s.select("SELECT c_index FROM strcompetition WHERE c_facture = ?" +
                                      c.competitions.after(" AND ") +
                                      (c.orderBy.isEmpty() ? " ORDER BY c_index" : c.orderBy),
                                  p))
        out << r.value(0).toString();
    return out.join(',');
}

}  // namespace

TEST(SelectionFilter, EachFilterRestrictsTheCompetitions) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    competition(s, "FD700001", "2027", "FD", "CHAF", "LR06", "Ligue Provence", "CUM", "DM");
    competition(s, "FD700002", "2027", "FD", "DBEXC", "013", "Comité des Bouches", "NAT", "");
    competition(s, "FD700003", "2027", "PR", "PRIVE", "LR11", "O'Brien Bowling", "CUM", "DF");
    competition(s, "FD600001", "2026", "FD", "CHAF", "LR06", "Ligue Provence", "CUM", "DM");

    SelectionState st;
    st.season = "2027";
    // Everything on "Tous" and empty masks: the whole season.
    EXPECT_EQ(kept(s, buildSelectionCondition(st)), "FD700001,FD700002,FD700003");

    SelectionState type = st;
    type.type = "pr";  // codes compare without regard to case
    EXPECT_EQ(kept(s, buildSelectionCondition(type)), "FD700003");
    SelectionState nature = st;
    nature.nature = "CHAF # CHALLENGE FÉDÉRAL";
    EXPECT_EQ(kept(s, buildSelectionCondition(nature)), "FD700001");
    SelectionState league = st;
    league.league = "LR06 # Provence";
    EXPECT_EQ(kept(s, buildSelectionCondition(league)), "FD700001");
    SelectionState dept = st;
    dept.department = "013 # Bouches-du-Rhône";
    EXPECT_EQ(kept(s, buildSelectionCondition(dept)), "FD700002");

    // Contains, or begins with after a "%"; a quote is only a character.
    SelectionState name = st;
    name.organiserName = "Provence";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "FD700001");
    name.organiserName = "%Provence";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "");
    name.organiserName = "%ligue";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "FD700001");
    name.organiserName = "O'Brien";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "FD700003");
    // Accented letters compare without regard to case too, on both engines.
    name.organiserName = "COMITÉ";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "FD700002");
    name.organiserName = "%comité des";
    EXPECT_EQ(kept(s, buildSelectionCondition(name)), "FD700002");

    SelectionState codes = st;
    codes.codes[0] = "CUM";
    codes.codes[1] = "DF";
    EXPECT_EQ(kept(s, buildSelectionCondition(codes)), "FD700003");
    codes.codes = {kAll, " ", kAll, kAll, kAll};  // the blank item: no code
    EXPECT_EQ(kept(s, buildSelectionCondition(codes)), "FD700002");

    SelectionState index = st;
    index.competitionIndex = "FD700002";
    EXPECT_EQ(kept(s, buildSelectionCondition(index)), "FD700002");
    index.competitionIndex = kNoCompetition;
    EXPECT_EQ(kept(s, buildSelectionCondition(index)), "FD700001,FD700002,FD700003");

    // Sorting alternates, and only ever by a column name.
    SelectionState sort = st;
    toggleSort(sort, "c_nom_organisateur");
    EXPECT_EQ(buildSelectionCondition(sort).orderBy, " ORDER BY c_nom_organisateur ASC");
    EXPECT_EQ(kept(s, buildSelectionCondition(sort)), "FD700002,FD700001,FD700003");
    toggleSort(sort, "c_nom_organisateur");
    EXPECT_EQ(buildSelectionCondition(sort).orderBy, " ORDER BY c_nom_organisateur DESC");
    toggleSort(sort, "c_index; DROP TABLE strcompetition");
    EXPECT_EQ(buildSelectionCondition(sort).orderBy, " ORDER BY c_nom_organisateur DESC");
}

TEST(SelectionFilter, MonthInvoiceNumberSeasonsAndModes) {
    SelectionState st;
    st.season = "2027";
    EXPECT_EQ(buildSelectionCondition(st).monthKey, "000000");
    EXPECT_TRUE(buildSelectionCondition(st).lines.isEmpty());
    st.month = "11/26";
    EXPECT_EQ(buildSelectionCondition(st).monthKey, "202611");
    st.month = "03/2027";
    st.invoiceNumber = "58";
    const auto c = buildSelectionCondition(st);
    EXPECT_EQ(c.monthKey, "202703");
    EXPECT_EQ(c.invoiceNumber, "58");
    // The number as the lines store it.
    ASSERT_EQ(c.lines.params().size(), 2u);
    EXPECT_EQ(c.lines.params()[1].toString(), "00000058");
    st.month = "13/2026";
    EXPECT_THROW(buildSelectionCondition(st), Refusal);

    EXPECT_EQ(store::seasonOf(QDate(2026, 11, 21)), 2027);
    EXPECT_EQ(store::seasonOf(QDate(2026, 8, 31)), 2026);
    EXPECT_EQ(store::seasonOf(QDate(2026, 9, 1)), 2027);
    const QStringList seasons = store::seasonChoices(2027);
    EXPECT_EQ(seasons.first(), "2013");
    EXPECT_EQ(seasons.last(), "2028");

    EXPECT_EQ(comboKey("LR06 # Provence"), "LR06");
    EXPECT_EQ(comboKey("Bowling du Prado # BOW0131", true), "BOW0131");
    EXPECT_EQ(comboKey("Tous"), "");
}

TEST(SelectionPanel, FilledFromTheStoreAndTurnedIntoACondition) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    app::ScriptedDialogs dialogs;
    SelectionPanel panel(dialogs);
    panel.load(session->store(), "LIC", session->workingSeason());
    auto combo = [&](int i) {
        return panel.findChild<QComboBox*>(QStringLiteral("Combo%1").arg(i));
    };
    for (int i = 1; i <= 10; ++i) ASSERT_TRUE(combo(i)) << i;
    for (const char* name : {"txtnom_organisateur", "mskmois", "txtnofac", "txtcnum"})
        ASSERT_TRUE(panel.findChild<QLineEdit*>(name)) << name;
    ASSERT_TRUE(panel.findChild<QRadioButton*>("Option1"));

    EXPECT_EQ(combo(1)->currentText(), "2027");
    EXPECT_EQ(combo(1)->itemText(combo(1)->count() - 1), "2028");
    {
        // A season set in orve.ini wins over today's date, for every chooser.
        orve::store::Settings ini(session->settingsPath());
        ini.setValue("saison/courante", "2025");
    }
    EXPECT_EQ(session->workingSeason(), 2025);
    SelectionPanel configured(dialogs);
    configured.load(session->store(), "LIC", session->workingSeason());
    auto* seasons = configured.findChild<QComboBox*>(QStringLiteral("Combo1"));
    EXPECT_EQ(seasons->currentText(), "2025");
    EXPECT_EQ(seasons->itemText(seasons->count() - 1), "2026");
    // Natures of the mode's type only.
    QStringList natures;
    for (int i = 0; i < combo(3)->count(); ++i) natures << combo(3)->itemText(i);
    EXPECT_EQ(natures.join('|'), QStringLiteral("Tous|LI # FACTURATION DES LIGUES|LIC # LICENCES"));
    EXPECT_EQ(combo(4)->itemText(1), QStringLiteral("LR06 # Provence-Alpes-Côte d'Azur"));
    EXPECT_EQ(combo(6)->itemText(1), " ");
    EXPECT_EQ(combo(6)->itemText(2), "CUM");
    EXPECT_EQ(panel.findChild<QLineEdit*>("txtcnum")->text(), "00000000");
    EXPECT_EQ(panel.state().month, kEmptyMonthMask);

    int emitted = 0;
    QObject::connect(&panel, &SelectionPanel::filterChanged, [&] { ++emitted; });
    combo(4)->setCurrentIndex(1);
    EXPECT_GE(emitted, 1);
    // A league organiser narrows the department list to the organiser of that code.
    EXPECT_EQ(combo(5)->count(), 1);
    combo(3)->setCurrentIndex(2);
    panel.findChild<QLineEdit*>("mskmois")->setText("1126");
    panel.sortBy("c_intitule");
    const SelectionCondition c = panel.condition();
    EXPECT_EQ(c.competitions.sql(),
              "c_saison = ? AND upper(trim(c_nature)) = upper(?) AND "
              "upper(trim(c_organisateur)) = upper(?)");
    EXPECT_EQ(c.competitions.params().size(), 3u);
    EXPECT_EQ(c.competitions.params()[1].toString(), "LIC");
    EXPECT_EQ(c.competitions.params()[2].toString(), "LR06");
    EXPECT_EQ(c.monthKey, "202611");
    EXPECT_EQ(c.orderBy, " ORDER BY c_intitule ASC");
    panel.sortBy("c_intitule");
    EXPECT_EQ(panel.condition().orderBy, " ORDER BY c_intitule DESC");
    const int before = emitted;
    panel.findChild<QRadioButton*>("Option1")->click();
    EXPECT_EQ(emitted, before + 1);
}
