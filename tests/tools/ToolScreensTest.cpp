#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QValidator>

#include "app/Dialogs.h"
#include "app/ui/ScreenCatalog.h"
#include "support/ScreenTesting.h"
#include "support/TestInstall.h"
#include "tools/ToolsSeed.h"
#include "tools/ui/ORVE_out_newnumero.h"
#include "tools/ui/ORVE_out_newsaison.h"
#include "tools/ui/ORVE_out_rapport.h"
#include "tools/ui/ToolScreens.h"

using namespace orve;
using namespace orve::tools;
namespace seed = orve::test::seed;

namespace {

using test::child;

bool accepts(QLineEdit* box, QString text) {
    int pos = 0;
    return box->validator()->validate(text, pos) != QValidator::Invalid &&
           text.size() <= box->maxLength();
}

// The report windows open now, newest last; each test closes its own.
std::vector<ORVE_out_rapport*> reports() {
    std::vector<ORVE_out_rapport*> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* r = qobject_cast<ORVE_out_rapport*>(w); r && r->isVisible()) out.push_back(r);
    return out;
}

void closeReports() {
    for (auto* r : reports()) r->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace

TEST(ToolScreens, ADestructiveToolAsksCountsBacksUpAndSaysWhereNoChangesNothing) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    seed::legacyData(session->store(), session->invoiceFolder());
    app::ScreenCatalog catalog;
    registerToolScreens(catalog);
    app::ScriptedDialogs dialogs;
    const QString question =
        "Cet outil va effacer les factures 2014000121, 2014000122 et 2014000124 avec leurs "
        "lignes (7 enregistrements). Continuer ?";

    const QStringList before = seed::dump(session->store());
    dialogs.queueAnswer(false);
    EXPECT_EQ(catalog.create("mnu_outils_8", *session, dialogs, {}, nullptr), nullptr);
    EXPECT_EQ(dialogs.takeShown(), question);
    EXPECT_TRUE(dialogs.shown().empty());
    EXPECT_EQ(seed::dump(session->store()), before);
    EXPECT_FALSE(QFileInfo::exists(QDir(inst.home()).filePath("sauvegardes")));

    dialogs.queueAnswer(true);
    catalog.create("mnu_outils_8", *session, dialogs, {}, nullptr);
    EXPECT_EQ(dialogs.takeShown(), question);
    const QString done = dialogs.takeShown();
    const QStringList backups = QDir(QDir(inst.home()).filePath("sauvegardes"))
                                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_TRUE(backups.first().startsWith("avant-outil-20261121-"))
        << backups.first().toStdString();
    EXPECT_EQ(
        done,
        "SUPP 121/22/24 terminé : 3 factures effacées (4 lignes)\nDonnées sauvegardées "
        "avant l'outil dans : " +
            QDir::toNativeSeparators(QDir(inst.home()).filePath("sauvegardes/" + backups.first())));
    EXPECT_EQ(
        QDir(QDir(inst.home()).filePath("sauvegardes/" + backups.first())).entryList(QDir::Files),
        (QStringList{"bow_facture.db", "bow_jkv.db", "bow_mail.db", "bow_tiers.db", "bow_tri.db"}));

    // Nothing left: said, not asked.
    catalog.create("mnu_outils_8", *session, dialogs, {}, nullptr);
    EXPECT_EQ(dialogs.takeShown(),
              "Aucune des factures 2014000121, 2014000122, 2014000124 n'existe");
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
}

TEST(ToolScreens, ChecksShowOneScrollableReportThatCanBeCopied) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    seed::legacyData(session->store(), session->invoiceFolder());
    app::ScreenCatalog catalog;
    registerToolScreens(catalog);
    app::ScriptedDialogs dialogs;
    closeReports();

    catalog.create("mnu_outils_9", *session, dialogs, {}, nullptr);
    EXPECT_EQ(dialogs.takeShown(), "traitement terminé");
    ASSERT_EQ(reports().size(), 1u);
    ORVE_out_rapport* spy = reports().front();
    EXPECT_EQ(spy->windowTitle(), "espion");
    // Four strays and every line filed under a pseudo-competition.
    const int found = 4 + session->store()
                              .scalar(
                                  "SELECT COUNT(*) FROM strfacture WHERE f_index_compet IN "
                                  "(SELECT c_index FROM strcompetition WHERE c_facture = 'X')")
                              .toInt();
    EXPECT_EQ(child<QLabel>(spy, "lbl_resume")->text(),
              QStringLiteral("%1 anomalies signalées").arg(found));
    EXPECT_TRUE(child<QPlainTextEdit>(spy, "txt_rapport")->isReadOnly());
    EXPECT_EQ(child<QPlainTextEdit>(spy, "txt_rapport")->toPlainText().split('\n').size(), found);
    child<QPushButton>(spy, "cmdcopier")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), spy->reportText());
    EXPECT_TRUE(spy->reportText().startsWith(
        QStringLiteral("%1 anomalies signalées\nligne mal affectée : 2014000122 au lieu de "
                       "2014000121\n")
            .arg(found)));
    child<QPushButton>(spy, "cmdfermer")->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(reports().empty());

    // The data check: one window grouped by check, nothing asked nor said.
    catalog.create("mnu_outils_verif", *session, dialogs, {}, nullptr);
    EXPECT_TRUE(dialogs.shown().empty());
    ASSERT_EQ(reports().size(), 1u);
    ORVE_out_rapport* check = reports().front();
    EXPECT_EQ(check->windowTitle(), "Vérification des données");
    EXPECT_TRUE(
        child<QLabel>(check, "lbl_resume")->text().startsWith("Vérification des données : "));
    EXPECT_TRUE(child<QPlainTextEdit>(check, "txt_rapport")
                    ->toPlainText()
                    .contains("Numéros de facture en double : 1\n    N° 2014000150 : "
                              "02014000150, 2014000150\n"));
    closeReports();
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
}

TEST(ToolScreens, TheSeasonWindowsTakeDigitsOnlyAndSayWhatTheyDid) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    app::ScriptedDialogs dialogs;

    ORVE_out_newsaison seasons(*session, dialogs);
    auto* year = child<QLineEdit>(&seasons, "txt_annee");
    EXPECT_EQ(year->text(), "2028");
    EXPECT_FALSE(accepts(year, "20a8"));
    EXPECT_FALSE(accepts(year, "20288"));
    year->setText("2018");
    child<QPushButton>(&seasons, "cmdvalide")->click();
    EXPECT_EQ(dialogs.takeShown(), "année incorrecte !!!");
    year->setText("2028");
    emit year->returnPressed();
    EXPECT_EQ(dialogs.takeShown(),
              "Traitement termine\nSaison 2028 : 4 pseudo-compétitions créées, aucune n'existait "
              "déjà.");

    ORVE_out_newnumero numbering(*session, dialogs);
    auto* last = child<QLineEdit>(&numbering, "txt_dernier_num");
    auto* next = child<QLineEdit>(&numbering, "txt_new_num");
    EXPECT_EQ(last->text(), "2027000011");
    EXPECT_TRUE(last->isReadOnly());
    EXPECT_TRUE(accepts(next, "2028000001"));
    EXPECT_FALSE(accepts(next, "2027-01"));
    EXPECT_FALSE(accepts(next, "20280000011"));
    next->setText("2027000011");
    child<QPushButton>(&numbering, "cmdvalide")->click();
    EXPECT_EQ(dialogs.takeShown(),
              "Impossible, le prochain N° doit être supérieur au dernier utilisé !!!");
    EXPECT_EQ(next->text(), "2027000011");
    next->setText("2028000001");
    child<QPushButton>(&numbering, "cmdvalide")->click();
    EXPECT_EQ(dialogs.takeShown(),
              "Traitement termine\nLa prochaine facture portera le N° 2028000001.");
    EXPECT_EQ(last->text(), "2028000000");
    EXPECT_TRUE(next->text().isEmpty());
    EXPECT_TRUE(dialogs.shown().empty());
}
