#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <csignal>

#include "ImportTestSupport.h"
#include "imports/ClubImport.h"
#include "imports/DepartmentImport.h"
#include "imports/PrivateImport.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::imports;

namespace {

const QString kBatch = QStringLiteral(ORVE_BATCH);

// Garbage of every kind a damaged or wrong file holds, line by line.
QByteArray garbageLine(QRandomGenerator& random, int kind) {
    QByteArray b;
    switch (kind % 5) {
        case 0:  // random bytes, NUL and high bytes included
            for (int i = 0, n = random.bounded(1, 120); i < n; ++i)
                b += static_cast<char>(random.bounded(256));
            b.replace('\n', ' ');
            return b;
        case 1:  // a very long line without separators
            return QByteArray(100000, 'x');
        case 2:  // a long line of separators
            return QByteArray(100000, ';');
        case 3:  // digits where names go, separators missing
            return QByteArray::number(random.bounded(1000000)) + " " +
                   QByteArray::number(random.bounded(1000));
        default:  // a NUL in the middle of a plausible line
            return QByteArray("13;8;C;Club\0nul;;;;13000;Ville", 31);
    }
}

}  // namespace

TEST(ImportRobustness, AFuzzedFileNeverCrashesAndChangesNothingItReportsAsSkipped) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    QRandomGenerator random(20261121);
    // Valid lines (clubs 13/501.. and tournaments 501..) between garbage lines.
    QByteArray clubs = "Dept;Club;Type;Nom\n";
    QByteArray privates;
    QSet<int> validClubLines;
    QSet<int> validPrivateLines;
    for (int i = 0; i < 60; ++i) {
        if (i % 3 == 0) {
            clubs += "13;" + QByteArray::number(500 + i) + ";C;Club " + QByteArray::number(i) +
                     ";;;;13000;Marseille\n";
            validClubLines.insert(i + 2);
            privates += "2027;TP;13;" + QByteArray::number(500 + i) +
                        ";;01/03/27;Tournoi;10;5;;;CL13001 Phocéen\n";
            validPrivateLines.insert(i + 1);
        } else {
            clubs += garbageLine(random, i) + "\r\n";
            privates += garbageLine(random, i) + "\n";
        }
    }
    const QStringList clubsBefore = test::tableRows(s, "strclub", "club_code");
    const QStringList competitionsBefore = test::tableRows(s, "strcompetition", "c_index");

    ClubImport clubImport(s, inst.today());
    clubImport.check(ImportFile::fromBytes(clubs));
    const ImportReport clubReport = clubImport.write();
    EXPECT_EQ(clubReport.created, validClubLines.size());
    EXPECT_EQ(clubReport.skipped(), 60 - validClubLines.size());
    for (int n = 2; n <= 61; ++n)
        EXPECT_EQ(clubReport.wasSkipped(n), !validClubLines.contains(n)) << "line " << n;
    // Every club that was there is unchanged but for the ones the file names.
    QStringList clubsAfter = test::tableRows(s, "strclub", "club_code");
    for (const QString& row : clubsBefore)
        EXPECT_TRUE(clubsAfter.contains(row)) << row.toStdString();
    EXPECT_EQ(clubsAfter.size(), clubsBefore.size() + validClubLines.size());

    PrivateImport privateImport(s);
    privateImport.check(ImportFile::fromBytes(privates));
    const ImportReport privateReport = privateImport.write(false);
    EXPECT_EQ(privateReport.created, validPrivateLines.size());
    for (int n = 1; n <= 60; ++n)
        EXPECT_EQ(privateReport.wasSkipped(n), !validPrivateLines.contains(n)) << "line " << n;
    const QStringList competitionsAfter = test::tableRows(s, "strcompetition", "c_index");
    for (const QString& row : competitionsBefore) EXPECT_TRUE(competitionsAfter.contains(row));
    EXPECT_EQ(competitionsAfter.size(), competitionsBefore.size() + validPrivateLines.size());
    // A report line is cut for display, whatever the length of the line.
    for (const auto& l : privateReport.lines()) EXPECT_LE(l.text.size(), 201);

    // The committees' two steps take the same garbage.
    const QStringList committeesBefore = test::tableRows(s, "strdept", "de_no");
    DepartmentImport departments(s, inst.today());
    departments.load(ImportFile::fromBytes(privates));
    const ImportReport departmentReport = departments.apply();
    EXPECT_EQ(departmentReport.updated, 0);
    EXPECT_EQ(departmentReport.skipped(), 60);
    EXPECT_EQ(test::tableRows(s, "strdept", "de_no"), committeesBefore);

    // The same file through orve-batch: no crash, a report, exit 0.
    QTemporaryDir dir;
    QString out, err;
    EXPECT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "clubs",
                                test::writeFile(dir, "fuzz.csv", clubs)},
                               "", &out, &err),
              0)
        << err.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("lignes ignorées : %1.").arg(clubReport.skipped())))
        << out.toStdString();
}

TEST(ImportRobustness, AKilledImportLeavesTheDataAsBefore) {
    test::TestInstall inst;
    QTemporaryDir dir;
    QByteArray big;
    constexpr int kLines = 250000;
    big.reserve(kLines * 64);
    for (int i = 1; i <= kLines; ++i)
        big += "2027;TP;13;" + QByteArray::number(i % 99999 + 1) + ";;01/03/27;Tournoi " +
               QByteArray::number(i) + ";10;5;;;CL13001 Phocéen\n";
    const QString path = test::writeFile(dir, "grand.csv", big);
    QStringList before;
    {
        // Signed in as the import will be: what the sign-in writes is not the import's.
        auto session = inst.startAs("gestu");
        before = test::tableRows(session->store(), "strcompetition", "c_index");
    }
    QProcess batch;
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("ORVE_TODAY", "21/11/2026");
    batch.setProcessEnvironment(env);
    batch.start(kBatch, {"--home", inst.home(), "--as", "gestu", "import", "prive", path});
    // Killed once it says the writing has begun, in the middle of its transaction.
    QByteArray said;
    while (!said.contains("enregistrement de") && batch.waitForReadyRead(60000))
        said += batch.readAllStandardOutput();
    ASSERT_TRUE(said.contains("enregistrement de")) << said.toStdString();
    QThread::msleep(300);
    ASSERT_EQ(batch.state(), QProcess::Running) << "the import ended before it could be killed";
    ::kill(static_cast<pid_t>(batch.processId()), SIGKILL);
    ASSERT_TRUE(batch.waitForFinished(30000));
    EXPECT_EQ(batch.exitStatus(), QProcess::CrashExit);

    auto session = inst.start();
    store::Store& s = session->store();
    EXPECT_EQ(test::tableRows(s, "strcompetition", "c_index"), before);
    // Nothing is left locked: the next import goes through.
    PrivateImport again(s);
    again.check(test::importText("2027;TP;13;1;;01/03/27;Tournoi;10;5;;;CL13001 Phocéen\n"));
    EXPECT_EQ(again.write(false).created, 1);
}

TEST(ImportRobustness, OrveBatchPrintsTheReportAndRefusesAFileItCannotRead) {
    test::TestInstall inst;
    QTemporaryDir dir;
    QString out, err;
    EXPECT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "clubs",
                                dir.filePath("absent.csv")},
                               "", &out, &err),
              1);
    EXPECT_EQ(err.trimmed(),
              QStringLiteral("Le fichier %1 est introuvable.").arg(dir.filePath("absent.csv")));

    const QString file = test::writeFile(
        dir, "prive.csv",
        "2027;TP;13;1;;01/03/27;Tournoi;10;5;;;CL13001 Phocéen\n2027;TP;13;x;;01/03/27;T\n");
    ASSERT_EQ(
        test::runProgram(kBatch, {"--home", inst.home(), "--as", "gestu", "import", "prive", file},
                         "", &out, &err),
        0)
        << err.toStdString();
    EXPECT_TRUE(
        out.contains("ligne 2 ignorée : numéro du tournoi « x » non numérique : "
                     "« 2027;TP;13;x;;01/03/27;T »"))
        << out.toStdString();
    EXPECT_TRUE(
        out.endsWith("Traitement termine\nLignes lues : 2 ; créations : 1 ; mises à jour "
                     ": 0 ; lignes ignorées : 1.\n"))
        << out.toStdString();
    // Again without --doublons: the question is answered no.
    ASSERT_EQ(
        test::runProgram(kBatch, {"--home", inst.home(), "--as", "gestu", "import", "prive", file},
                         "", &out, &err),
        0);
    EXPECT_TRUE(
        out.contains("1 compétitions de ce fichier existent déjà. Les importer une seconde "
                     "fois ? non\n"))
        << out.toStdString();
    EXPECT_TRUE(out.contains("créations : 0 ;"));
    ASSERT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "prive", file,
                                "--doublons", "oui"},
                               "", &out, &err),
              0);
    EXPECT_TRUE(out.contains("créations : 1 ;")) << out.toStdString();
    EXPECT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "prive", file,
                                "--doublons", "peut-être"},
                               "", &out, &err),
              1);

    // The championship takes its season and final from the command line.
    const QString cdc = test::writeFile(dir, "cdc.csv", "CL13001 Phocéen;1;0;0;2;0;0\n");
    ASSERT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "cdc", cdc,
                                "--saison", "2028", "--date", "03/06/2028"},
                               "", &out, &err),
              0)
        << err.toStdString();
    auto session = inst.start();
    EXPECT_EQ(session->store()
                  .scalar("SELECT c_date_finale FROM strcompetition WHERE c_index = '8FD00002'")
                  .toString(),
              "03/06/2028");
    EXPECT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "import", "cdc", cdc,
                                "--saison", "20x8"},
                               "", &out, &err),
              1);
    EXPECT_EQ(err.trimmed(), "La saison « 20x8 » n'est pas une année.");
}
