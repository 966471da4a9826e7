#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "accounting/AccountingTransfer.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/MailSettings.h"
#include "store/Refusal.h"
#include "store/Settings.h"
#include "store/TextCodec.h"

using namespace orve;

namespace {

// Every key of orve.ini that holds free text, with a value a clerk may type:
// commas, quotes, semicolons, accents, a leading "#".
const std::vector<std::pair<QString, QString>> kTexts{
    {"federation/nom", "FÉDÉRATION \"KVARN\", quilles & bowling"},
    {"federation/adresse", "12, rue des Quilles; bât. B, 75010 Paris"},
    {"federation/telephone", "01 40 00 12 34, poste 5"},
    {"federation/fax", "01,40,00,12,35"},
    {"federation/siret", "SIRET 000 000 000 00017, APE 9312Z"},
    {"federation/banque", "Banque des Sports, agence \"Est\"; Paris"},
    {"federation/iban", "FR76 0000, 0000"},
    {"federation/bic", "#BCSPFRPP"},
    {"federation/ordre_reglement", "Règlements à l'ordre de la K.V.A.R.N., merci"},
    {"federation/avis_virement", "Réglez par virement ; IBAN ci-dessous, svp"},
    {"mentions/tva", "TVA non applicable, art. 293 B du CGI"},
    {"mentions/penalites", "Pénalités : 3 × le taux légal, \"exigibles\""},
    {"mentions/indemnite", "Indemnité forfaitaire ; 40 €, art. L441-10"},
    {"documents/imprimante", "HP, bureau; 2e étage"},
    {"mail/serveur", "smtp.exemple.org"},
    {"mail/utilisateur", "compta, ligue"},
    {"mail/expediteur", "\"Compta KVARN\" <compta@kvarn.example>"},
    {"mail/mot_de_passe", "p;a,s\"s#1 = 2"},
    {"support/contact", "M. Dupont, 01 02 03 04 05 ; support@kvarn.example"}};

QString handWritten() {
    QString text = QStringLiteral("; orve.ini saisi à la main\r\n# commentaire\r\n");
    QString group;
    for (const auto& [key, value] : kTexts) {
        const QString g = key.section('/', 0, 0);
        if (g != group) text += QStringLiteral("\r\n[%1]\r\n").arg(group = g);
        text += QStringLiteral("%1 = %2  \r\n").arg(key.section('/', 1), value);
    }
    return text;
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

}  // namespace

TEST(Settings, EveryValueReadsBackAsTypedByHandOrWrittenByTheProgram) {
    QTemporaryDir dir;
    const QString ini = QDir(dir.path()).filePath("orve.ini");
    // By hand in UTF-8 or saved by a Windows editor (the euro and "×" have
    // their Windows-1252 bytes); then written back by the program itself.
    QByteArray windows = handWritten().toLatin1();
    windows.replace("40 ?", "40 \x80");
    for (const QByteArray& bytes : {handWritten().toUtf8(), windows, QByteArray()}) {
        if (!bytes.isEmpty()) {
            writeBytes(ini, bytes);
        } else {
            QFile::remove(ini);
            store::Settings written(ini);
            for (const auto& [key, value] : kTexts) written.setValue(key, value);
        }
        const store::Settings read(ini);
        for (const auto& [key, value] : kTexts)
            EXPECT_EQ(read.text(key), value) << key.toStdString();

        // What the documents, the mail and the transfer take from it.
        const auto l = invoicing::Letterhead::fromSettings(ini);
        EXPECT_EQ(l.address, "12, rue des Quilles; bât. B, 75010 Paris");
        EXPECT_EQ(l.vatMention, "TVA non applicable, art. 293 B du CGI");
        EXPECT_EQ(l.recoveryFee, "Indemnité forfaitaire ; 40 €, art. L441-10");
        EXPECT_EQ(l.bic, "#BCSPFRPP");
        const auto m = invoicing::MailSettings::fromIni(ini);
        EXPECT_EQ(m.sender, "\"Compta KVARN\" <compta@kvarn.example>");
        EXPECT_EQ(m.password, "p;a,s\"s#1 = 2");
        EXPECT_EQ(accounting::supportContact(ini),
                  "M. Dupont, 01 02 03 04 05 ; support@kvarn.example");
    }
    // The program writes plain lines a clerk can read and edit.
    QFile f(ini);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(f.readAll());
    EXPECT_TRUE(text.contains("\ntva=TVA non applicable, art. 293 B du CGI\n"));
    EXPECT_TRUE(store::isValidUtf8(text.toUtf8()));
}

TEST(Settings, ValuesThatCannotBeUsedAreNamed) {
    QTemporaryDir dir;
    const QString ini = QDir(dir.path()).filePath("orve.ini");
    EXPECT_TRUE(store::settingsProblems(ini).isEmpty());  // no orve.ini: nothing to say
    QImage(4, 4, QImage::Format_RGB32).save(QDir(dir.path()).filePath("logo.png"));
    writeBytes(ini,
               "[federation]\nlogo=logo.png\n[documents]\nouvrir_pdf=oui\n[saison]\ncourante="
               "2027\n[mail]\nserveur=smtp.exemple.org\nport=2525\nsecurite=TLS\ndelai=30\n");
    EXPECT_TRUE(store::settingsProblems(ini).isEmpty())
        << qPrintable(store::settingsProblems(ini).join('\n'));
    EXPECT_EQ(invoicing::MailSettings::fromIni(ini).port, 2525);
    EXPECT_TRUE(invoicing::Letterhead::fromSettings(ini).openPdf);
    EXPECT_TRUE(invoicing::Letterhead::fromSettings(ini).logo.endsWith("logo.png"));

    writeBytes(ini,
               "[federation]\nlogo=images\\absent.png\n[documents]\nouvrir_pdf=peut-être\n"
               "[saison]\ncourante=2027-2028\n[mail]\nport=25a\nsecurite=ssl\ndelai=une minute\n");
    const QStringList problems = store::settingsProblems(ini);
    const QStringList expected{
        "orve.ini [saison] courante = « 2027-2028 » : ce n'est pas un nombre entier.",
        "orve.ini [mail] port = « 25a » : ce n'est pas un nombre entier.",
        "orve.ini [mail] delai = « une minute » : ce n'est pas un nombre entier.",
        "orve.ini [mail] securite = « ssl » : valeur inconnue",
        "orve.ini [documents] ouvrir_pdf = « peut-être » : attendu true ou false",
        "orve.ini [federation] logo = « images\\absent.png » : fichier introuvable"};
    ASSERT_EQ(problems.size(), expected.size()) << qPrintable(problems.join('\n'));
    for (int i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(problems[i].startsWith(expected[i])) << qPrintable(problems[i]);
    // At first use: no mail leaves on a port guessed, the documents keep the
    // program's logo.
    try {
        invoicing::MailSettings::fromIni(ini);
        ADD_FAILURE() << "a port that is not a number was used";
    } catch (const Refusal& r) {
        EXPECT_TRUE(r.message().startsWith("orve.ini [mail] port = « 25a » : "))
            << qPrintable(r.message());
    }
    EXPECT_EQ(invoicing::Letterhead::fromSettings(ini).logo, invoicing::Letterhead().logo);
}
