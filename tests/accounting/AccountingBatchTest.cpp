#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "AccountingFixture.h"
#include "app/Startup.h"
#include "support/TestInstall.h"
#include "support/TestServer.h"

using namespace orve;

namespace {

const QStringList kToday{"ORVE_TODAY=21/11/2026"};

int batch(const QString& home, const QStringList& args, QString* out, QString* err) {
    return test::runProgram(ORVE_BATCH, QStringList{"--home", home} + args, {}, out, err, kToday);
}

}  // namespace

TEST(AccountingBatch, TransferJournalAndStatisticsFromTheShell) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    {
        auto s = inst.start();
        test::addAccountingFixture(s->store());
        test::addStatisticsFixture(s->store());
    }
    QString out, err;
    // The layout is the operator's: without one, nothing is written.
    EXPECT_EQ(batch(inst.home(), {"transfert", "--saison", "2021"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("--as LOGIN")) << err.toStdString();

    // Lines without account: said first, written only when the clerk goes on.
    EXPECT_EQ(batch(inst.home(), {"--as", "gestu", "transfert", "--saison", "2021"}, &out, &err),
              1);
    EXPECT_TRUE(err.contains("article 99999990, nature CHAF : 1 ligne(s)")) << err.toStdString();
    EXPECT_TRUE(err.contains("--oui")) << err.toStdString();
    auto session = inst.start();
    EXPECT_EQ(test::transferMark(session->store(), "2021000012"), "N");
    ASSERT_EQ(
        batch(inst.home(), {"--as", "gestu", "transfert", "--saison", "2021", "--oui"}, &out, &err),
        0)
        << err.toStdString();
    const QString file = QDir(session->dataFolder()).filePath("Transfert_20261121.csv");
    EXPECT_TRUE(out.startsWith("3 ligne(s) à transférer n'ont pas de compte KVARN"))
        << out.toStdString();
    EXPECT_TRUE(out.endsWith("le fichier de transfert a été généré : " +
                             QDir::toNativeSeparators(file) + "\n7 ligne(s), 4 facture(s)\n"))
        << out.toStdString();
    EXPECT_EQ(test::fileBytes(file), test::expectedFile("national_2021.csv"));
    EXPECT_EQ(batch(inst.home(), {"--as", "gestu", "transfert", "--saison", "2021"}, &out, &err),
              1);
    EXPECT_EQ(err, "aucune facture à transférer\n");

    ASSERT_EQ(batch(inst.home(), {"--as", "gestu", "transfert", "--annuler", file}, &out, &err), 0);
    EXPECT_EQ(out,
              "4 facture(s) repositionnée(s) pour un transfert ultérieur\ntraitement terminé\n");
    EXPECT_EQ(test::transferMark(session->store(), "2021000012"), "N");

    const QString journal = QDir(inst.home()).filePath("journal.csv");
    ASSERT_EQ(
        batch(inst.home(), {"journal", "--saison", "2021", "--mois", "10/20", "--csv", journal},
              &out, &err),
        0)
        << err.toStdString();
    EXPECT_TRUE(out.contains("(3 ligne(s))")) << out.toStdString();
    EXPECT_TRUE(out.contains("Montant facturé : 1 819,50 €"));
    EXPECT_EQ(QString::fromUtf8(test::fileBytes(journal)).count("\r\n"), 5);

    const QString stats = QDir(inst.home()).filePath("stats.csv");
    ASSERT_EQ(batch(inst.home(),
                    {"stats", "--mode", "4", "--saison", "2022", "--du", "01/09/2021", "--au",
                     "31/08/2022", "--csv", stats},
                    &out, &err),
              0)
        << err.toStdString();
    EXPECT_TRUE(out.contains("RECAPITULATIF PAR INTER REGION")) << out.toStdString();
    EXPECT_TRUE(out.contains("Montant facturé : 112,00 €")) << out.toStdString();
    EXPECT_TRUE(QString::fromUtf8(test::fileBytes(stats))
                    .contains("IR1;Cumul de la facturation;-;-;1;50,00"));
    EXPECT_EQ(batch(inst.home(), {"stats", "--mode", "9", "--csv", stats}, &out, &err), 1);
    EXPECT_TRUE(err.startsWith("Mode de statistiques inconnu")) << err.toStdString();
}

TEST(AccountingBatch, ScaleDemoIsACoherentHistory) {
    QTemporaryDir dir;
    const QString home = dir.filePath("inst");
    QStringList args{"init-demo", home, "--scale", "4000"};
    QString base;
    if (test::onServer()) {
        base = test::createDatabase();
        args << "--base" << base;
    }
    QString out, err;
    ASSERT_EQ(test::runProgram(ORVE_BATCH, args, {}, &out, &err, kToday), 0) << err.toStdString();
    EXPECT_TRUE(out.contains("historique ajouté : 10 saisons")) << out.toStdString();
    {
        auto store = app::openInstallationStore(home);
        const auto count = [&store](const char* sql) { return store->scalar(sql).toLongLong(); };
        const qint64 lines = count("SELECT COUNT(*) FROM strfacture");
        EXPECT_GE(lines, 4000);
        EXPECT_LT(lines, 4200);
        // Every invoice has its lines, and its total is theirs.
        EXPECT_EQ(count("SELECT COUNT(*) FROM strentete e WHERE e.ent_fact_lib <> "
                        "'Changement de numerotation' AND NOT EXISTS (SELECT 1 FROM strfacture f "
                        "WHERE f.f_num_facture = e.ent_fact_no)"),
                  0);
        EXPECT_EQ(
            count("SELECT COUNT(*) FROM strentete e WHERE e.ent_fact_no LIKE '20%' AND "
                  "e.ent_montant <> (SELECT SUM(f.f_montant) FROM strfacture f WHERE "
                  "f.f_num_facture = e.ent_fact_no) AND substr(e.ent_fact_no, 5, 6) >= '000100'"),
            0);
        // Each line belongs to a competition of its season; each party row to its invoice.
        EXPECT_EQ(count("SELECT COUNT(*) FROM strfacture f WHERE NOT EXISTS (SELECT 1 FROM "
                        "strcompetition c WHERE c.c_index = f.f_index_compet)"),
                  0);
        EXPECT_EQ(count("SELECT COUNT(*) FROM strcompetition c WHERE c.c_facture = 'F' AND NOT "
                        "EXISTS (SELECT 1 FROM strentete e WHERE e.ent_fact_no = c.c_num_facture "
                        "AND e.ent_c_index = c.c_index)"),
                  0);
        EXPECT_EQ(count("SELECT COUNT(DISTINCT c_saison) FROM strcompetition"), 10);
        // Competitions of every nature.
        EXPECT_EQ(count("SELECT COUNT(*) FROM strnaturec n WHERE NOT EXISTS (SELECT 1 FROM "
                        "strcompetition c WHERE c.c_nature = n.n_code)"),
                  0);
        // Credit notes cancel invoices that exist; older seasons are in accounting.
        EXPECT_GT(count("SELECT COUNT(*) FROM strentete WHERE ent_fact_type = 'A'"), 0);
        EXPECT_EQ(count("SELECT COUNT(*) FROM strentete a WHERE a.ent_fact_type = 'A' AND NOT "
                        "EXISTS (SELECT 1 FROM strentete e WHERE e.ent_fact_no = "
                        "a.ent_fact_origine)"),
                  0);
        EXPECT_GT(count("SELECT COUNT(*) FROM strentete WHERE ent_compta = 'O'"), 0);
        EXPECT_GT(count("SELECT COUNT(*) FROM strentete WHERE ent_compta = 'N'"), 0);
    }
    if (!base.isEmpty()) test::dropDatabase(base);
}
