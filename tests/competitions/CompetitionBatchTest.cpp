#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QThread>

#include "competitions/CompetitionRegister.h"
#include "invoicing/InvoiceRecords.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::competitions;

namespace {

const QStringList kToday{"ORVE_TODAY=21/11/2026"};

int batch(const test::TestInstall& inst, const QStringList& args, QString* out, QString* err) {
    return test::runProgram(ORVE_BATCH, QStringList{"--home", inst.home()} + args, {}, out, err,
                            kToday);
}

// A league with `count` more clubs, and a competition of theirs with counts
// typed on every row.
QString bigCompetition(store::Store& s, int count) {
    {
        store::Transaction tx(s);
        for (int i = 0; i < count; ++i) {
            const QString code = QStringLiteral("CL96%1").arg(i, 3, 10, QChar('0'));
            s.insert("strclub", {{"club_code", code},
                                 {"club_nom", QStringLiteral("Club d'essai %1").arg(i)},
                                 {"club_region", "LR06"},
                                 {"club_district", "D1"},
                                 {"club_dept", "096"},
                                 {"club_president", "Président"},
                                 {"club_ad1", "1 rue du Stade"},
                                 {"club_cp", "96000"},
                                 {"club_ville", "Essai"}});
        }
        tx.commit();
    }
    CompetitionRecord r;
    r.season = "2027";
    r.title = "Grand prix des clubs";
    r.composition = "3";
    r.nature = "CDCNH";
    r.eliminatoryLines = "6";
    r.finalLines = "3";
    r.date = "01/05/2027";
    const QString index = saveCompetition(s, {"ligue06", "LR06", "D1"}, r).index;
    s.exec(
        "UPDATE strcompetition SET c_nb_equipe = 2, c_nb_equipe_eliminatoire = 1, "
        "c_nb_equipe_finale = 1 WHERE index_reference = ?",
        {index});
    return index;
}

int rowsIn(const store::Store& s, const QString& index, const QString& states) {
    QStringList marks;
    store::Params params{index};
    for (const QChar c : states) {
        marks << "?";
        params.push_back(QString(c));
    }
    return s
        .scalar("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ? AND c_facture IN (" +
                    marks.join(',') + ")",
                params)
        .toInt();
}

bool wholePdf(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return false;
    const QByteArray bytes = f.readAll();
    return bytes.startsWith("%PDF-") && bytes.trimmed().endsWith("%%EOF");
}

// The invoices filed under a competition's rows.
const char* const kInvoicesOfItsRows =
    "SELECT COUNT(*) FROM strentete WHERE ent_c_index IN (SELECT c_index FROM strcompetition "
    "WHERE index_reference = ?)";

// Lines and total of a stored invoice: three lines summing to the header's amount.
void checkWhole(const store::Store& s, const store::Row& header) {
    const QString number = header.value("ent_fact_no").toString();
    const auto lines =
        s.select("SELECT COUNT(*), SUM(f_montant) FROM strfacture WHERE f_num_facture = ?",
                 {invoicing::paddedInvoiceNumber(number)});
    EXPECT_EQ(lines[0].value(0).toInt(), 3) << number.toStdString();
    EXPECT_EQ(lines[0].value(1).toLongLong(), header.value("ent_montant").toLongLong())
        << number.toStdString();
}

// Every row not invoiced (" " or "C") has no number; every row invoiced
// ("A" or "F") has exactly its one whole invoice, and "F" its document. A
// kill between an invoice's commit and its row's may leave a whole invoice
// that no row points at yet (given back to its row by the next opening or
// run): at most one per row. No number twice; no invoice marked printed
// without its whole document. Once `settled`, every row is "F".
void checkInvariant(const store::Store& s, const QString& index, const QString& folder,
                    bool settled = false) {
    int invoiceCount = 0;
    for (const auto& r : s.select(partyRowsQuery(index))) {
        const QString key = r.value("c_index").toString();
        const QString state = r.value("c_facture").toString().trimmed();
        const QString number = r.value("c_num_facture").toString().trimmed();
        const auto invoices =
            s.select("SELECT ent_fact_no, ent_montant FROM strentete WHERE ent_c_index = ?", {key});
        ASSERT_LE(invoices.size(), 1u) << key.toStdString();
        invoiceCount += static_cast<int>(invoices.size());
        for (const auto& h : invoices) checkWhole(s, h);
        if (state.isEmpty() || state == "C") {
            EXPECT_TRUE(number.isEmpty()) << key.toStdString();
            EXPECT_FALSE(settled) << key.toStdString();
            continue;
        }
        ASSERT_TRUE(state == "A" || state == "F")
            << key.toStdString() << " " << state.toStdString();
        EXPECT_FALSE(settled && state == "A") << key.toStdString();
        ASSERT_EQ(invoices.size(), 1u) << key.toStdString();
        EXPECT_EQ(invoices[0].value(0).toString(), number);
        if (state == "F") {
            const QString code = r.value("c_nom_organisateur").toString().left(7);
            EXPECT_TRUE(wholePdf(QDir(folder).filePath(code + "_FN_" + number + ".pdf")))
                << number.toStdString();
        }
    }
    // No invoice of the competition but those filed under its rows.
    EXPECT_EQ(s.scalar(kInvoicesOfItsRows, {index}).toInt(), invoiceCount);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) - COUNT(DISTINCT ent_fact_no) FROM strentete").toInt(), 0);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) - COUNT(DISTINCT c_num_facture) FROM strcompetition "
                       "WHERE index_reference = ? AND c_facture IN ('A', 'F')",
                       {index})
                  .toInt(),
              0);
    for (const auto& h : s.select("SELECT ent_fact_no, ent_tiers_fact FROM strentete WHERE "
                                  "ent_c_index LIKE 'FD7%' AND ent_fact_edt = 'O'"))
        EXPECT_TRUE(wholePdf(QDir(folder).filePath(h.value(1).toString().trimmed() + "_FN_" +
                                                   h.value(0).toString() + ".pdf")))
            << "printed without its document: " << h.value(0).toString().toStdString();
}

// Starts an invoicing run of `index` as ligue06.
void startRun(QProcess& p, const test::TestInstall& inst, const QString& index) {
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("ORVE_TODAY", "21/11/2026");
    p.setProcessEnvironment(env);
    p.start(ORVE_BATCH, {"--home", inst.home(), "--as", "ligue06", "competition", "invoice", index,
                         "--engagement", "10", "--ligne", "2,50"});
}

// Starts an invoicing run and kills it once `ready` says so.
void killWhen(const test::TestInstall& inst, const QString& index,
              const std::function<bool()>& ready) {
    QProcess p;
    startRun(p, inst, index);
    ASSERT_TRUE(p.waitForStarted());
    QElapsedTimer t;
    t.start();
    while (!ready() && p.state() == QProcess::Running && t.elapsed() < 120000) QThread::msleep(5);
    ASSERT_EQ(p.state(), QProcess::Running)
        << "the run ended before it could be killed: " << p.readAllStandardError().constData();
    p.kill();  // SIGKILL: no handler, no clean-up
    p.waitForFinished();
}

}  // namespace

TEST(CompetitionBatch, CommandsCalculateInvoiceAndList) {
    test::TestInstall inst;
    QString out, err;
    EXPECT_EQ(batch(inst, {"--as", "ligue06", "competition", "list"}, &out, &err), 0)
        << qPrintable(err);
    EXPECT_TRUE(out.contains("FD700001  CDCNH  14/03/2027  Championnat régional quadrettes  [G]"))
        << qPrintable(out);
    EXPECT_TRUE(out.contains("8 compétition(s) de la saison 2027")) << qPrintable(out);
    EXPECT_EQ(batch(inst, {"competition", "list", "--saison", "2019"}, &out, &err), 0);
    EXPECT_TRUE(out.contains("0 compétition(s) de la saison 2019")) << qPrintable(out);

    EXPECT_EQ(batch(inst, {"--as", "ligue06", "competition", "invoice", "FD700001"}, &out, &err),
              1);
    EXPECT_TRUE(err.contains("Aucune facture à émettre.")) << qPrintable(err);
    EXPECT_EQ(batch(inst, {"--as", "ligue06", "competition", "calculate", "FD700001"}, &out, &err),
              0)
        << qPrintable(err);
    EXPECT_TRUE(out.contains("4 ligne(s) à facturer pour la compétition FD700001"))
        << qPrintable(out);
    for (const char* bad : {"0", "-5", "gratuit"}) {
        EXPECT_EQ(batch(inst,
                        {"--as", "ligue06", "competition", "invoice", "FD700001", "--engagement",
                         bad, "--ligne", "2"},
                        &out, &err),
                  1);
        EXPECT_TRUE(err.contains("Veuillez saisir un tarif")) << qPrintable(err);
    }
    EXPECT_EQ(inst.start()->store().scalar("SELECT COUNT(*) FROM strentete").toInt(), 12);
    // Without a price the season's tariff stands, as the window presets it.
    EXPECT_EQ(batch(inst, {"--as", "ligue06", "competition", "invoice", "FD700001", "--ligne", "2"},
                    &out, &err),
              0)
        << qPrintable(err);
    for (const char* n : {"2027000012", "2027000013", "2027000014", "2027000015"})
        EXPECT_TRUE(out.contains(QStringLiteral("facture N° ") + n)) << qPrintable(out);
    EXPECT_TRUE(out.contains("CL13001_FN_2027000013.pdf")) << qPrintable(out);
    // 3 teams of 4 at 18.00 per player, 48 and 12 lines at 2.00.
    EXPECT_EQ(inst.start()
                  ->store()
                  .scalar("SELECT ent_montant FROM strentete WHERE ent_fact_no = '2027000013'")
                  .toLongLong(),
              33600);
}

TEST(CompetitionBatch, AKilledRunIsFinishedNeverBilledTwice) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QString index = bigCompetition(s, 600);
    const QString folder = session->invoiceFolder();
    QString out, err;
    ASSERT_EQ(batch(inst, {"--as", "ligue06", "competition", "calculate", index}, &out, &err), 0)
        << qPrintable(err);
    ASSERT_EQ(rowsIn(s, index, "C"), 605);

    // Killed while documents are being made: rows "A" wait for theirs.
    killWhen(inst, index, [&] { return rowsIn(s, index, "F") >= 40; });
    checkInvariant(s, index, folder);
    // The kill may fall between an invoice's commit and its row's: that
    // invoice counts as written, its row is given it back below.
    const int afterFirst = s.scalar(kInvoicesOfItsRows, {index}).toInt();
    EXPECT_GE(rowsIn(s, index, "AF"), 40);
    EXPECT_LE(afterFirst - rowsIn(s, index, "AF"), 1);
    EXPECT_LT(afterFirst, 605);

    // What a clerk does next: calculate again. The rows with an invoice are
    // finished, not calculated again; the others are.
    ASSERT_EQ(batch(inst, {"--as", "ligue06", "competition", "calculate", index}, &out, &err), 0)
        << qPrintable(err);
    EXPECT_EQ(rowsIn(s, index, "A"), 0);
    EXPECT_EQ(rowsIn(s, index, "F"), afterFirst);
    EXPECT_EQ(rowsIn(s, index, "C"), 605 - afterFirst);
    checkInvariant(s, index, folder);

    // Killed again as soon as it writes.
    killWhen(inst, index, [&] { return rowsIn(s, index, "AF") > afterFirst + 3; });
    checkInvariant(s, index, folder);

    // The next run finishes what the kill left, then invoices the rest.
    ASSERT_EQ(batch(inst,
                    {"--as", "ligue06", "competition", "invoice", index, "--engagement", "10",
                     "--ligne", "2,50"},
                    &out, &err),
              0)
        << qPrintable(err);
    checkInvariant(s, index, folder, true);
    EXPECT_EQ(rowsIn(s, index, "F"), 605);
    EXPECT_EQ(competitionOpenness(s, index), Openness::Closed);
}

TEST(CompetitionBatch, AnotherWorkstationsCalculationLeavesARunsRowsAlone) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QString index = bigCompetition(s, 300);
    QString out, err;
    ASSERT_EQ(batch(inst, {"--as", "ligue06", "competition", "calculate", index}, &out, &err), 0)
        << qPrintable(err);
    ASSERT_EQ(rowsIn(s, index, "C"), 305);

    QProcess run;
    startRun(run, inst, index);
    ASSERT_TRUE(run.waitForStarted());
    // Clerk B calculates another competition, over and over, while A's run
    // goes on (from its first invoice: before it starts, the rows are no
    // run's, and a calculation anywhere sends them back, as it always did).
    while (rowsIn(s, index, "AF") == 0 && !run.waitForFinished(5)) {
    }
    int calculations = 0;
    while (!run.waitForFinished(10)) {
        ASSERT_EQ(
            batch(inst, {"--as", "ligue06", "competition", "calculate", "FD700001"}, &out, &err), 0)
            << qPrintable(err);
        ++calculations;
    }
    const QString said = QString::fromUtf8(run.readAllStandardOutput());
    ASSERT_EQ(run.exitCode(), 0) << run.readAllStandardError().constData();
    EXPECT_GE(calculations, 1);
    EXPECT_TRUE(said.contains("305 facture(s) générée(s)")) << qPrintable(said.right(400));
    EXPECT_EQ(rowsIn(s, index, "F"), 305);
    checkInvariant(s, index, session->invoiceFolder(), true);
}
