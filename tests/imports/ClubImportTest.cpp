#include <gtest/gtest.h>

#include "ImportTestSupport.h"
#include "imports/ClubImport.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::imports;

namespace {

const QString kHeader = QStringLiteral("Dept;Club;Type;Nom;...\n");

// A club line of 25 fields.
QString clubLine(const QString& dept, const QString& num, const QString& name,
                 const QString& town = QStringLiteral("Marseille")) {
    QStringList f(25);
    f[0] = dept;
    f[1] = num;
    f[2] = QStringLiteral("Club");
    f[3] = name;
    f[4] = QStringLiteral("1 rue des Quilles");
    f[7] = QStringLiteral("13008");
    f[8] = town;
    f[9] = QStringLiteral("Jeanne Président");
    f[21] = QStringLiteral("second@club.example");
    f[22] = QStringLiteral("premier@club.example");
    f[23] = QStringLiteral("BOW0131");
    f[24] = QStringLiteral("ignoré");
    return f.join(';') + '\n';
}

ImportReport importClubs(store::Store& s, const QString& text, const QDate& today) {
    ClubImport import(s, today);
    import.check(test::importText(text));
    return import.write();
}

store::Row club(const store::Store& s, const QString& code) {
    return *s.selectOne("SELECT * FROM strclub WHERE club_code = ?", {code});
}

}  // namespace

TEST(ClubImport, AHeaderAloneImportsNothingAndStillEndsTheTreatment) {
    test::TestInstall inst;
    auto session = inst.start();
    const QStringList before = test::tableRows(session->store(), "strclub", "club_code");
    const ImportReport r = importClubs(session->store(), kHeader, inst.today());
    EXPECT_EQ(r.closing(kProcessingDone),
              "Traitement termine\nLignes lues : 0 ; créations : 0 ; mises à jour : 0 ; lignes "
              "ignorées : 0.");
    EXPECT_EQ(test::tableRows(session->store(), "strclub", "club_code"), before);
}

TEST(ClubImport, CodesAccountsAndTheFieldsOfANewClub) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const ImportReport r =
        importClubs(s,
                    kHeader + clubLine("75", "12", "  Paris Strike  ") +
                        clubLine("971", "4", "Jarry", "Baie-Mahault") +
                        clubLine("1", "7", "Bourg") + clubLine("075", "13", "Trois chiffres") +
                        // Fewer than 25 fields: the name is missing, the last text is field 25.
                        "44;3;C;Nom perdu\n",
                    QDate(2026, 12, 2));
    EXPECT_EQ(r.created, 5);
    EXPECT_EQ(r.skipped(), 0);

    const auto paris = club(s, "CL75012");
    EXPECT_EQ(paris.value("club_compta").toString(), "075012");
    EXPECT_EQ(paris.value("club_num").toString(), "012");
    EXPECT_EQ(paris.value("club_dept").toString(), "075");
    EXPECT_EQ(paris.value("club_nom").toString(), "Paris Strike");
    EXPECT_EQ(paris.value("club_type").toString(), "C");
    EXPECT_EQ(paris.value("club_region").toString(), "LR11");
    EXPECT_EQ(paris.value("club_district").toString(), "D1");
    EXPECT_EQ(paris.value("club_lr").toString(), "00");
    EXPECT_EQ(paris.value("club_bowling").toString(), " ");
    EXPECT_EQ(paris.value("club_ad4").toString(), " ");
    EXPECT_EQ(paris.value("club_dirig").toString(), "0");
    EXPECT_EQ(paris.value("club_mail1").toString(), "premier@club.example");
    EXPECT_EQ(paris.value("club_mail2").toString(), "second@club.example");
    EXPECT_EQ(paris.value("club_bowling_code").toString(), "BOW0131");
    EXPECT_EQ(paris.value("club_president").toString(), "Jeanne Président");
    EXPECT_EQ(paris.value("club_date_enreg").toString(), "02/12/2026");

    EXPECT_EQ(club(s, "CL971004").value("club_compta").toString(), "971004");
    EXPECT_EQ(club(s, "CL01007").value("club_dept").toString(), "001");
    // Three characters in the file keep three digits in the code.
    EXPECT_EQ(club(s, "CL075013").value("club_dept").toString(), "075");
    const auto lost = club(s, "CL44003");
    EXPECT_EQ(lost.value("club_type").toString(), "C");
    EXPECT_EQ(lost.value("club_nom").toString(), "");
    EXPECT_EQ(lost.value("club_ville").toString(), "");

    // Two committees the installation does not know: named, imported without league.
    ASSERT_EQ(r.lines().size(), 2u);
    EXPECT_EQ(r.lines()[0].number, 3);
    EXPECT_EQ(r.lines()[0].reason, "Dept 971 inconnu : club importé sans ligue ni district");
    EXPECT_FALSE(r.lines()[0].skipped);
    EXPECT_EQ(r.lines()[1].reason, "Dept 001 inconnu : club importé sans ligue ni district");
    EXPECT_EQ(club(s, "CL971004").value("club_region").toString(), "");
}

TEST(ClubImport, AReImportKeepsCodeAndAccountAndTheLastLineWins) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    // Demo club CL13001 has account 410131.
    ASSERT_EQ(club(s, "CL13001").value("club_compta").toString(), "410131");
    s.exec("UPDATE strclub SET club_code = 'cl13002' WHERE club_code = 'CL13002'");
    const QString file = kHeader + clubLine("13", "1", "Premier nom") +
                         clubLine("13", "2", "Aix", "Aix-en-Provence") +
                         clubLine("13", "1", "Nouveau nom", "Aubagne");
    const int clubs = s.scalar("SELECT count(*) FROM strclub").toInt();
    ImportReport r = importClubs(s, file, QDate(2027, 1, 15));
    EXPECT_EQ(r.created, 0);
    EXPECT_EQ(r.updated, 3);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strclub").toInt(), clubs);
    const auto first = club(s, "CL13001");
    EXPECT_EQ(first.value("club_compta").toString(), "410131");
    EXPECT_EQ(first.value("club_nom").toString(), "Nouveau nom");
    EXPECT_EQ(first.value("club_ville").toString(), "Aubagne");
    EXPECT_EQ(first.value("club_date_enreg").toString(), "15/01/2027");
    // A code stored in another case is the same club, and keeps its spelling.
    EXPECT_EQ(club(s, "CL13002").value("club_code").toString(), "cl13002");
    EXPECT_EQ(club(s, "CL13002").value("club_compta").toString(), "410132");

    // A known club whose committee disappeared keeps its league and district.
    s.exec("UPDATE strdept SET de_no = '913' WHERE de_no = '013'");
    r = importClubs(s, kHeader + clubLine("13", "1", "Encore"), QDate(2027, 1, 16));
    EXPECT_EQ(r.lines().at(0).reason, "Dept 013 inconnu : club importé sans ligue ni district");
    EXPECT_EQ(club(s, "CL13001").value("club_region").toString(), "LR06");
    EXPECT_EQ(club(s, "CL13001").value("club_district").toString(), "D1");
    EXPECT_EQ(club(s, "CL13001").value("club_nom").toString(), "Encore");
}

TEST(ClubImport, LinesThatCannotMakeAClubAreNamedAndWriteNothing) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QStringList before = test::tableRows(s, "strclub", "club_code");
    const QString file = kHeader + clubLine("", "1", "Sans département") +
                         clubLine("2A", "1", "Corse") + clubLine("13", "", "Sans numéro") +
                         clubLine("13", "x9", "Numéro faux") + "\n" +
                         clubLine("13", "9", QString(300, 'n')) + clubLine("1234", "1", "Long") +
                         QStringLiteral("13;9\x01;C;Binaire\n");
    const ImportReport r = importClubs(s, file, inst.today());
    EXPECT_EQ(r.read, 8);
    EXPECT_EQ(r.created + r.updated, 0);
    QStringList reasons;
    for (const auto& l : r.lines()) {
        EXPECT_TRUE(l.skipped);
        reasons << QString::number(l.number) + ' ' + l.reason;
    }
    EXPECT_EQ(reasons,
              (QStringList{"2 numéro de département absent",
                           "3 numéro de département « 2A » non numérique",
                           "4 numéro de club absent", "5 numéro de club « x9 » non numérique",
                           "6 ligne vide", "7 le champ 4 dépasse 200 caractères",
                           "8 numéro de département « 1234 » trop grand (999 au plus)",
                           "9 caractères de contrôle dans la ligne (fichier non texte ?)"}));
    EXPECT_EQ(test::tableRows(s, "strclub", "club_code"), before);
}

TEST(ClubImport, WindowsFilesArriveWithTheirAccents) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    QByteArray bytes = (kHeader + clubLine("13", "5", "Les Quilles de l'Étang", "Châteauneuf"))
                           .toLatin1()
                           .replace('\n', "\r\n");
    ClubImport import(s, inst.today());
    import.check(ImportFile::fromBytes(bytes));
    EXPECT_EQ(import.report().encoding, "Windows-1252");
    import.write();
    EXPECT_EQ(club(s, "CL13005").value("club_nom").toString(), "Les Quilles de l'Étang");
    EXPECT_EQ(club(s, "CL13005").value("club_ville").toString(), "Châteauneuf");
    EXPECT_EQ(club(s, "CL13005").value("club_president").toString(), "Jeanne Président");

    // A UTF-8 file with one damaged line stays UTF-8: "Élan" is not stored as
    // "Ã‰lan", and the damaged line is named, not imported.
    QByteArray damaged = (kHeader + clubLine("13", "6", "Élan Bowling", "Aix") +
                          clubLine("13", "7", "Quilles X", "Arles"))
                             .toUtf8();
    damaged.replace("Quilles X", "Quilles \xC9toile");
    ClubImport mixed(s, inst.today());
    mixed.check(ImportFile::fromBytes(damaged));
    EXPECT_EQ(mixed.report().encoding, "UTF-8");
    ASSERT_EQ(mixed.report().lines().size(), 1u);
    EXPECT_EQ(mixed.report().lines()[0].number, 3);
    EXPECT_TRUE(mixed.report().lines()[0].skipped);
    EXPECT_TRUE(mixed.report().lines()[0].reason.startsWith("caractères non valides en UTF-8"));
    mixed.write();
    EXPECT_EQ(club(s, "CL13006").value("club_nom").toString(), "Élan Bowling");
    EXPECT_FALSE(s.exists("SELECT 1 FROM strclub WHERE club_code = 'CL13007'"));
}
