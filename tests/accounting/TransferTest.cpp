#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "AccountingFixture.h"
#include "accounting/AccountingConstants.h"
#include "accounting/AccountingTransfer.h"
#include "store/Refusal.h"
#include "support/FileSizeLimit.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::accounting;

namespace {

struct TransferWorld {
    test::TestInstall inst{test::TestInstall::Kind::Empty};
    std::unique_ptr<app::Session> session;
    TransferWorld() {
        session = inst.start();
        test::addAccountingFixture(session->store());
    }
    store::Store& store() { return session->store(); }
    QString folder() const { return session->dataFolder(); }
    QDate today() const { return inst.today(); }
    // The fixture's invoices carry no level: the national level's, or the
    // league's when a league transfers them.
    TransferResult transfer(TransferLayout layout, const QString& month = {},
                            const TransferOptions& options = {}) {
        const bool league = layout == TransferLayout::League;
        if (league)
            store().exec("UPDATE strentete SET ent_niveau = 'LR06' WHERE ent_niveau IS NULL");
        return writeTransfer(store(), folder(), layout, league ? "LR06" : "JKV",
                             test::seasonSelection("2021", month), today(), options);
    }
    QStringList files() const {
        return QDir(folder()).entryList({"Transfert_*"}, QDir::Files | QDir::Hidden, QDir::Name);
    }
    int marked() {
        return store().scalar("SELECT COUNT(*) FROM strentete WHERE ent_compta = 'O'").toInt();
    }
};

QString refusalOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Refusal& r) {
        return r.message();
    }
    return {};
}

const QStringList kTaken{"58", "2021000012", "2021000013", "2021000014"};

}  // namespace

TEST(AccountingTransfer, NationalFileIsTheHandWrittenOneAndReplacedTheSameDay) {
    TransferWorld w;
    // What the clerk is told first: the lines the tariffs give no account.
    const auto unaccounted = linesWithoutAccount(w.store(), test::seasonSelection("2021"), "JKV");
    ASSERT_EQ(unaccounted.size(), 3u);
    EXPECT_EQ(unaccounted[0].article, "00000008");
    EXPECT_EQ(unaccounted[0].nature, "DIV");
    EXPECT_EQ(unaccounted[2].article, "99999990");
    const QString told = linesWithoutAccountText(unaccounted);
    EXPECT_TRUE(told.startsWith("3 ligne(s) à transférer n'ont pas de compte KVARN"))
        << told.toStdString();
    EXPECT_TRUE(told.contains("article 12345678, nature LIC : 1 ligne(s)")) << told.toStdString();
    const TransferResult r = w.transfer(TransferLayout::National);
    EXPECT_EQ(QFileInfo(r.path).fileName(), "Transfert_20261121.csv");
    EXPECT_EQ(r.lines, 7);
    EXPECT_EQ(r.invoices, 4);
    EXPECT_EQ(test::fileBytes(r.path).toStdString(),
              test::expectedFile("national_2021.csv").toStdString());
    for (const QString& n : kTaken)
        EXPECT_EQ(test::transferMark(w.store(), n), "O") << n.toStdString();
    EXPECT_EQ(test::transferMark(w.store(), "2020000001"), "N");
    EXPECT_EQ(
        w.store().scalar("SELECT c_transfert FROM strentete WHERE ent_fact_no = '58'").toString(),
        QDir::toNativeSeparators(r.path));

    // Nothing is taken twice: a second run finds nothing and leaves the file.
    EXPECT_EQ(refusalOf([&] { w.transfer(TransferLayout::National); }), kNothingToTransfer);
    EXPECT_EQ(test::fileBytes(r.path).toStdString(),
              test::expectedFile("national_2021.csv").toStdString());

    // A new invoice the same day: the day's file is replaced by one holding it alone.
    test::addInvoice(w.store(), "2021000030", "F", "FD100001", "CHAF", "CL77001", "20/11/2020",
                     "20/12/2020", {{"99999991", "Frais Engagement", 1, 1210}});
    const TransferResult again = w.transfer(TransferLayout::National);
    EXPECT_EQ(again.path, r.path);
    EXPECT_EQ(w.files(), QStringList{"Transfert_20261121.csv"});
    const QByteArray content = test::fileBytes(again.path);
    EXPECT_EQ(content.count("\r\n"), 2) << content.toStdString();
    EXPECT_TRUE(content.endsWith(
        "20210030;20/11/2020;20/12/2020;CL77001;FD100001;007;CHAF;DM;Challenge f\xE9"
        "d\xE9ral de printemps;12,10;706210000;CHAF-ENG;\r\n"));
}

TEST(AccountingTransfer, LeagueFileIsTheHandWrittenOneAndNeverOverwritten) {
    TransferWorld w;
    const TransferResult r = w.transfer(TransferLayout::League);
    EXPECT_EQ(QFileInfo(r.path).fileName(), "Transfert_1_20261121.csv");
    EXPECT_EQ(r.lines, 12);
    EXPECT_EQ(test::fileBytes(r.path).toStdString(),
              test::expectedFile("league_2021.csv").toStdString());
    EXPECT_EQ(w.store()
                  .scalar("SELECT COUNT(*) FROM strentete WHERE ent_compta = 'O' AND "
                          "c_transfert = ?",
                          {QDir::toNativeSeparators(r.path)})
                  .toInt(),
              4);

    test::addInvoice(w.store(), "2021000031", "F", "1FA00001", "DIV", "CD077", "03/12/2020",
                     "03/12/2020", {{"00000005", "Frais de dossier", 2, 1500}});
    // A blank party is written as it is stored, before its "-".
    test::addInvoice(w.store(), "2021000032", "F", "1FA00001", "DIV", " ", "04/12/2020",
                     "04/12/2020", {{"00000005", "Frais de dossier", 1, 1250}});
    const TransferResult second = w.transfer(TransferLayout::League);
    EXPECT_EQ(QFileInfo(second.path).fileName(), "Transfert_2_20261121.csv");
    EXPECT_EQ(test::fileBytes(r.path).toStdString(),
              test::expectedFile("league_2021.csv").toStdString());
    EXPECT_EQ(
        test::fileBytes(second.path).toStdString(),
        "N Facture;Date Facture;Date Echeance;N compte;Intitule Competition;Montant;sens;"
        "analytique\r\n"
        "2021000031;03/12/2020;03/12/2020;708800000;CD077-2021000031 du "
        "03/12/2020;00030,00;C;000;\r\n"
        "2021000031;03/12/2020;03/12/2020;411077;2021000031 du 03/12/2020;00030,00;D;000;\r\n"
        "2021000032;04/12/2020;04/12/2020;708800000; -2021000032 du "
        "04/12/2020;00012,50;C;000;\r\n"
        "2021000032;04/12/2020;04/12/2020;999999;2021000032 du 04/12/2020;00012,50;D;000;\r\n");
}

namespace {

// One invoice of three lines on one account: two articles whose tariffs give
// the second codes `first` and `second`, one of them twice.
TransferResult oneInvoiceOfTwoCodes(TransferWorld& w, const char* first, const char* second,
                                    const QString& level) {
    for (const auto& [article, code] : {std::pair{"00000001", first}, {"00000005", second}})
        w.store().insert("strtarif", {{"t_nature", "CHAF"},
                                      {"t_article", article},
                                      {"t_tri_deb", "20180901"},
                                      {"t_kvarn", "706100000"},
                                      {"t_jkv", code}});
    test::addInvoice(w.store(), "2021000040", "F", "FD100001", "CHAF", "CL77001", "22/03/2021",
                     "21/04/2021",
                     {{"00000001", "Licence", 1, 1000},
                      {"00000005", "Dossier", 1, 2000},
                      {"00000001", "Licence", 1, 500}});
    invoicing::SelectionState one;
    one.season = "2021";
    one.invoiceNumber = "2021000040";
    return writeTransfer(w.store(), w.folder(), TransferLayout::National, level,
                         invoicing::buildSelectionCondition(one), w.today());
}

}  // namespace

TEST(AccountingTransfer, NationalLinesAreSummedByInvoiceAccountAndCode) {
    // One account, two second codes: two lines; the same pair twice: one.
    {
        TransferWorld w;
        const TransferResult r = oneInvoiceOfTwoCodes(w, "CHAF-A", "CHAF-B", "JKV");
        const std::string file = test::fileBytes(r.path).toStdString();
        const std::string lead =
            "20210040;22/03/2021;21/04/2021;CL77001;FD100001;007;CHAF;DM;Challenge f\xE9"
            "d\xE9ral de printemps;";
        EXPECT_EQ(file.substr(file.find("\r\n") + 2),
                  lead + "15,00;706100000;CHAF-A;\r\n" + lead + "20,00;706100000;CHAF-B;\r\n");
    }
    // Codes that differ only in case are one code, on both engines.
    TransferWorld w;
    const TransferResult r = oneInvoiceOfTwoCodes(w, "CHAF-A", "chaf-a", "jkv");
    EXPECT_EQ(r.lines, 1);
    EXPECT_EQ(r.amount, Money::fromCents(3500));
    const QStringList lines = QString::fromLatin1(test::fileBytes(r.path)).split("\r\n");
    ASSERT_EQ(lines.size(), 3);  // caption, the line, nothing after the last line end
    EXPECT_TRUE(lines[1].endsWith(";35,00;706100000;CHAF-A;", Qt::CaseInsensitive))
        << lines[1].toStdString();
}

TEST(AccountingTransfer, MonthChoosesWholeInvoicesByTheirDate) {
    TransferWorld w;
    // A two-digit year is one of this century.
    const TransferResult r = w.transfer(TransferLayout::National, "12/20");
    EXPECT_EQ(r.invoices, 2);
    EXPECT_EQ(test::transferMark(w.store(), "2021000013"), "O");
    EXPECT_EQ(test::transferMark(w.store(), "2021000014"), "O");
    EXPECT_EQ(test::transferMark(w.store(), "58"), "N");
    EXPECT_EQ(test::transferMark(w.store(), "2021000012"), "N");

    const ReportTotals left =
        transferSelectionTotals(w.store(), test::seasonSelection("2021"), "JKV");
    EXPECT_EQ(left.lines, 5);
    EXPECT_EQ(left.amount, Money::fromCents(54000 + 123450 + 2420 + 2310 + 4500));
    EXPECT_EQ(left.quantity, 12 + 1 + 2 + 3 + 10);
}

TEST(AccountingTransfer, GridListsTheLinesWithTheAccountsOfTheLayout) {
    TransferWorld w;
    const auto national = w.store().select(
        transferSelectionQuery(test::seasonSelection("2021"), TransferLayout::National, "JKV"));
    ASSERT_EQ(national.size(), 8u);
    EXPECT_EQ(national[2].value("t_kvarn").toString(), "706210000");
    EXPECT_EQ(national[2].value("t_jkv").toString(), "CHAF-ENG");
    w.store().exec("UPDATE strentete SET ent_niveau = 'LR06'");
    const auto rows = w.store().select(
        transferSelectionQuery(test::seasonSelection("2021"), TransferLayout::League, "LR06"));
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[0].value("c_num_facture").toString(), "00000058");
    EXPECT_EQ(rows[0].value("c_date_enreg").toString(), "04/11/2020");
    EXPECT_EQ(rows[0].value("t_kvarn").toString(), "756100000");
    EXPECT_EQ(rows[0].value("t_jkv").toString(), "LICA");
    EXPECT_EQ(rows[1].value("t_kvarn").toString(), "700000000");
}

TEST(AccountingTransfer, EachLevelTransfersWhatItIssuedAndNewInvoicesWaitForTheNext) {
    TransferWorld w;
    w.store().exec("UPDATE strentete SET ent_niveau = 'LR06' WHERE ent_fact_no = '58'");
    w.store().exec("UPDATE strentete SET ent_niveau = 'CD013' WHERE ent_fact_no = '2021000012'");
    const auto transfer = [&](TransferLayout layout, const QString& level,
                              const TransferOptions& options = {}) {
        return writeTransfer(w.store(), w.folder(), layout, level, test::seasonSelection("2021"),
                             w.today(), options);
    };
    // An invoice committed by another workstation while the file is written
    // is neither in the file nor marked, and does not stop the transfer.
    TransferOptions options;
    options.checkpoint = [&](TransferStage reached) {
        if (reached == TransferStage::FileWritten)
            test::addInvoice(w.store(), "2021000031", "F", "1FA00001", "DIV", "CD077", "03/12/2020",
                             "03/12/2020", {{"00000005", "Frais", 2, 1500}});
    };
    EXPECT_EQ(transfer(TransferLayout::National, "JKV", options).invoices, 2);
    EXPECT_EQ(test::transferMark(w.store(), "2021000013"), "O");
    EXPECT_EQ(test::transferMark(w.store(), "2021000014"), "O");
    EXPECT_EQ(test::transferMark(w.store(), "2021000031"), "N");
    EXPECT_EQ(test::transferMark(w.store(), "58"), "N");
    EXPECT_EQ(test::transferMark(w.store(), "2021000012"), "N");

    EXPECT_EQ(transfer(TransferLayout::League, "LR06").invoices, 1);
    EXPECT_EQ(test::transferMark(w.store(), "58"), "O");
    EXPECT_EQ(test::transferMark(w.store(), "2021000012"), "N");
    EXPECT_EQ(transfer(TransferLayout::League, "CD013").invoices, 1);
    EXPECT_EQ(test::transferMark(w.store(), "2021000012"), "O");
    EXPECT_EQ(refusalOf([&] { transfer(TransferLayout::League, "CD013"); }), kNothingToTransfer);
    EXPECT_EQ(transfer(TransferLayout::National, "JKV").invoices, 1);  // the one that waited
}

TEST(AccountingTransfer, ALineWithoutItsHeaderIsWrittenWithoutDueDateAndMarksNothing) {
    NationalLine line;
    line.invoiceKey = "20210077";
    line.invoiceDate = "07/10/2020";
    line.tournament = "12";
    line.nature = "LIC";
    line.title = "Licences";
    line.amount = Money::fromCents(4500);
    line.account = "756100000";
    line.analysis = "LIC";
    NationalLine other = line;
    other.dueDate = "01/11/2020";
    other.customerAccount = "CL77001";
    other.competitionIndex = "1FA00000";
    other.headerNumber = "78";
    other.tournament = "T1";
    other.title = "Licences\nde saison";
    const TransferContent c = nationalTransfer({line, other});
    EXPECT_EQ(c.bytes, QByteArray(QString(kNationalHeader).toLatin1()) +
                           "\r\n20210077;07/10/2020;00000000;;;012;LIC;;Licences;45,00;756100000;"
                           "LIC;\r\n20210077;07/10/2020;01/11/2020;CL77001;1FA00000;T1;LIC;;"
                           "Licences de saison;45,00;756100000;LIC;\r\n");
    EXPECT_EQ(c.invoices, std::vector<QString>{"78"});
}

TEST(AccountingTransfer, AFailureBeforeTheCommitLeavesNoFileAndNoMark) {
    for (const TransferStage stage : {TransferStage::FileWritten, TransferStage::Marked}) {
        TransferWorld w;
        TransferOptions options;
        options.checkpoint = [stage](TransferStage reached) {
            if (reached == stage) throw StoreError("panne simulée");
        };
        EXPECT_THROW(w.transfer(TransferLayout::National, {}, options), StoreError);
        EXPECT_TRUE(w.files().isEmpty()) << w.files().join(',').toStdString();
        EXPECT_EQ(w.marked(), 1);  // the invoice transferred before
        EXPECT_EQ(w.store().scalar("SELECT COUNT(*) FROM strtransfert").toInt(), 0);
        // The next transfer is whole.
        const TransferResult r = w.transfer(TransferLayout::National);
        EXPECT_EQ(test::fileBytes(r.path).toStdString(),
                  test::expectedFile("national_2021.csv").toStdString());
        EXPECT_EQ(w.files(), QStringList{"Transfert_20261121.csv"});
    }
}

TEST(AccountingTransfer, AFullDiskNamesTheTransferFileAndMarksNothing) {
    TransferWorld w;
    try {
        test::FileSizeLimit limit(16);
        w.transfer(TransferLayout::National);
        ADD_FAILURE() << "written on a full disk";
    } catch (const StoreError& e) {
        EXPECT_EQ(e.message(), "Disque plein : impossible d'écrire le fichier de transfert " +
                                   QDir::toNativeSeparators(
                                       QDir(w.folder()).filePath("Transfert_20261121.csv")) +
                                   ".");
    }
    EXPECT_TRUE(w.files().isEmpty()) << w.files().join(',').toStdString();
    EXPECT_EQ(w.marked(), 1);  // the invoice transferred before
}

TEST(AccountingTransfer, AStopAfterTheCommitIsFinishedByTheNextRun) {
    TransferWorld w;
    TransferOptions options;
    options.checkpoint = [](TransferStage reached) {
        if (reached == TransferStage::Committed) throw StoreError("arrêt simulé");
    };
    EXPECT_THROW(w.transfer(TransferLayout::League, {}, options), StoreError);
    // Marks are committed with their file-to-be beside its name.
    EXPECT_EQ(w.marked(), 5);
    ASSERT_EQ(w.files().size(), 1);
    EXPECT_TRUE(w.files()[0].startsWith("Transfert_1_20261121.csv.")) << w.files()[0].toStdString();
    EXPECT_TRUE(w.files()[0].endsWith(".tmp"));
    // A leftover of a run stopped before its commit is nothing.
    QFile orphan(QDir(w.folder()).filePath("Transfert_20261121.csv.dead.tmp"));
    ASSERT_TRUE(orphan.open(QIODevice::WriteOnly));
    orphan.write("partial");
    orphan.close();

    EXPECT_EQ(recoverInterruptedTransfers(w.store(), w.folder()), 1);
    EXPECT_EQ(w.files(), QStringList{"Transfert_1_20261121.csv"});
    EXPECT_EQ(test::fileBytes(QDir(w.folder()).filePath("Transfert_1_20261121.csv")),
              test::expectedFile("league_2021.csv"));
    EXPECT_EQ(w.store().scalar("SELECT tr_etat FROM strtransfert").toString(), "T");
    // The invoices of that file are not taken again.
    EXPECT_EQ(refusalOf([&] { w.transfer(TransferLayout::League); }), kNothingToTransfer);
}

TEST(AccountingTransfer, ShowingAndCancellingAFilePutsItsInvoicesBack) {
    TransferWorld w;
    const TransferResult r = w.transfer(TransferLayout::National);
    const QString byDate = transferFileOfDate(w.folder(), "21/11/2026");
    EXPECT_EQ(QFileInfo(byDate).fileName(), "Transfert_20261121.csv");
    EXPECT_EQ(refusalOf([&] { transferFileOfDate(w.folder(), "31/02/2026"); }),
              "la date : 31/02/2026 n'est pas valide");

    const TransferFileView view = showTransferFile(w.store(), byDate);
    EXPECT_EQ(view.lines, 7);
    EXPECT_EQ(view.amount, Money::fromCents(123450 + 54000 + 4500 + 4730 - 50 - 123450 + 1500));
    EXPECT_EQ(view.captions.value(0), "N° Facture");
    const auto shown = w.store().scratch().select(transferFileQuery());
    ASSERT_EQ(shown.size(), 7u);
    EXPECT_EQ(shown[0].value("x_1").toString(), "20210012");
    EXPECT_EQ(shown[0].value("x_9").toString(), "Challenge fédéral de printemps");

    // The header of one invoice has gone meanwhile: said, and the others go on.
    w.store().exec("DELETE FROM strentete WHERE ent_fact_no = '2021000014'");
    const CancelResult c = cancelTransfer(w.store(), r.path, "M. Support (01 02 03 04 05)");
    EXPECT_EQ(c.invoices, 3);
    EXPECT_EQ(c.missing, QStringList{"l'entete de la facture N° 2021000014 n'existe plus !!! "
                                     "Problème-- voir M. Support (01 02 03 04 05)"});
    for (const QString& n : {"58", "2021000012", "2021000013"})
        EXPECT_EQ(test::transferMark(w.store(), n), "N");
    EXPECT_EQ(test::transferMark(w.store(), "2021000020"), "O");  // not in that file
    // Put back, they go to the next file.
    const TransferResult again = w.transfer(TransferLayout::National);
    EXPECT_EQ(again.invoices, 3);
}

TEST(AccountingTransfer, AFileWrittenElsewhereIsCancelledByItsRebuiltNumbers) {
    TransferWorld w;
    w.store().exec("UPDATE strentete SET ent_compta = 'O' WHERE ent_fact_no = '2021000012'");
    const QString path = QDir(w.folder()).filePath("Transfert_20210401.csv");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(toWindows1252(kNationalHeader +
                             "\r\n"
                             "20210012;20/03/2021;19/04/2021;CL77001;FD100001;007;CHAF;DM;X;"
                             "45,00;706100000;CHAF;\r\n"
                             "20219999;20/03/2021;19/04/2021;CL77001;FD100001;007;CHAF;DM;X;"
                             "1,00;706100000;CHAF;\r\n"));
    file.close();
    const CancelResult c = cancelTransfer(w.store(), path, kDefaultSupportContact);
    EXPECT_EQ(c.invoices, 1);
    EXPECT_EQ(test::transferMark(w.store(), "2021000012"), "N");
    EXPECT_EQ(c.missing, QStringList{"l'entete de la facture N° 2021009999 n'existe plus !!! "
                                     "Problème-- voir l'assistance ORVE"});

    // Nothing to show: said as the program always said it.
    EXPECT_EQ(refusalOf([&] { showTransferFile(w.store(), path + ".absent"); }), kNoSuchFile);
    QFile empty(QDir(w.folder()).filePath("Transfert_20210402.csv"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.write(toWindows1252(kNationalHeader + "\r\n"));
    empty.close();
    EXPECT_EQ(refusalOf([&] { showTransferFile(w.store(), empty.fileName()); }),
              kEmptyTransferFile);
}
