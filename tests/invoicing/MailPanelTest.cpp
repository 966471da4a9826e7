#include <gtest/gtest.h>

#include <QCheckBox>
#include <QGroupBox>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceMailing.h"
#include "invoicing/ui/ORVE_facture_creation.h"
#include "support/DemoInvoices.h"
#include "support/ScreenTesting.h"
#include "support/SmtpTestServer.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

using test::child;
using test::click;

}  // namespace

// The whole way through the invoice window: the list of unsent licence
// invoices, all ticked, the panel, a login asked once for two runs.
TEST(MailPanel, ListTickConfirmAndSendThroughALoggedInServer) {
    test::application();
    test::SmtpTestServer server({}, "facturation", "secret-smtp");
    ASSERT_TRUE(server.error().isEmpty()) << server.error().toStdString();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    server.configure(session->settingsPath(), "facturation");
    generateInvoicePdf(session->store(), documentSettings(*session), test::kClubInvoice);
    app::ScriptedDialogs dialogs;
    ORVE_facture_creation screen(*session, dialogs, "LIC");
    click(&screen, "cmdvisu_fd");
    auto* grid = child<app::DataGrid>(&screen, "DBGrid1");

    click(&screen, "CmdEnvoiMail_bis");
    EXPECT_EQ(dialogs.takeShown(), kNothingTicked);
    click(&screen, "cmdvisu_fd_mail");
    EXPECT_EQ(child<QGroupBox>(&screen, "Frame_liste")->title(), kMailingListCaption);
    ASSERT_EQ(grid->rowCount(), 1);
    EXPECT_EQ(grid->value(0, "ent_fact_no").toString(), test::kClubInvoice);
    // The tick is the workstation's own, never the shared header's.
    click(&screen, "cmdtoutes");
    EXPECT_EQ(grid->value(0, "c_edt").toString(), "X");
    EXPECT_EQ(session->store().scalar("SELECT COUNT(*) FROM strentete WHERE c_edt = 'X'").toInt(),
              0);

    dialogs.queueAnswer(false);
    click(&screen, "CmdEnvoiMail_bis");
    EXPECT_EQ(dialogs.takeShown(), kMailConfirmation);
    EXPECT_FALSE(child<QGroupBox>(&screen, "Frame9")->isVisibleTo(&screen));

    dialogs.queueAnswer(true);
    click(&screen, "CmdEnvoiMail_bis");
    EXPECT_EQ(dialogs.takeShown(), kMailConfirmation);
    EXPECT_TRUE(child<QGroupBox>(&screen, "Frame9")->isVisibleTo(&screen));
    EXPECT_EQ(child<QLineEdit>(&screen, "txt_titre_mail")->text(), "[Facture]");
    EXPECT_TRUE(child<QRadioButton>(&screen, "Option2_0")->isChecked());
    EXPECT_TRUE(child<QRadioButton>(&screen, "Option5_0")->isChecked());
    EXPECT_EQ(child<QLineEdit>(&screen, "txt_test_mail1")->text(), "gestu@kvarn-bowling.example");
    EXPECT_EQ(child<QLabel>(&screen, "Label35")->text(),
              QString("Les mails partiront du serveur 127.0.0.1:%1 (sans chiffrement), compte "
                      "facturation, expéditeur factures@kvarn-bowling.example.")
                  .arg(server.port()));
    // The first text by name until another is chosen.
    auto* texts = child<app::DataGrid>(&screen, "DBGrid12");
    ASSERT_EQ(texts->rowCount(), 2);
    EXPECT_EQ(child<QPlainTextEdit>(&screen, "txt_message_mail")->toPlainText(),
              texts->value(0, "mail_memo").toString());
    texts->choose(1);
    click(&screen, "cmdchoisir");
    EXPECT_EQ(child<QPlainTextEdit>(&screen, "txt_message_mail")->toPlainText(),
              texts->value(1, "mail_memo").toString());

    // Test procedure first: the password is asked, the invoice stays unsent.
    child<QRadioButton>(&screen, "Option2_1")->setChecked(true);
    child<QRadioButton>(&screen, "Option3_1")->setChecked(true);
    child<QLineEdit>(&screen, "txt_test_mail1")->setText("essai@kvarn-bowling.example");
    child<QCheckBox>(&screen, "Option4")->setChecked(true);
    dialogs.queueChoice("secret-smtp");
    click(&screen, "cmdValideMail");
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
    EXPECT_EQ(dialogs.takeShown(),
              "Les mails ont été envoyés\nEnvoyés : 1 - non envoyés : 0 - en échec : 0");
    EXPECT_FALSE(child<QGroupBox>(&screen, "Frame9")->isVisibleTo(&screen));
    ASSERT_EQ(grid->rowCount(), 1);
    EXPECT_EQ(server.received().at(0).to.first(), "essai@kvarn-bowling.example");

    // Then for real: no second password question; the invoice leaves the list.
    click(&screen, "cmdtoutes");
    dialogs.queueAnswer(true);
    click(&screen, "CmdEnvoiMail_bis");
    dialogs.takeShown();
    click(&screen, "cmdValideMail");
    EXPECT_EQ(dialogs.takeShown(),
              "Les mails ont été envoyés\nEnvoyés : 1 - non envoyés : 0 - en échec : 0");
    EXPECT_TRUE(dialogs.failure().isEmpty()) << dialogs.failure().toStdString();
    EXPECT_EQ(grid->rowCount(), 0);
    ASSERT_EQ(server.received().size(), 2u);
    EXPECT_EQ(server.received().at(1).to.first(), "contact.cl13001@clubs-bowling.example");
    EXPECT_EQ(test::headerValue(session->store(), test::kClubInvoice, "ent_envoi_mail"), "O");
}

// The same rules from a shell: one line per invoice, the exit code, the texts.
TEST(MailPanel, OrveBatchMailsAsThePanelDoesAndKeepsTheTexts) {
    test::application();
    test::SmtpTestServer server({"president.lr06@ligues-bowling.example"});
    ASSERT_TRUE(server.error().isEmpty()) << server.error().toStdString();
    test::TestInstall inst;
    {
        auto session = inst.startAs("gestu");
        server.configure(session->settingsPath());
        for (const QString& n : {test::kClubInvoice, test::kLeagueInvoice})
            generateInvoicePdf(session->store(), documentSettings(*session), n);
    }
    const QString batch = QStringLiteral(ORVE_BATCH);
    const QStringList env{"ORVE_TODAY=21/11/2026"};
    QString out, err;
    EXPECT_EQ(test::runProgram(
                  batch, {"--home", inst.home(), "--as", "gestu", "mail-text", "set", "relance"},
                  "Merci de régler\ncette facture.\n", &out, &err, env),
              0)
        << err.toStdString();
    EXPECT_EQ(out, "texte ajouté : relance\n");
    EXPECT_EQ(test::runProgram(
                  batch, {"--home", inst.home(), "--as", "gestu", "mail-text", "set", "RELANCE"},
                  "Second texte\n", &out, &err, env),
              0);
    EXPECT_EQ(out, "texte remplacé : RELANCE\n");
    test::runProgram(batch, {"--home", inst.home(), "mail-text", "list"}, {}, &out, &err, env);
    EXPECT_EQ(out, "avoir : Bonjour,\nfacture : Bonjour,\nRELANCE : Second texte\n");

    EXPECT_EQ(test::runProgram(batch,
                               {"--home", inst.home(), "--as", "gestu", "mail", "--nature", "LIC",
                                "--texte", "relance", "--objet", "Votre facture", "--competition"},
                               {}, &out, &err, env),
              0)
        << out.toStdString() << err.toStdString();
    EXPECT_EQ(out, "facture N° " + test::kClubInvoice +
                       " : envoyée - à contact.cl13001@clubs-bowling.example (copie : "
                       "gestu@kvarn-bowling.example)\nLes mails ont été envoyés\nEnvoyés : 1 - non "
                       "envoyés : 0 - en échec : 0\n");
    const QJsonObject m = test::parseMailFile(server.received().at(0).file);
    EXPECT_TRUE(m.value("subject").toString().startsWith("Votre facture-Licence Saison"));
    EXPECT_TRUE(m.value("body").toString().endsWith("\nSecond texte"))
        << m.value("body").toString().toStdString();

    // A refused recipient: that invoice named with the server's answer, exit 1.
    EXPECT_EQ(test::runProgram(batch,
                               {"--home", inst.home(), "--as", "gestu", "mail", "--nature", "LI",
                                test::kLeagueInvoice, "2027000099"},
                               {}, &out, &err, env),
              1);
    EXPECT_TRUE(out.contains("facture N° 2027000099 : non envoyée - elle n'est pas dans la liste"));
    EXPECT_TRUE(out.contains("facture N° " + test::kLeagueInvoice +
                             " : en échec - le serveur a répondu « 550 5.1.1 Destinataire "
                             "inconnu »"))
        << out.toStdString();
    EXPECT_EQ(test::headerValue(inst.start()->store(), test::kLeagueInvoice, "ent_envoi_mail"),
              "N");
    EXPECT_EQ(
        test::runProgram(batch, {"--home", inst.home(), "--as", "gestu", "mail", "--competition"},
                         {}, &out, &err, env),
        1);
    EXPECT_EQ(err, "Veuillez sélectionner la nature\n");
}
