#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "app/MenuTree.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolsSeed.h"

using namespace orve;
using namespace orve::tools;
namespace seed = orve::test::seed;

namespace {

struct ToolRun {
    Changes counted;
    ToolOutcome outcome;
    seed::Diff diff;
};

ToolRun runNumber(app::Session& session, int number) {
    const MaintenanceTool* tool = toolByNumber(number);
    EXPECT_NE(tool, nullptr);
    ToolContext context = toolContext(session);
    ToolRun r;
    if (tool->count) r.counted = tool->count(context);
    const QStringList before = seed::dump(session.store());
    r.outcome = runTool(*tool, context);
    r.diff = seed::diff(before, seed::dump(session.store()));
    return r;
}

QString backupLine(const ToolRun& r) {
    return QStringLiteral("\nDonnées sauvegardées avant l'outil dans : ") +
           QDir::toNativeSeparators(r.outcome.backupFolder);
}

QString in(const QStringList& values) {
    QStringList quoted;
    for (const QString& v : values) quoted << "'" + v + "'";
    return "(" + quoted.join(",") + ")";
}

QSet<QString> invoiceKeys(const store::Store& s, const QStringList& numbers) {
    QStringList padded;
    for (const QString& n : numbers) padded << invoicing::paddedInvoiceNumber(n);
    return seed::keys(s, "strentete", "ent_fact_no IN " + in(numbers)) +
           seed::keys(s, "strfacture", "f_num_facture IN " + in(padded));
}

QSet<QString> competitionKeys(const store::Store& s, const QStringList& indexes) {
    return seed::keys(s, "strcompetition", "c_index IN " + in(indexes));
}

// The invoice columns of a competition after a reset, as one text.
QString invoiceColumns(const store::Store& s, const QString& index) {
    const auto r = s.selectOne(
        "SELECT c_facture, c_num_facture, c_date_facture, c_tri_facture, c_edt, c_edt_fact, "
        "c_envoi_mail FROM strcompetition WHERE c_index = ?",
        {index});
    if (!r) return "absente";
    QStringList v;
    for (int i = 0; i < r->count(); ++i) v << r->value(i).toString();
    return v.join('|');
}
const QString kNotInvoiced = " | |__/__/____| | |NON|N";

// The backup made first holds what the tool then removed.
int headersInBackup(const QString& folder, const QString& number) {
    auto copy = store::Store::open(folder);
    return copy->scalar("SELECT COUNT(*) FROM strentete WHERE ent_fact_no = ?", {number}).toInt();
}

}  // namespace

TEST(MaintenanceTools, FixedInvoiceDeletionsTakeTheirTargetsOnlyAfterABackup) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    seed::legacyData(s, session->invoiceFolder());

    const auto expected121 = invoiceKeys(s, kInvoices121);
    ToolRun r = runNumber(*session, 8);
    EXPECT_EQ(r.counted.records(), 7);
    EXPECT_EQ(r.outcome.changes.records(), 7);
    EXPECT_EQ(r.diff.removed, expected121);
    EXPECT_TRUE(r.diff.added.isEmpty());
    EXPECT_EQ(r.outcome.message,
              "SUPP 121/22/24 terminé : 3 factures effacées (4 lignes)" + backupLine(r));
    EXPECT_TRUE(r.outcome.backupFolder.startsWith(
        QDir(inst.home()).filePath("sauvegardes/avant-outil-20261121-")));
    EXPECT_EQ(headersInBackup(r.outcome.backupFolder, "2014000121"), 1);
    const QString firstBackup = r.outcome.backupFolder;
    // Nothing left to do: said without asking.
    const ToolContext context = toolContext(*session);
    const ToolStep again = prepareTool(*toolByNumber(8), context);
    EXPECT_EQ(again.next, ToolStep::Next::NothingToDo);
    EXPECT_EQ(again.text, "Aucune des factures 2014000121, 2014000122, 2014000124 n'existe");

    // 2014000017 does not exist; the others go, and 00021810 is invoiceable again.
    const auto expected123 = invoiceKeys(s, kInvoices123);
    const auto competition123 = competitionKeys(s, {"00021810"});
    r = runNumber(*session, 10);
    EXPECT_EQ(r.counted.records(), 3 + 4 + 1);
    EXPECT_EQ(r.diff.removed, expected123 + competition123);
    EXPECT_EQ(r.diff.added, competition123);
    EXPECT_EQ(invoiceColumns(s, "00021810"), kNotInvoiced);
    EXPECT_EQ(r.outcome.message,
              "SUP fact 140/141/123/17 terminé : 3 factures effacées (4 lignes), "
              "1 compétition remise à facturer" +
                  backupLine(r));
    // Two backups in the same second do not share a folder.
    EXPECT_NE(r.outcome.backupFolder, firstBackup);
    EXPECT_TRUE(QFileInfo(r.outcome.backupFolder + "/bow_jkv.db").isFile());

    const auto expected260 = invoiceKeys(s, kInvoices260);
    const auto competition260 = competitionKeys(s, {"00022625"});
    r = runNumber(*session, 12);
    EXPECT_EQ(r.counted.records(), 3);
    EXPECT_EQ(r.diff.removed, expected260 + competition260);
    EXPECT_EQ(r.diff.added, competition260);
    EXPECT_EQ(invoiceColumns(s, "00022625"), kNotInvoiced);

    // Only the stray line goes: its invoice and the invoice's other line stay.
    const auto stray = seed::keys(s, "strfacture", "f_index_compet = '00024967'");
    ASSERT_EQ(stray.size(), 1);
    r = runNumber(*session, 14);
    EXPECT_EQ(r.counted.records(), 1);
    EXPECT_EQ(r.diff.removed, stray);
    EXPECT_TRUE(r.diff.added.isEmpty());
    EXPECT_EQ(
        s.scalar("SELECT COUNT(*) FROM strfacture WHERE f_num_facture = '2014000125'").toInt(), 1);
    EXPECT_EQ(r.outcome.message, "1 ligne de la compétition 00024967 effacée" + backupLine(r));
}

TEST(MaintenanceTools, CompetitionResetsDeleteTheirInvoicesAndDocuments) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QString documents = session->invoiceFolder();
    seed::legacyData(s, documents);

    // Invoiced without a document: 00020002 and 00023000, with their invoices.
    const auto unprinted = competitionKeys(s, {"00020002", "00023000"});
    const auto unprintedInvoices = invoiceKeys(s, {"2014000121", "2015000001"});
    ToolRun r = runNumber(*session, 13);
    EXPECT_EQ(r.counted.records(), 2 + 2 + 3);
    EXPECT_EQ(r.diff.removed, unprinted + unprintedInvoices);
    EXPECT_EQ(r.diff.added, unprinted);
    EXPECT_EQ(invoiceColumns(s, "00020002"), kNotInvoiced);
    EXPECT_EQ(invoiceColumns(s, "00023000"), kNotInvoiced);
    EXPECT_EQ(r.outcome.message,
              "raz des factures non générées en PDF terminée : 2 compétitions remises à "
              "facturer, 2 factures effacées (3 lignes)" +
                  backupLine(r));
    EXPECT_EQ(prepareTool(*toolByNumber(13), toolContext(*session)).text,
              "Aucune compétition à effacer");

    // Mérignac: the competition only; its invoice stays.
    const auto merignac = competitionKeys(s, {"00019746"});
    r = runNumber(*session, 6);
    EXPECT_EQ(r.counted.records(), 1);
    EXPECT_EQ(r.diff.touched(), merignac);
    EXPECT_EQ(invoiceColumns(s, "00019746"), kNotInvoiced);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete WHERE ent_fact_no = '2013000010'").toInt(),
              1);
    EXPECT_EQ(r.outcome.message, "effacement des factures terminé" + backupLine(r));

    // 2013: the one still invoiced loses its invoice; the 2013 documents leave
    // the invoice folder for the backup, whatever the case of their names.
    const auto league = competitionKeys(s, {"00019800"});
    const auto leagueInvoice = invoiceKeys(s, {"2013000011"});
    r = runNumber(*session, 4);
    EXPECT_EQ(r.counted.records(), 3);
    EXPECT_EQ(r.counted.documents, 2);
    EXPECT_EQ(r.diff.removed, league + leagueInvoice);
    EXPECT_EQ(r.diff.added, league);
    EXPECT_EQ(QDir(documents).entryList(QDir::Files),
              (QStringList{"CL13001_FN_2013000010.pdf", "Facture_2014_0001.pdf"}));
    EXPECT_EQ(QDir(r.outcome.backupFolder + "/factures").entryList(QDir::Files),
              (QStringList{"Facture_2013_0001.pdf", "FACTURE_2013_0002.PDF"}));
    EXPECT_EQ(r.outcome.message,
              "raz des factures 2013 terminée : 1 compétition remise à facturer, 1 facture "
              "effacée (1 ligne), 2 documents PDF retirés" +
                  backupLine(r));

    // Season 2014 goes whole, reset rows included; nothing of 2013 or 2015.
    const auto season2014 = seed::keys(s, "strcompetition", "c_saison = '2014'");
    ASSERT_EQ(season2014.size(), 4);
    r = runNumber(*session, 2);
    EXPECT_EQ(r.diff.removed, season2014);
    EXPECT_TRUE(r.diff.added.isEmpty());
    EXPECT_EQ(r.outcome.message, "competitions 2014 effacées" + backupLine(r));
    EXPECT_EQ(prepareTool(*toolByNumber(2), toolContext(*session)).text,
              "Aucune compétition en 2014");
}

TEST(MaintenanceTools, RepairsChangeWhatDiffersAndOnlyDestructiveOnesBackUp) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    seed::legacyData(s, session->invoiceFolder());
    const QString backups = QDir(inst.home()).filePath("sauvegardes");

    // The line that lost its party takes its header's again.
    const auto strayParty =
        seed::keys(s, "strfacture", "f_num_facture = '2014000125' AND f_num_lig = '01'");
    ToolRun r = runNumber(*session, 1);
    EXPECT_EQ(r.counted.records(), 1);
    EXPECT_EQ(r.diff.touched(), strayParty);
    EXPECT_EQ(s.scalar("SELECT f_tiers_fact FROM strfacture WHERE f_num_facture = '2014000125' "
                       "AND f_num_lig = '01'")
                  .toString(),
              "CL13001");
    EXPECT_EQ(r.outcome.message, "maj lignes factures terminée");
    EXPECT_EQ(countLinesToAlign(s).records(), 0);

    const auto mailed = competitionKeys(s, {"00023001"});
    r = runNumber(*session, 11);
    EXPECT_EQ(r.diff.touched(), mailed);
    EXPECT_EQ(
        s.scalar("SELECT c_envoi_mail FROM strcompetition WHERE c_index = '00023001'").toString(),
        "O");
    EXPECT_EQ(r.outcome.message, "traitement terminé");

    const auto leagues2013 = competitionKeys(s, {"00019800", "00019802"});
    r = runNumber(*session, 5);
    EXPECT_EQ(r.diff.touched(), leagues2013);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strcompetition WHERE c_nature = 'LIA'").toInt(), 2);
    EXPECT_EQ(r.outcome.message, "traitement 2013 : si type=LI, nature=LIA  --- terminé");

    r = runNumber(*session, 3);
    EXPECT_EQ(r.diff.added, seed::keys(s, "strdept", "de_no = '098'"));
    EXPECT_TRUE(r.diff.removed.isEmpty());
    EXPECT_EQ(s.scalar("SELECT de_lib || '|' || de_cp || '|' || de_facturation FROM strdept "
                       "WHERE de_no = '098'")
                  .toString(),
              "MONACO|98000|LR21");
    EXPECT_EQ(r.outcome.message, "dept 098 créé");
    const ToolStep again = prepareTool(*toolByNumber(3), toolContext(*session));
    EXPECT_EQ(again.next, ToolStep::Next::NothingToDo);
    EXPECT_EQ(again.text, "dept 098 est déjà créé");
    // None of these is destructive: no backup was made.
    EXPECT_FALSE(QFileInfo::exists(backups));

    const auto licensees = seed::keys(s, "strlicence", "1 = 1");
    ASSERT_EQ(licensees.size(), 16);
    r = runNumber(*session, 7);
    EXPECT_EQ(r.diff.removed, licensees);
    EXPECT_EQ(r.outcome.message, "effacement des licences terminé" + backupLine(r));
    EXPECT_TRUE(QFileInfo(r.outcome.backupFolder + "/bow_tiers.db").isFile());

    // Every header of the challenge counts, its title in any case and
    // whatever its mark; only those not yet waiting change.
    const auto challenge = seed::keys(s, "strentete", "ent_fact_no IN ('2014000130','2014000131')");
    r = runNumber(*session, 16);
    EXPECT_EQ(r.counted.records(), 3);
    EXPECT_EQ(r.diff.touched(), challenge);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete WHERE ent_compta = 'N' AND ent_fact_no "
                       "IN ('2014000130','2014000131','2014000132')")
                  .toInt(),
              3);
    EXPECT_EQ(r.outcome.message,
              "il y a : 3 factures CHAF à retransférer\nmaj terminée" + backupLine(r));
}

TEST(MaintenanceTools, TheTwoChecksReportAndWriteNothing) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    seed::legacyData(s, session->invoiceFolder());

    ToolRun r = runNumber(*session, 9);
    // Lines filed under a pseudo-competition are reported too: it carries no
    // number. The competitions' own lines are reported when they stray.
    QStringList strays, pseudo;
    for (const QString& line : r.outcome.report)
        (line.endsWith(" au lieu de ") ? pseudo : strays) << line;
    EXPECT_EQ(strays, (QStringList{"ligne mal affectée : 2014000122 au lieu de 2014000121",
                                   "index inconnu : 00024967 (facture 2014000125, ligne 02)",
                                   "ligne mal affectée : 2014000140 au lieu de 2014000123",
                                   "ligne mal affectée : 2014000141 au lieu de 2014000123"}));
    EXPECT_EQ(pseudo.size(),
              s.scalar("SELECT COUNT(*) FROM strfacture WHERE f_index_compet IN (SELECT c_index "
                       "FROM strcompetition WHERE c_facture = 'X') AND f_index_compet <> "
                       "'00024967'")
                  .toInt());
    EXPECT_TRUE(pseudo.contains("ligne mal affectée : 2027000001 au lieu de "));
    EXPECT_EQ(r.outcome.message, "traitement terminé");
    EXPECT_TRUE(r.diff.touched().isEmpty());

    r = runNumber(*session, 15);
    EXPECT_EQ(r.outcome.report, QStringList{"doublon 2014000150"});
    EXPECT_EQ(r.outcome.message, "doublon terminé");
    EXPECT_TRUE(r.diff.touched().isEmpty());
    EXPECT_TRUE(r.outcome.backupFolder.isEmpty());
}

TEST(MaintenanceTools, EveryToolEntryOfTheMenuHasItsTool) {
    const QSet<int> destructive{2, 4, 6, 7, 8, 10, 12, 13, 14, 16};
    int tools = 0;
    for (const auto& e : app::menuTree()) {
        if (!e.name.startsWith("mnu_outils_") || e.name == "mnu_outils_verif") continue;
        const MaintenanceTool* t = toolByEntry(e.name);
        ASSERT_NE(t, nullptr) << e.name.toStdString();
        ++tools;
        EXPECT_EQ(t->caption, e.caption);
        EXPECT_EQ(t->kind == MaintenanceTool::Kind::Destructive, destructive.contains(t->number))
            << e.name.toStdString();
        // Whatever deletes or resets says what, before, with a count.
        if (t->kind == MaintenanceTool::Kind::Destructive) {
            EXPECT_FALSE(t->action.isEmpty());
            EXPECT_FALSE(t->nothingToDo.isEmpty());
            EXPECT_TRUE(static_cast<bool>(t->count));
        }
    }
    EXPECT_EQ(tools, 16);
}
