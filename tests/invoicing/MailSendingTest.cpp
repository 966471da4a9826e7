#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include "app/Session.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceMailing.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/MailOutbox.h"
#include "invoicing/MailSettings.h"
#include "invoicing/SmtpSender.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "support/DemoInvoices.h"
#include "support/FileSizeLimit.h"
#include "support/SmtpTestServer.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

const QString kOperatorMail = QStringLiteral("gestu@kvarn-bowling.example");
const QString kSender = QStringLiteral("factures@kvarn-bowling.example");
const QString kText = QStringLiteral("Veuillez trouver ci-joint votre facture.\nCordialement.");

// The test script installs the SMTP server: one that cannot start is a failure.
#define REQUIRE_SERVER(server) \
    ASSERT_TRUE((server).error().isEmpty()) << (server).error().toStdString()

QString sha256(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return QString::fromLatin1(
        QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256).toHex());
}

QString mark(const store::Store& store, const QString& number) {
    return test::headerValue(store, number, "ent_envoi_mail");
}

// A licence invoice to a free address known by an entity code, its document
// made: the mailing must attach the file named by that code.
QString entityInvoice(app::Session& s, const QString& mail1, const QString& mail2 = {}) {
    InvoiceHeader h;
    h.dateText = format::displayDate(s.today());
    h.nature = "LIC";
    h.competitionIndex = kLicenceIndex;
    h.competitionTitle = "Licence Saison 2026-2027";
    h.billed.entity = "ENT42";
    h.billed.name = "Association des quilleurs";
    h.billed.president = "Mme Jeanne Roussel";
    h.billed.postcodeTown = "75010 Paris";
    h.billed.mail1 = mail1;
    h.billed.mail2 = mail2;
    const QString n = createInvoice(s.store(), h, s.today());
    updateLine(s.store(), n, "01", {"00000001", "Licence adulte", 3, Money::fromCents(4500)});
    return n;
}

QString pdf(app::Session& s, const QString& number) {
    return generateInvoicePdf(s.store(), documentSettings(s), number);
}

MailRunContext context(app::Session& s) { return {s.invoiceFolder(), kOperatorMail, kSender}; }

MailRunOptions realOptions() {
    MailRunOptions o;
    o.body = kText;
    return o;
}

MailSettings settingsOf(app::Session& s) { return MailSettings::fromIni(s.settingsPath()); }

QStringList strings(const QJsonValue& v) {
    QStringList out;
    for (const auto& x : v.toArray()) out << x.toString();
    return out;
}

}  // namespace

TEST(MailSending, RealProcedureDeliversEachInvoiceOnOneConnectionAndMarksIt) {
    test::application();
    test::SmtpTestServer server;
    REQUIRE_SERVER(server);
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    server.configure(s->settingsPath());
    const QString entity =
        entityInvoice(*s, "tresorier@quilleurs.example", "secretaire@quilleurs.example");
    const QString clubPdf = pdf(*s, test::kClubInvoice);
    const QString entityPdf = pdf(*s, entity);
    EXPECT_EQ(QFileInfo(entityPdf).fileName(), "ENT42_FN_" + entity + ".pdf");
    EXPECT_EQ(unsentInvoices(s->store(), "LIC"),
              (std::vector<QString>{test::kClubInvoice, entity}));

    SmtpSender sender(settingsOf(*s));
    std::vector<QString> before;
    MailRunListener listener;
    listener.before = [&](int i, int total, const QString& n) {
        before.push_back(QString("%1/%2 %3").arg(i).arg(total).arg(n));
        return true;
    };
    const MailRunReport report = sendInvoiceMails(s->store(), sender, context(*s), realOptions(),
                                                  {entity, test::kClubInvoice}, listener);
    EXPECT_EQ(report.sent, 2) << report.summary().toStdString();
    EXPECT_EQ(report.summary().section('\n', 0, 0), "Les mails ont été envoyés");
    EXPECT_EQ(before, (std::vector<QString>{"1/2 " + test::kClubInvoice, "2/2 " + entity}));

    const auto got = server.received();
    ASSERT_EQ(got.size(), 2u);
    // One connection for the whole run.
    EXPECT_EQ(got[0].connection, 1);
    EXPECT_EQ(got[1].connection, 1);
    EXPECT_EQ(got[0].from, kSender);
    EXPECT_EQ(got[0].to, (QStringList{"contact.cl13001@clubs-bowling.example", kOperatorMail}));
    EXPECT_EQ(got[1].to, (QStringList{"tresorier@quilleurs.example", "secretaire@quilleurs.example",
                                      kOperatorMail}));

    const QJsonObject club = test::parseMailFile(got[0].file);
    EXPECT_TRUE(club.value("defects").toArray().isEmpty());
    EXPECT_EQ(club.value("to").toString(), "contact.cl13001@clubs-bowling.example");
    EXPECT_EQ(club.value("cc").toString(), kOperatorMail);
    EXPECT_EQ(club.value("subject").toString(), "[Facture]");
    EXPECT_FALSE(club.value("date").toString().isEmpty());
    EXPECT_TRUE(club.value("message-id").toString().endsWith("@kvarn-bowling.example>"));
    const QString president =
        test::headerValue(s->store(), test::kClubInvoice, "ent_fact_president").trimmed();
    EXPECT_EQ(club.value("body").toString().toStdString(),
              ("Bonjour " + president + "\n" + kText).toStdString());
    const QJsonArray clubFiles = club.value("attachments").toArray();
    ASSERT_EQ(clubFiles.size(), 1);
    EXPECT_EQ(clubFiles[0].toObject().value("filename").toString(),
              "CL13001_FN_" + test::kClubInvoice + ".pdf");
    EXPECT_EQ(clubFiles[0].toObject().value("type").toString(), "application/pdf");
    EXPECT_EQ(clubFiles[0].toObject().value("sha256").toString(), sha256(clubPdf));

    const QJsonObject ent = test::parseMailFile(got[1].file);
    EXPECT_EQ(ent.value("cc").toString(), "secretaire@quilleurs.example, " + kOperatorMail);
    EXPECT_TRUE(ent.value("body").toString().startsWith("Bonjour Mme Jeanne Roussel\n"));
    const QJsonObject entFile = ent.value("attachments").toArray()[0].toObject();
    EXPECT_EQ(entFile.value("filename").toString(), "ENT42_FN_" + entity + ".pdf");
    EXPECT_EQ(entFile.value("sha256").toString(), sha256(entityPdf));

    EXPECT_EQ(mark(s->store(), test::kClubInvoice), "O");
    EXPECT_EQ(mark(s->store(), entity), "O");
    EXPECT_TRUE(unsentInvoices(s->store(), "LIC").empty());
}

TEST(MailSending, TestProcedureGoesToTheTestAddressesWithTheCompetitionAndMarksNothing) {
    test::application();
    test::SmtpTestServer server;
    REQUIRE_SERVER(server);
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    server.configure(s->settingsPath());
    pdf(*s, test::kLeagueInvoice);

    MailRunOptions o = realOptions();
    o.realProcedure = false;
    o.testAddresses = true;
    o.testTo = "essai@kvarn-bowling.example";
    o.testCopy = "copie@kvarn-bowling.example";
    o.subject = "Facture été\r\nBcc: espion@ailleurs.example";
    o.addCompetition = true;
    SmtpSender sender(settingsOf(*s));
    const MailRunReport report =
        sendInvoiceMails(s->store(), sender, context(*s), o, {test::kLeagueInvoice});
    ASSERT_EQ(report.sent, 1) << report.summary().toStdString();
    const auto got = server.received();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].to, (QStringList{"essai@kvarn-bowling.example", "copie@kvarn-bowling.example",
                                      kOperatorMail}));
    const QJsonObject m = test::parseMailFile(got[0].file);
    const QString title =
        test::headerValue(s->store(), test::kLeagueInvoice, "ent_fact_competition");
    // The line break typed in the subject is a blank: no header comes of it.
    EXPECT_EQ(m.value("subject").toString(), "Facture été  Bcc: espion@ailleurs.example-" + title);
    EXPECT_FALSE(strings(m.value("header_names")).contains("Bcc", Qt::CaseInsensitive));
    EXPECT_EQ(m.value("to").toString(), "essai@kvarn-bowling.example");
    EXPECT_EQ(mark(s->store(), test::kLeagueInvoice), "N");

    // A test address is required, and must be one.
    o.testTo.clear();
    EXPECT_THROW(
        {
            try {
                sendInvoiceMails(s->store(), sender, context(*s), o, {test::kLeagueInvoice});
            } catch (const Refusal& r) {
                EXPECT_EQ(r.message(), kTestAddressRequired);
                throw;
            }
        },
        Refusal);
    o.testTo = "essai@kvarn-bowling.example>\r\nBcc: x@y.example";
    EXPECT_THROW(sendInvoiceMails(s->store(), sender, context(*s), o, {test::kLeagueInvoice}),
                 Refusal);
    EXPECT_EQ(server.received().size(), 1u);
}

TEST(MailSending, ARefusedRecipientLeavesThatInvoiceUnmarkedAndTheOthersGo) {
    test::application();
    test::SmtpTestServer server({"contact.cl13001@clubs-bowling.example"});
    REQUIRE_SERVER(server);
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    server.configure(s->settingsPath());
    const QString entity = entityInvoice(*s, "tresorier@quilleurs.example");
    pdf(*s, test::kClubInvoice);
    pdf(*s, entity);
    SmtpSender sender(settingsOf(*s));
    const MailRunReport report = sendInvoiceMails(s->store(), sender, context(*s), realOptions(),
                                                  {test::kClubInvoice, entity});
    EXPECT_EQ(report.sent, 1);
    EXPECT_EQ(report.failed, 1);
    EXPECT_TRUE(report.stopped.isEmpty());
    ASSERT_EQ(report.results.size(), 2u);
    EXPECT_EQ(report.results[0].outcome, MailOutcome::Failed);
    EXPECT_TRUE(report.results[0].detail.contains("550 5.1.1 Destinataire inconnu"))
        << report.results[0].detail.toStdString();
    EXPECT_TRUE(report.summary().contains("facture N° " + test::kClubInvoice + " : en échec"))
        << report.summary().toStdString();
    EXPECT_EQ(mark(s->store(), test::kClubInvoice), "N");
    EXPECT_EQ(mark(s->store(), entity), "O");
    ASSERT_EQ(server.received().size(), 1u);
    EXPECT_EQ(server.received()[0].to.first(), "tresorier@quilleurs.example");
}

TEST(MailSending, AServerThatIsDownGivesOneMessageAndMarksNothing) {
    test::application();
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    const QString entity = entityInvoice(*s, "tresorier@quilleurs.example");
    pdf(*s, test::kClubInvoice);
    pdf(*s, entity);
    MailSettings settings;
    settings.server = "127.0.0.1";
    settings.port = test::closedPort();
    settings.security = MailSecurity::None;
    settings.sender = kSender;
    settings.timeoutSeconds = 10;
    SmtpSender sender(settings);
    const MailRunReport report = sendInvoiceMails(s->store(), sender, context(*s), realOptions(),
                                                  {test::kClubInvoice, entity});
    EXPECT_EQ(report.sent, 0);
    EXPECT_EQ(report.notTried, 1);
    EXPECT_EQ(report.results.size(), 1u);
    EXPECT_TRUE(report.summary().startsWith(
        QString("L'envoi des mails s'est arrêté : 127.0.0.1:%1 (sans chiffrement) : connexion "
                "impossible")
            .arg(settings.port)))
        << report.summary().toStdString();
    EXPECT_EQ(mark(s->store(), test::kClubInvoice), "N");
    EXPECT_EQ(mark(s->store(), entity), "N");
}

TEST(MailSending, OutboxFilesOpenInAMailProgramAndCountAsSent) {
    test::application();
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    const QString clubPdf = pdf(*s, test::kClubInvoice);
    const MailSettings settings = settingsOf(*s);
    ASSERT_FALSE(settings.usesServer());
    const QString folder = outboxFolder(s->programFolder());
    EXPECT_EQ(mailRouteText(settings, folder),
              "Aucun serveur de mail n'est configuré (orve.ini [mail]) : les mails seront déposés "
              "dans le dossier " +
                  QDir::toNativeSeparators(folder) + ", à envoyer depuis votre messagerie.");
    ASSERT_FALSE(QFileInfo::exists(folder));
    MailOutbox outbox(folder);
    MailRunContext c{s->invoiceFolder(), kOperatorMail, kOperatorMail};
    const MailRunReport report =
        sendInvoiceMails(s->store(), outbox, c, realOptions(), {test::kClubInvoice});
    EXPECT_EQ(report.summary().section('\n', 0, 0),
              "Les mails ont été déposés dans le dossier " + QDir::toNativeSeparators(folder));
    ASSERT_EQ(outbox.written().size(), 1);
    EXPECT_EQ(QFileInfo(outbox.written()[0]).fileName(),
              "CL13001_FN_" + test::kClubInvoice + ".eml");
    const QJsonObject m = test::parseMailFile(outbox.written()[0]);
    EXPECT_TRUE(m.value("defects").toArray().isEmpty());
    EXPECT_EQ(m.value("x-unsent").toString(), "1");
    EXPECT_EQ(m.value("from").toString(), kOperatorMail);
    EXPECT_EQ(m.value("to").toString(), "contact.cl13001@clubs-bowling.example");
    EXPECT_EQ(m.value("attachments").toArray()[0].toObject().value("sha256").toString(),
              sha256(clubPdf));
    EXPECT_EQ(mark(s->store(), test::kClubInvoice), "O");

    // Sent again (test procedure): a second file, the first one kept.
    MailRunOptions o = realOptions();
    o.realProcedure = false;
    sendInvoiceMails(s->store(), outbox, c, o, {test::kClubInvoice});
    ASSERT_EQ(outbox.written().size(), 2);
    EXPECT_EQ(QFileInfo(outbox.written()[1]).fileName(),
              "CL13001_FN_" + test::kClubInvoice + "-2.eml");

    // On a full disk the run stops at its first message, named by its own
    // name with the cause, and leaves no part of it behind.
    const QString other = entityInvoice(*s, "jeanne.roussel@example.org");
    pdf(*s, other);
    MailRunReport full;
    {
        test::FileSizeLimit limit(16);
        full = sendInvoiceMails(s->store(), outbox, c, o, {test::kClubInvoice, other});
    }
    EXPECT_EQ(full.failed, 1);
    EXPECT_EQ(full.notTried, 1);
    const QString third = QDir::toNativeSeparators(
        QDir(folder).filePath("CL13001_FN_" + test::kClubInvoice + "-3.eml"));
    EXPECT_EQ(full.summary().section('\n', 0, 0),
              "L'envoi des mails s'est arrêté : " + QDir::toNativeSeparators(folder) +
                  " : Disque plein : impossible d'écrire le fichier " + third + ".");
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

TEST(MailSending, SkippedInvoicesAreReportedWithTheirReasonAndTheRunGoesOn) {
    test::application();
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    const QString noMail = entityInvoice(*s, "", "second@quilleurs.example");
    const QString injected =
        entityInvoice(*s, "ok@quilleurs.example", "ok2@quilleurs.example\r\nBcc: x@y.example");
    const QString noFile = entityInvoice(*s, "ok@quilleurs.example");
    const QString good = entityInvoice(*s, "bon@quilleurs.example; autre@quilleurs.example");
    for (const QString& n : {noMail, injected, good}) pdf(*s, n);
    QFile::remove(invoicePdfPath(s->invoiceFolder(), "", "ENT42", noFile));
    MailOutbox outbox(outboxFolder(s->programFolder()));
    const MailRunReport report = sendInvoiceMails(s->store(), outbox, context(*s), realOptions(),
                                                  {good, noFile, injected, noMail});
    EXPECT_EQ(report.sent, 1);
    EXPECT_EQ(report.skipped, 3);
    ASSERT_EQ(report.results.size(), 4u);
    EXPECT_EQ(report.results[0].detail,
              QString("la facture n° %1 n'a pas été envoyée par mail").arg(noMail));
    EXPECT_EQ(report.results[1].detail,
              "adresse mail invalide : ok2@quilleurs.example  Bcc: x@y.example");
    EXPECT_EQ(report.results[2].detail, "la facture : " +
                                            QDir::toNativeSeparators(invoicePdfPath(
                                                s->invoiceFolder(), "", "ENT42", noFile)) +
                                            " est introuvable ");
    EXPECT_EQ(report.results[3].outcome, MailOutcome::Sent);
    // Several addresses in one field are each a recipient.
    const QJsonObject m = test::parseMailFile(outbox.written()[0]);
    EXPECT_EQ(m.value("to").toString(), "bon@quilleurs.example, autre@quilleurs.example");
    for (const QString& n : {noMail, injected, noFile}) EXPECT_EQ(mark(s->store(), n), "N");
    EXPECT_EQ(mark(s->store(), good), "O");
}

TEST(MailSending, ARealRunOfCreditNotesResetsTheirCompetitionsWhenAskedMailedOrNot) {
    test::application();
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    store::Store& store = s->store();
    // A competition invoiced by the cancelled invoice.
    store.insert("strcompetition", {{"c_index", "FD790001"},
                                    {"index_reference", "00000000"},
                                    {"c_saison", "2027"},
                                    {"c_nature", "DIV"},
                                    {"c_facture", "F"},
                                    {"c_num_facture", test::kCommitteeInvoice},
                                    {"c_date_facture", "11/11/2026"},
                                    {"c_tri_facture", "20261111"},
                                    {"c_edt_fact", "OUI"},
                                    {"c_envoi_mail", "N"}});
    pdf(*s, test::kDemoCreditNote);
    EXPECT_TRUE(includesCreditNotes(store, {test::kCommitteeInvoice, test::kDemoCreditNote}));
    EXPECT_FALSE(includesCreditNotes(store, {test::kCommitteeInvoice}));
    MailOutbox outbox(outboxFolder(s->programFolder()));
    const auto competition = [&] {
        return store
            .selectOne(
                "SELECT c_facture, c_num_facture, c_date_facture, c_edt_fact, c_envoi_mail "
                "FROM strcompetition WHERE c_index = 'FD790001'")
            .value();
    };
    // Test procedure: nothing written, whatever was answered.
    MailRunOptions o = realOptions();
    o.realProcedure = false;
    o.invoiceAgain = true;
    sendInvoiceMails(store, outbox, context(*s), o, {test::kDemoCreditNote});
    EXPECT_EQ(competition().value("c_facture").toString(), "F");

    // A credit note that cannot leave (no address): its competition is
    // invoiceable again all the same, as the clerk answered.
    store.exec("UPDATE strentete SET ent_fact_mail1 = '' WHERE ent_fact_no = ?",
               {test::kDemoCreditNote});
    o.realProcedure = true;
    const MailRunReport report =
        sendInvoiceMails(store, outbox, context(*s), o, {test::kDemoCreditNote});
    ASSERT_EQ(report.skipped, 1) << report.summary().toStdString();
    const auto c = competition();
    EXPECT_EQ(c.value("c_facture").toString(), " ");
    EXPECT_EQ(c.value("c_num_facture").toString().trimmed(), "");
    EXPECT_EQ(c.value("c_date_facture").toString(), "__/__/____");
    EXPECT_EQ(c.value("c_edt_fact").toString(), "NON");
    EXPECT_EQ(c.value("c_envoi_mail").toString(), "N");
    EXPECT_EQ(mark(store, test::kDemoCreditNote), "N");
}
