#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStatusBar>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "reference/ui/ORVE_ges_naturec.h"
#include "reference/ui/ORVE_tiers_club.h"
#include "support/ScreenTesting.h"
#include "support/TestInstall.h"

using namespace orve;

namespace {

using test::child;

bool looksLocked(QLineEdit* box) {
    return box->isReadOnly() &&
           box->palette().color(QPalette::Base) == box->palette().color(QPalette::Window);
}

QString status(QWidget* w) { return child<QStatusBar>(w, "barre_etat")->currentMessage(); }

}  // namespace

TEST(RecordScreen, ClubCardKeyLookLockedNewCardUnchoosesTheRowSavesAreTold) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;
    auto* screen = new reference::ORVE_tiers_club(*session, dialogs, nullptr);
    screen->show();
    auto* grid = child<app::DataGrid>(screen, "DBGrid1");
    auto* number = child<QLineEdit>(screen, "txt_num");
    auto* name = child<QLineEdit>(screen, "txt_nom");
    auto* validate = child<QPushButton>(screen, "CmdValide");

    // The card's boxes scroll on a short screen; its buttons do not.
    auto* fields = child<QWidget>(screen, "Frame1_champs");
    auto* scroll = qobject_cast<QScrollArea*>(fields->parentWidget()->parentWidget());
    ASSERT_TRUE(scroll);
    EXPECT_FALSE(scroll->isAncestorOf(validate));

    grid->choose(1);
    const QString key = grid->value(1, "club_code").toString();
    EXPECT_TRUE(looksLocked(number));
    EXPECT_TRUE(looksLocked(child<QLineEdit>(screen, "txt_code")));
    EXPECT_FALSE(looksLocked(name));
    EXPECT_FALSE(app::isEditing(screen));
    name->setText(name->text() + " modifié");
    emit name->textEdited(name->text());
    EXPECT_TRUE(app::isEditing(screen));
    validate->click();
    EXPECT_TRUE(dialogs.shown().empty());
    EXPECT_FALSE(app::isEditing(screen));
    EXPECT_EQ(status(screen), "Fiche enregistrée : " + key);

    // A new club: no row of the list stays chosen, the number may be typed.
    grid->choose(3);
    child<QPushButton>(screen, "CmdAjout")->click();
    EXPECT_EQ(grid->currentRow(), -1);
    EXPECT_TRUE(grid->selectionModel()->selectedRows().isEmpty());
    EXPECT_FALSE(looksLocked(number));
    EXPECT_FALSE(app::isEditing(screen));
    auto* league = child<QComboBox>(screen, "Combo11");
    auto* department = child<QComboBox>(screen, "Combo12");
    league->setCurrentIndex(league->findText("LR44", Qt::MatchStartsWith));
    emit league->activated(league->currentIndex());
    department->setCurrentIndex(department->findText("049", Qt::MatchStartsWith));
    emit department->activated(department->currentIndex());
    EXPECT_TRUE(app::isEditing(screen));
    number->setText("8");
    emit number->textEdited("8");
    name->setText("Cholet Quilles");
    validate->click();
    EXPECT_TRUE(dialogs.shown().empty()) << qPrintable(dialogs.shown().front());
    EXPECT_EQ(status(screen), "Fiche enregistrée : CL49008");
    delete screen;
}

TEST(RecordScreen, NatureCodeIsLockedOnceStoredAndTypedForANewOne) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;
    reference::ORVE_ges_naturec screen(*session, dialogs, nullptr);
    auto* grid = child<app::DataGrid>(&screen, "DBGrid1");
    auto* code = child<QLineEdit>(&screen, "txt_code");
    grid->choose(0);
    EXPECT_TRUE(looksLocked(code));
    child<QPushButton>(&screen, "cmdajout")->click();
    EXPECT_FALSE(looksLocked(code));
    EXPECT_EQ(grid->currentRow(), -1);
    code->setText("zz9");
    child<QLineEdit>(&screen, "txt_libelle")->setText("Nouvelle nature");
    child<QPushButton>(&screen, "cmdvalide")->click();
    EXPECT_TRUE(dialogs.shown().empty());
    EXPECT_EQ(status(&screen), "Fiche enregistrée : ZZ9");
}
