#include <gtest/gtest.h>

#include "invoicing/CreditNotes.h"
#include "support/TestInstall.h"
#include "tools/DataCheck.h"
#include "tools/InvoiceRenumbering.h"
#include "tools/NewSeason.h"
#include "tools/ToolsSeed.h"

using namespace orve;
using namespace orve::tools;
namespace seed = orve::test::seed;

namespace {

const QString kBatch = QStringLiteral(ORVE_BATCH);

void expectClean(const DataCheckReport& report) {
    EXPECT_EQ(report.findings(), 0) << report.lines().join('\n').toStdString();
    EXPECT_EQ(report.summary(), "Vérification des données : aucune anomalie");
}

}  // namespace

TEST(DataCheck, TheDemoIsCleanAndStaysSoThroughTheSeasonTools) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const DataCheckReport report = checkData(s);
    expectClean(report);
    // Every check is listed with its count, found something or not.
    EXPECT_EQ(report.checks.size(), 16u);
    EXPECT_EQ(report.lines().first(), check::kUnknownCompetition + " : 0");

    // What the tools themselves write is no fault: a new season's
    // pseudo-competitions, a renumbering placeholder, a credit note.
    setUpSeason(s, "2028", inst.today());
    renumberInvoices(s, "2028000001", inst.today());
    invoicing::issueCreditNotes(s, {"2027000003"}, inst.today());
    expectClean(checkData(s));
}

TEST(DataCheck, FindsEachPlantedFaultWhereItBelongsAndWritesNothing) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    {
        store::Transaction tx(s);
        // A competition invoiced by 2027000050, and a second invoice on it.
        seed::competition(s, "FD900001", "2027", "FD", "F", "2027000050");
        seed::invoice(s, "2027000050", "FD900001", 1);
        seed::invoice(s, "2027000051", "FD900001", 2);
        // An invoice filed under a competition nobody knows.
        seed::invoice(s, "2027000052", "FD999999", 1);
        // A number written twice, a header with no line, lines with no header.
        seed::invoice(s, "02027000003", seed::kPseudoMisc, 0);
        seed::invoice(s, "2027000053", seed::kPseudoMisc, 0, {{"ent_fact_lib", "Sans ligne"}});
        seed::invoice(s, "2027000054", seed::kPseudoMisc, 2);
        s.exec("DELETE FROM strentete WHERE ent_fact_no = '2027000054'");
        // A stored total the lines no longer make.
        s.exec("UPDATE strentete SET ent_montant = 12345 WHERE ent_fact_no = '2027000001'");
        // A credit note of an invoice that is gone.
        seed::invoice(s, "2027000055", seed::kPseudoMisc, 1,
                      {{"ent_fact_type", "A"}, {"ent_fact_origine", "2027000099"}});
        s.exec(
            "UPDATE strfacture SET f_montant = -1000, f_qte = -1 "
            "WHERE f_num_facture = '2027000055'");
        // Invoiced rows: one whose invoice is gone, one with no number; the
        // closed master of a register competition is not one of them.
        seed::competition(s, "FD900002", "2027", "FD", "F", "2027000098");
        seed::competition(s, "FD900003", "2027", "FD", "F", "");
        seed::competition(s, "FD900004", "2027", "FD", "F", "");
        seed::competition(s, "FD900005", "2027", "FD", " ", "", "OUI", "FD900004");
        // A party row whose master is gone.
        seed::competition(s, "FD900006", "2027", "FD", " ", "", "OUI", "FD909999");
        // A club of a department that has no committee.
        s.insert("strclub",
                 {{"club_code", "CL99001"}, {"club_nom", "Club Fantôme"}, {"club_dept", "099"}});
        // A line that lost its invoiced party.
        s.exec(
            "UPDATE strfacture SET f_tiers_fact = 'XXX' WHERE f_num_facture = '2027000005' "
            "AND f_num_lig = '01'");
        // Invoiced but never printed.
        seed::competition(s, "FD900007", "2027", "FD", "F", "2027000050", "NON");
        // An invoice whose lines make a credit.
        seed::invoice(s, "2027000056", seed::kPseudoMisc, 1);
        s.exec("UPDATE strfacture SET f_montant = -500 WHERE f_num_facture = '2027000056'");
        tx.commit();
    }
    const QStringList before = seed::dump(s);
    const DataCheckReport report = checkData(s);
    EXPECT_EQ(seed::dump(s), before);

    auto expect = [&](const QString& title, const QStringList& findings) {
        EXPECT_EQ(report.findingsOf(title), findings) << title.toStdString();
    };
    expect(check::kUnknownCompetition,
           {"facture 2027000052 : 1 ligne sur la compétition FD999999"});
    expect(check::kOtherInvoice, {"facture 2027000051 : 2 lignes sur la compétition FD900001, qui "
                                  "porte la facture 2027000050"});
    expect(check::kDuplicateNumbers, {"N° 2027000003 : 02027000003, 2027000003"});
    expect(check::kHeadersWithoutLines, {"facture 2027000053 (Sans ligne)"});
    expect(check::kLinesWithoutHeader, {"facture 2027000054 : 2 lignes"});
    expect(check::kTotals, {"facture 2027000001 : total 123,45 €, lignes 800,00 €"});
    expect(check::kCreditNotes, {"avoir 2027000055 : facture 2027000099 introuvable"});
    expect(check::kInvoicedWithoutInvoice, {"compétition FD900002 : facture 2027000098 introuvable",
                                            "compétition FD900003 : aucun N° de facture"});
    expect(check::kOrphanPartyRows,
           {"compétition FD900006 : compétition principale FD909999 introuvable"});
    expect(check::kClubDepartments, {"club CL99001 (Club Fantôme) : département 099"});
    expect(check::kLinesOutOfStep, {"facture 2027000005 : 1 ligne"});
    expect(check::kWithoutDocument, {"compétition FD900007 : facture 2027000050"});
    expect(check::kHeadersUnknownCompetition, {"facture 2027000052 : compétition FD999999"});
    expect(check::kTypes, {"facture 2027000056 : type F, total -5,00 €"});
    EXPECT_EQ(report.findings(), 15);
    EXPECT_EQ(report.summary(), "Vérification des données : 15 anomalies");
    EXPECT_TRUE(report.lines().contains(check::kInvoicedWithoutInvoice + " : 2"));
    EXPECT_TRUE(report.lines().contains("    compétition FD900003 : aucun N° de facture"));

    // From a shell: the report, and an exit status a script can test.
    QString out, err;
    EXPECT_EQ(test::runProgram(kBatch, {"--home", inst.home(), "verifier"}, "", &out, &err,
                               {"ORVE_TODAY=21/11/2026"}),
              1)
        << err.toStdString();
    // The planted invoices say they are printed, and none has its document.
    EXPECT_TRUE(out.startsWith("Vérification des données : 22 anomalies\n")) << out.toStdString();
    EXPECT_TRUE(out.contains(check::kPrintedWithoutFile +
                             " : 7\n    facture 02027000003 (Bowling Club Phocéen)\n"))
        << out.toStdString();
    EXPECT_TRUE(out.contains("    club CL99001 (Club Fantôme) : département 099\n"));
}
