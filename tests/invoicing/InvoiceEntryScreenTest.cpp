#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <functional>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "invoicing/ui/ORVE_facture_creation.h"
#include "support/ScreenTesting.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

using test::child;
using test::pickItem;

}  // namespace

TEST(InvoiceEntryScreen, EnterValidatesALineAndANewInvoiceStartsToday) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;
    ORVE_facture_creation screen(*session, dialogs, "DIV");
    EXPECT_EQ(child<QLineEdit>(&screen, "mskdate")->text(), "21/11/2026");
    EXPECT_FALSE(child<QGroupBox>(&screen, "Frame13")->isVisibleTo(&screen));

    auto* dept = child<QLineEdit>(&screen, "txt_club_dept");
    dept->setText("13");
    emit dept->editingFinished();
    pickItem(child<QComboBox>(&screen, "Combo13"), "Strike Club Aubagne");
    child<QPushButton>(&screen, "cmdValideFact_tiers")->click();
    ASSERT_EQ(child<QLineEdit>(&screen, "tiers_num")->text(), "2027000012")
        << dialogs.takeShown().toStdString();

    pickItem(child<QComboBox>(&screen, "Combo16"), "Formation d'arbitre");
    EXPECT_EQ(child<QLineEdit>(&screen, "txtpu")->text(), "80,00");
    auto* quantity = child<QLineEdit>(&screen, "txtqte");
    quantity->setText("2");
    dialogs.queueAnswer(false);
    // Enter in the editor writes the line as the button does.
    emit quantity->returnPressed();
    EXPECT_EQ(dialogs.takeShown(), "Voulez-vous ajouter une ligne ?");
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
    EXPECT_EQ(
        session->store()
            .scalar("SELECT SUM(f_montant) FROM strfacture WHERE f_num_facture = '2027000012'")
            .toInt(),
        16000);
    EXPECT_EQ(child<QLabel>(&screen, "lbl_total_facture")->text(), "Total : 160,00 €");
    EXPECT_FALSE(child<QPushButton>(&screen, "cmdValideSuite")->isEnabled());

    // The editor is crossed in the order it is filled.
    EXPECT_EQ(child<QComboBox>(&screen, "Combo16")->nextInFocusChain()->objectName(), "txtqte");
    child<QLineEdit>(&screen, "mskdate")->setText("01/01/2020");
    child<QPushButton>(&screen, "cmdAnnulFact_tiers")->click();
    EXPECT_EQ(child<QLineEdit>(&screen, "mskdate")->text(), "21/11/2026");
    EXPECT_EQ(child<QLineEdit>(&screen, "tiers_num")->text(), "");
    EXPECT_EQ(child<app::DataGrid>(&screen, "DBGrid2")->rowCount(), 0);
}

TEST(InvoiceEntryScreen, ModesShowTheirOwnDataAndRefuseWhatTheyLack) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;
    ORVE_facture_creation jore(*session, dialogs, "JORE");
    EXPECT_TRUE(child<QGroupBox>(&jore, "Frame13")->isVisibleTo(&jore));
    EXPECT_EQ(child<QLineEdit>(&jore, "txt_nature")->text(), "JORE");
    EXPECT_EQ(child<QLineEdit>(&jore, "txttexte")->text(), "");
    pickItem(child<QComboBox>(&jore, "Combo11"), "LR44");
    child<QPushButton>(&jore, "cmdValideFact_tiers")->click();
    EXPECT_EQ(dialogs.takeShown(),
              "Saisissez d'abord les données spécifiques à cette facture : Nom et date de la "
              "ligue.");
    EXPECT_EQ(child<QLineEdit>(&jore, "tiers_num")->text(), "");

    ORVE_facture_creation compet(*session, dialogs, "COMPET");
    pickItem(child<QComboBox>(&compet, "Combo11"), "LR44");
    child<QPushButton>(&compet, "cmdValideFact_tiers")->click();
    EXPECT_EQ(dialogs.takeShown(), "Indiquez dans \"N° Compétition\" la compétition à facturer.");

    ORVE_facture_creation lic(*session, dialogs, "LIC");
    EXPECT_EQ(child<QLineEdit>(&lic, "txttexte")->text(), "Bordereau N° ");
    EXPECT_TRUE(dialogs.shown().empty());
}

namespace {

// Looks at the window at the moment the operator is asked.
class WatchingDialogs : public app::ScriptedDialogs {
  public:
    std::function<void()> onAsk;
    bool ask(const QString& text) override {
        if (onAsk) onAsk();
        return ScriptedDialogs::ask(text);
    }
};

// The panel's nature, as the operator picks it.
void chooseNature(QWidget* screen, const QString& nature) {
    auto* combo = child<QComboBox>(screen, "Combo3");
    combo->setCurrentIndex(combo->findText(nature + " #", Qt::MatchStartsWith));
}

}  // namespace

TEST(InvoiceEntryScreen, CreditNotesShowTheTickedInvoicesWhileAsking) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    WatchingDialogs dialogs;
    ORVE_facture_creation screen(*session, dialogs, "LI");
    child<QPushButton>(&screen, "cmdvisu_fd")->click();
    auto* grid = child<app::DataGrid>(&screen, "DBGrid1");
    auto* caption = child<QGroupBox>(&screen, "Frame_liste");
    chooseNature(&screen, "LI");
    ASSERT_EQ(grid->rowCount(), 2);
    grid->editCell(0, grid->columnOf("Choix"), "X");
    QString askedCaption;
    int askedRows = -1;
    dialogs.onAsk = [&] {
        askedCaption = caption->title();
        askedRows = grid->rowCount();
    };
    dialogs.queueAnswer(false);
    child<QPushButton>(&screen, "CmdAvoir")->click();
    EXPECT_EQ(askedCaption,
              " LISTE DES 1 FACTURES POUR LSQUELLES ONT VA GENERER DES AVOIRS EN AUTOMATIQUE");
    EXPECT_EQ(askedRows, 2);  // both lines of the ticked invoice
    EXPECT_EQ(dialogs.takeShown(),
              "Confirmez-vous la génération des avoirs correspondants à ces factures  ?");
    // Declined: the list is back, ticks kept, nothing written.
    EXPECT_EQ(caption->title(), "FACTURATION DIRECTE");
    EXPECT_EQ(grid->value(1, "c_edt").toString(), "X");
    EXPECT_EQ(
        session->store().scalar("SELECT COUNT(*) FROM strentete WHERE ent_fact_type = 'A'").toInt(),
        1);
}

TEST(InvoiceEntryScreen, AClickOnTheTickTicksAndAnyOtherCellOpensTheInvoice) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;
    ORVE_facture_creation screen(*session, dialogs, "LI");
    screen.show();
    child<QPushButton>(&screen, "cmdvisu_fd")->click();
    auto* grid = child<app::DataGrid>(&screen, "DBGrid1");
    auto* back = child<QPushButton>(&screen, "cmdretour_creation_fd");
    chooseNature(&screen, "LI");
    grid->setCurrentIndex(grid->model()->index(1, grid->columnOf("Choix")));
    EXPECT_EQ(grid->value(0, "c_edt").toString(), "X");
    EXPECT_EQ(grid->value(1, "c_edt").toString(), "X");
    EXPECT_TRUE(back->isVisible());
    EXPECT_EQ(child<QLineEdit>(&screen, "tiers_num")->text(), "");
    grid->setCurrentIndex(grid->model()->index(0, grid->columnOf("Choix")));
    EXPECT_EQ(grid->value(1, "c_edt").toString().trimmed(), "");
    grid->setCurrentIndex(grid->model()->index(1, grid->columnOf("Index")));
    EXPECT_FALSE(back->isVisible());
    EXPECT_EQ(child<QLineEdit>(&screen, "tiers_num")->text(), "2027000003");
    EXPECT_EQ(child<app::DataGrid>(&screen, "DBGrid2")->rowCount(), 2);
    EXPECT_TRUE(dialogs.shown().empty());
}
