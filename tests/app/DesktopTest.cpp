#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDateEdit>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QVBoxLayout>

#include "app/Dialogs.h"
#include "app/MenuTree.h"
#include "app/ui/ORVE_menu.h"
#include "app/ui/QtDialogs.h"
#include "app/ui/ScreenCatalog.h"
#include "app/ui/ScreenSupport.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::app;
using Kind = Dialogs::Kind;

namespace {

void signIn(ORVE_menu& menu, const QString& login, const QString& password) {
    menu.findChild<QLineEdit*>("txt_login")->setText(login);
    menu.findChild<QLineEdit*>("txt_pwd")->setText(password);
    menu.findChild<QPushButton*>("Cmdok_login")->click();
}

// A window far taller and wider than a laptop screen, its buttons in a last row.
QWidget* bigWindow(QWidget* parent) {
    auto* w = new QWidget(parent);
    w->setObjectName("ORVE_grand");
    w->setWindowTitle("Les Grands Écrans");
    auto* column = new QVBoxLayout(w);
    auto* form = new QGroupBox("Fiche", w);
    form->setMinimumSize(1700, 1100);
    column->addWidget(form);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (const char* name : {"CmdValide", "CmdAnnule"}) {
        auto* b = new QPushButton(name, w);
        b->setObjectName(name);
        buttons->addWidget(b);
    }
    column->addLayout(buttons);
    w->resize(1800, 1200);
    return w;
}

}  // namespace

TEST(FrenchDesktop, QtsOwnTextsDatesAndNumbersAreFrench) {
    test::application();
    QMessageBox box;
    box.setStandardButtons(QMessageBox::Save | QMessageBox::Cancel | QMessageBox::Close);
    EXPECT_EQ(box.button(QMessageBox::Cancel)->text(), "Annuler");
    EXPECT_EQ(box.button(QMessageBox::Save)->text(), "Enregistrer");
    EXPECT_EQ(box.button(QMessageBox::Close)->text(), "Fermer");
    QFileDialog files;
    files.setOption(QFileDialog::DontUseNativeDialog);
    EXPECT_EQ(files.findChild<QLabel*>("lookInLabel")->text(), "Voir dans :");
    EXPECT_EQ(QLocale().toString(1234.5), QString("1\u202f234,5"));
    EXPECT_EQ(QLocale().dayName(6), "samedi");
    QDateEdit date(QDate(2026, 11, 21));
    EXPECT_EQ(date.text(), "21/11/2026");
}

TEST(FrenchDesktop, EachKindOfMessageHasItsIcon) {
    test::application();
    ScriptedDialogs dialogs;
    EXPECT_FALSE(guarded(dialogs, [] { throw Refusal("La date n'est pas valide"); }));
    EXPECT_FALSE(guarded(dialogs, [] { throw StoreError("Impossible d'écrire le fichier x"); }));
    dialogs.inform("sauvegarde terminée");
    dialogs.queueAnswer(true);
    EXPECT_TRUE(dialogs.ask("Quitter ?"));
    const std::vector<std::pair<Kind, QString>> expected{
        {Kind::Warning, "La date n'est pas valide"},
        {Kind::Error, "Impossible d'écrire le fichier x"},
        {Kind::Information, "sauvegarde terminée"},
        {Kind::Question, "Quitter ?"}};
    EXPECT_EQ(dialogs.history(), expected);

    // A question is answered in French, and a stray Enter answers no.
    QMessageBox question;
    QtDialogs::prepare(question, Kind::Question, "Supprimer ?");
    EXPECT_EQ(question.button(QMessageBox::Yes)->text(), "Oui");
    EXPECT_EQ(question.button(QMessageBox::No)->text(), "Non");
    EXPECT_EQ(question.defaultButton(), question.button(QMessageBox::No));
    EXPECT_EQ(question.text(), "Supprimer ?");
    EXPECT_EQ(question.windowTitle(), "ORVE");
}

TEST(Menu, AnEntryNotBuiltSaysSoAndGreyedIsForRightsOnly) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    ScriptedDialogs dialogs;
    ScreenCatalog catalog;  // no window built at all
    ORVE_menu menu(*session, dialogs, catalog);
    const auto action = [&](const char* name) { return menu.findChild<QAction*>(name); };
    EXPECT_FALSE(action("mnu_stat_ca_compet")->isEnabled());
    EXPECT_TRUE(action("mnu_quitter")->isEnabled());
    signIn(menu, "ligue06", "azur-2026");
    EXPECT_TRUE(action("mnu_stat_ca_compet")->isEnabled());
    EXPECT_TRUE(action("mnu_fic_tiers_lr")->isEnabled());
    EXPECT_FALSE(action("mnu_facturation_li")->isEnabled());
    EXPECT_FALSE(action("mnu_fic_base_fede")->isEnabled());
    // The numbered tools change every level's data: the national level's.
    EXPECT_FALSE(action("mnu_outils_7")->isEnabled());
    action("mnu_stat_ca_compet")->trigger();
    action("mnu_outils_verif")->trigger();
    const std::vector<std::pair<Kind, QString>> expected{{Kind::Information, kNotYetAvailable},
                                                         {Kind::Information, kNotYetAvailable}};
    EXPECT_EQ(dialogs.history(), expected);
    EXPECT_EQ(kNotYetAvailable, "Cette fonction n'est pas encore disponible");
}

TEST(Menu, WindowsFitTheScreenAndQuittingWithACardBeingTypedAsks) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    ScriptedDialogs dialogs;
    ScreenCatalog catalog;
    catalog.add("ORVE_grand", [](Session&, Dialogs&, const QString&, QWidget* parent) {
        return bigWindow(parent);
    });
    ORVE_menu menu(*session, dialogs, catalog);
    menu.show();
    signIn(menu, "gestu", "kvarn-2026");

    // The backup panel can be left without backing up.
    menu.findChild<QAction*>("mnu_fic_usb")->trigger();
    auto* frame5 = menu.findChild<QGroupBox*>("Frame5");
    EXPECT_TRUE(frame5->isVisible());
    menu.findChild<QPushButton*>("cmdannule")->click();
    EXPECT_FALSE(frame5->isVisible());
    EXPECT_TRUE(dialogs.history().empty());

    // Too big for the screen: sized to it, its content scrolls, its buttons stay below.
    menu.openScreen("ORVE_grand", "");
    QWidget* window = menu.findChild<QWidget*>("ORVE_grand");
    ASSERT_TRUE(window);
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(area.contains(window->frameGeometry()));
    auto* scroll = window->findChild<QScrollArea*>("defilement");
    ASSERT_TRUE(scroll);
    auto* validate = window->findChild<QPushButton*>("CmdValide");
    EXPECT_FALSE(scroll->isAncestorOf(validate));
    EXPECT_TRUE(
        window->rect().contains(QRect(validate->mapTo(window, QPoint()), validate->size())));
    EXPECT_TRUE(scroll->isAncestorOf(window->findChild<QGroupBox*>()));

    // A saved card is said in the window's status line.
    tellSaved(validate, "CL13001");
    EXPECT_EQ(window->findChild<QStatusBar*>("barre_etat")->currentMessage(),
              "Fiche enregistrée : CL13001");

    // Quitting while a card is being typed into asks; "Non" keeps everything open.
    setEditing(window, true);
    dialogs.queueAnswer(false);
    EXPECT_FALSE(menu.close());
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(dialogs.history().back().first, Kind::Question);
    EXPECT_EQ(dialogs.history().back().second,
              "Une fiche est en cours de saisie (Les Grands Écrans) et n'est pas enregistrée. "
              "Quitter ORVE sans l'enregistrer ?");
    setEditing(window, false);
    EXPECT_TRUE(menu.close());
    EXPECT_EQ(dialogs.history().size(), 1u);
}
