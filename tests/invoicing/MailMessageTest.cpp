#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "invoicing/MailMessage.h"
#include "support/SmtpTestServer.h"

using namespace orve::invoicing;

TEST(MailMessage, OnlyPlainAddressesPass) {
    for (const char* good :
         {"a@b.fr", "prenom.nom+facture@sous.domaine-x.example", "O'Brien@club.example"})
        EXPECT_TRUE(plausibleAddress(good)) << good;
    for (const char* bad : {"", "a", "a@b", "@b.fr", "a@.fr", "a..b@c.fr", ".a@b.fr", "a b@c.fr",
                            "<a@b.fr>", "Nom <a@b.fr>", "a@b.fr\r\nBcc: c@d.fr", "a@b.fr,c@d.fr",
                            "a@b_c.fr", "é@b.fr", "a@-b.fr"})
        EXPECT_FALSE(plausibleAddress(QString::fromUtf8(bad))) << bad;
    EXPECT_EQ(splitAddresses(" a@b.fr ; c@d.fr,,e@f.fr; "),
              (QStringList{"a@b.fr", "c@d.fr", "e@f.fr"}));
    EXPECT_EQ(headerText(QString::fromUtf8("Objet\r\nBcc: x\t\x7f fin ")), "Objet  Bcc: x   fin");
}

TEST(MailMessage, AMailProgramReadsBackWhatWasWritten) {
    QTemporaryDir dir;
    MailMessage m;
    m.from = "factures@kvarn-bowling.example";
    m.to = {"a@b.example", "c@d.example"};
    m.cc = {"e@f.example"};
    // Long, accented, with a line break typed into it.
    m.subject = QString::fromUtf8(
        "[Facture]-Championnat départemental des quilleurs émérites de Provence-Alpes-Côte "
        "d'Azur\nBcc: intrus@ailleurs.example");
    m.body = QString::fromUtf8(
        "Bonjour Mme Éloïse Kerbrat\r\n.\n.ligne qui commence par un point\nfin de ligne "
        "blanche   \nUne très longue ligne " +
        QString(120, QChar(0x00E9)).toUtf8() + " = égal\n\nCordialement.");
    QByteArray pdf(70000, '\0');
    for (auto& b : pdf) b = static_cast<char>(QRandomGenerator::global()->bounded(256));
    m.attachment = MailAttachment{QString::fromUtf8("Clé_FN_00000058.pdf"), "application/pdf", pdf};
    const QByteArray mime =
        m.toMime(QDateTime(QDate(2026, 11, 21), QTime(10, 15)), newMessageId(m.from));
    // Lines stay short; the headers, the Subject folded included, end before
    // the first empty line.
    bool inHeaders = true;
    for (const QByteArray& line : mime.split('\n')) {
        if (line == "\r") inHeaders = false;
        EXPECT_LE(line.size(),
                  inHeaders && !line.startsWith("Subject") && !line.startsWith(" ") ? 998 : 78)
            << line.toStdString();
        if (line == ".\r") ADD_FAILURE() << "a bare dot line";
    }
    const QString path = dir.filePath("m.eml");
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(mime);
    f.close();
    const QJsonObject got = orve::test::parseMailFile(path);
    ASSERT_FALSE(got.isEmpty()) << "python3 could not read the message";
    EXPECT_TRUE(got.value("defects").toArray().isEmpty());
    EXPECT_EQ(got.value("subject").toString(), headerText(m.subject));
    EXPECT_EQ(got.value("to").toString(), "a@b.example, c@d.example");
    EXPECT_EQ(got.value("date").toString().left(16), "Sat, 21 Nov 2026");
    QStringList names;
    for (const auto& n : got.value("header_names").toArray()) names << n.toString();
    EXPECT_FALSE(names.contains("Bcc", Qt::CaseInsensitive));
    QString expected = m.body;
    expected.replace("\r\n", "\n");
    EXPECT_EQ(got.value("body").toString().toStdString(), expected.toStdString());
    const QJsonObject file = got.value("attachments").toArray()[0].toObject();
    EXPECT_EQ(file.value("filename").toString(), QString::fromUtf8("Clé_FN_00000058.pdf"));
    EXPECT_EQ(file.value("size").toInt(), pdf.size());
    EXPECT_EQ(
        file.value("sha256").toString(),
        QString::fromLatin1(QCryptographicHash::hash(pdf, QCryptographicHash::Sha256).toHex()));
}
