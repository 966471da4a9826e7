#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "AccountingFixture.h"
#include "accounting/ui/ORVE_facture_compta.h"
#include "accounting/ui/ORVE_facture_jalvente.h"
#include "accounting/ui/ORVE_stat.h"
#include "accounting/ui/StatisticsChart.h"
#include "app/Dialogs.h"
#include "app/SignIn.h"
#include "app/ui/DataGrid.h"
#include "support/ScreenTesting.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::accounting;

namespace {

using test::child;

QString text(QWidget* w, const char* label) { return child<QLabel>(w, label)->text(); }

void choose(QWidget* w, const char* combo, const QString& item) {
    auto* c = child<QComboBox>(w, combo);
    const int i = c->findText(item);
    ASSERT_GE(i, 0) << item.toStdString();
    c->setCurrentIndex(i);
}

void type(QWidget* w, const char* name, const QString& value) {
    auto* e = child<QLineEdit>(w, name);
    e->setText(value);
    emit e->editingFinished();
}

struct ScreenWorld {
    test::TestInstall inst{test::TestInstall::Kind::Empty};
    std::unique_ptr<app::Session> session;
    app::ScriptedDialogs dialogs;
    explicit ScreenWorld(const char* login) {
        test::application();
        {
            auto s = inst.start();
            test::addAccountingFixture(s->store());
            test::addStatisticsFixture(s->store());
        }
        session = inst.startAs(login);
    }
    QString messages() {
        QStringList out;
        while (!dialogs.shown().empty()) out << dialogs.takeShown();
        return out.join(" / ");
    }
};

}  // namespace

TEST(TransferScreen, TransfersShowsAndCancelsAsTheOperatorDoes) {
    ScreenWorld w("gestu");
    ORVE_facture_compta screen(*w.session, w.dialogs);
    choose(&screen, "Combo1", "2021");
    auto* grid = child<app::DataGrid>(&screen, "DBGrid1");
    grid->storeModel()->fetchAll();
    EXPECT_EQ(grid->rowCount(), 8);
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 646,80 €");
    EXPECT_EQ(text(&screen, "lblqte"), "Quantité facturée : 27");
    EXPECT_EQ(w.messages(), "");

    // Lines the tariffs give no account: the clerk is asked first.
    w.dialogs.queueAnswer(false);
    child<QPushButton>(&screen, "CmdCompta")->click();
    EXPECT_TRUE(w.messages().endsWith("Générer le fichier quand même ?"));
    EXPECT_EQ(test::transferMark(w.session->store(), "58"), "N");
    w.dialogs.queueAnswer(true);
    child<QPushButton>(&screen, "CmdCompta")->click();
    const QString file = QDir(w.session->dataFolder()).filePath("Transfert_20261121.csv");
    EXPECT_TRUE(w.messages().endsWith("le fichier de transfert a été généré : " +
                                      QDir::toNativeSeparators(file)));
    EXPECT_EQ(test::fileBytes(file), test::expectedFile("national_2021.csv"));
    EXPECT_EQ(grid->rowCount(), 0);
    child<QPushButton>(&screen, "CmdCompta")->click();
    EXPECT_EQ(w.messages(), "aucune facture à transférer");

    child<QPushButton>(&screen, "Cmdaffichage")->click();
    EXPECT_EQ(child<QLineEdit>(&screen, "Mskdate")->text(), "21/11/2026");
    EXPECT_EQ(child<QLineEdit>(&screen, "txt_fic_transfert")->text(), "Transfert_20261121.csv");
    EXPECT_FALSE(child<QPushButton>(&screen, "CmdAnnulTrs")->isEnabled());
    child<QLineEdit>(&screen, "Mskdate")->setText("20/11/2026");
    EXPECT_EQ(child<QLineEdit>(&screen, "txt_fic_transfert")->text(), "Transfert_20261120.csv");
    child<QPushButton>(&screen, "cmdValideAff")->click();
    EXPECT_EQ(w.messages(), "ce fichier n'existe pas");
    child<QLineEdit>(&screen, "Mskdate")->setText("21/11/2026");
    child<QPushButton>(&screen, "cmdValideAff")->click();
    EXPECT_EQ(w.messages(), "");
    EXPECT_EQ(child<app::DataGrid>(&screen, "DBGrid2")->rowCount(), 7);
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 646,80 €");
    EXPECT_EQ(text(&screen, "lblqte"), "Quantité facturée : 7");

    // Cancelling asks first; "no" changes nothing.
    child<QPushButton>(&screen, "CmdAnnulTrs")->click();
    auto* confirm = child<QPushButton>(&screen, "CmdValidAnnulTrs");
    w.dialogs.queueAnswer(false);
    confirm->click();
    EXPECT_EQ(w.messages(),
              "Etes-vous certain de vouloir annuler ce transfert et repositionner les factures "
              "pour un transfert ultérieur ?");
    EXPECT_EQ(test::transferMark(w.session->store(), "58"), "O");
    w.dialogs.queueAnswer(true);
    confirm->click();
    EXPECT_TRUE(w.messages().endsWith("traitement terminé"));
    EXPECT_EQ(test::transferMark(w.session->store(), "58"), "N");
    child<QPushButton>(&screen, "cmdAnnulAff")->click();
    grid->storeModel()->fetchAll();
    EXPECT_EQ(grid->rowCount(), 8);
    EXPECT_TRUE(w.dialogs.failure().isEmpty()) << w.dialogs.failure().toStdString();
}

TEST(JournalScreen, MonthFieldCompletesTheYearAndTheTotalsFollow) {
    ScreenWorld w("ligue06");
    ORVE_facture_jalvente screen(*w.session, w.dialogs);
    EXPECT_EQ(screen.windowTitle(), "Le Journal des Ventes");
    EXPECT_TRUE(child<QRadioButton>(&screen, "Option1_4")->isChecked());
    choose(&screen, "Combo1", "2021");
    EXPECT_EQ(child<app::DataGrid>(&screen, "DBGrid1")->rowCount(), 10);
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 727,80 €");
    type(&screen, "mskmois", "10/20");
    EXPECT_EQ(child<QLineEdit>(&screen, "mskmois")->text(), "10/2020");
    EXPECT_EQ(child<app::DataGrid>(&screen, "DBGrid1")->rowCount(), 3);
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 1 819,50 €");
    EXPECT_EQ(text(&screen, "lblqte"), "Quantité facturée : 14");
    child<QRadioButton>(&screen, "Option1_3")->click();  // "Facturées": no pseudo-competition
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 0,00 €");

    const QString saved = QDir(w.inst.home()).filePath("journal.csv");
    w.dialogs.queueChoice(saved);
    child<QPushButton>(&screen, "CmdExport")->click();
    EXPECT_EQ(w.messages(), "Le fichier " + QDir::toNativeSeparators(saved) + " est enregistré.");
    EXPECT_TRUE(test::fileBytes(saved).startsWith("\xEF\xBB\xBFSaison;Type;"));
    // No file chosen, nothing written nor said.
    w.dialogs.queueChoice(QString());
    child<QPushButton>(&screen, "CmdExport")->click();
    EXPECT_EQ(w.messages(), "");
}

TEST(StatisticsScreen, DrillsFromTheOrganiserToItsLinesWithTheChartBeside) {
    ScreenWorld w("gestu");
    ORVE_stat screen(*w.session, w.dialogs, "2");
    EXPECT_EQ(screen.windowTitle(), "Les Statistiques de Ventes");
    // The working season has nothing yet.
    EXPECT_EQ(w.messages(), "aucune ligne de facturation correspond à votre demande");
    choose(&screen, "Combo1", "2022");
    EXPECT_EQ(child<QLineEdit>(&screen, "mskdebut")->text(), "01/09/2021");
    EXPECT_EQ(child<QLineEdit>(&screen, "mskfin")->text(), "31/08/2022");
    auto* summary = child<app::DataGrid>(&screen, "DBGrid2");
    EXPECT_EQ(summary->parentWidget()->property("title").toString(),
              "STATISTIQUES DES VENTES - RECAPITULATIF PAR LIGUES");
    ASSERT_EQ(summary->rowCount(), 2);
    EXPECT_EQ(summary->value(1, "c_nom_organisateur").toString(), "R11");
    // Every line of the period is counted, the leagues' or not.
    EXPECT_EQ(text(&screen, "lbltotal"), "Montant facturé : 112,00 €");
    auto* chart = child<StatisticsChart>(&screen, "ChartCA");
    ASSERT_EQ(chart->bars().size(), 2u);
    EXPECT_EQ(chart->bars()[1].label, "R11");
    EXPECT_EQ(chart->bars()[1].amount, Money::fromCents(3000));

    summary->choose(0);
    auto* articles = child<app::DataGrid>(&screen, "DBGrid3");
    ASSERT_EQ(articles->rowCount(), 2);
    articles->choose(1);
    auto* lines = child<app::DataGrid>(&screen, "DBGrid1");
    ASSERT_EQ(lines->rowCount(), 1);
    EXPECT_EQ(lines->value(0, "c_num_facture").toString(), "2022000001");

    // A narrower period: the summary and its chart are drawn again.
    type(&screen, "mskdebut", "01/10/2021");
    ASSERT_EQ(summary->rowCount(), 1);
    EXPECT_EQ(chart->bars().size(), 1u);
    EXPECT_EQ(lines->rowCount(), 0);
    type(&screen, "mskfin", "31/13/2022");
    EXPECT_EQ(w.messages(), "la date : 31/13/2022 n'est pas valide");
    EXPECT_TRUE(w.dialogs.failure().isEmpty()) << w.dialogs.failure().toStdString();
}
