#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <functional>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/CompetitionRegister.h"
#include "invoicing/CreditNotes.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"
#include "tools/DataCheck.h"

using namespace orve;
using namespace orve::competitions;

namespace {

const reference::Viewer kLeague06{"ligue06", "LR06", "D1"};
const reference::Viewer kNational{"gestu", "JKV", "D1"};

Money euros(const char* text) { return *Money::parse(QString::fromLatin1(text)); }

// "article|label|quantity|unit price|amount" per line, prices in cents.
QStringList describe(const std::vector<invoicing::InvoiceLine>& lines) {
    QStringList out;
    for (const auto& l : lines)
        out << QStringLiteral("%1|%2|%3|%4|%5")
                   .arg(l.article, l.text)
                   .arg(l.quantity)
                   .arg(l.unitPrice.cents())
                   .arg(l.amount().cents());
    return out;
}

QStringList storedLines(const store::Store& s, const QString& number) {
    QStringList out;
    for (const auto& r :
         s.select("SELECT f_num_lig, f_article, f_libelle, f_qte, f_pu, f_montant, f_nature, "
                  "f_index_compet, f_tiers_fact, f_date_fact FROM strfacture WHERE "
                  "f_num_facture = ? ORDER BY f_num_lig",
                  {invoicing::paddedInvoiceNumber(number)})) {
        QStringList fields;
        for (int i = 0; i < r.count(); ++i) fields << r.value(i).toString();
        out << fields.join('|');
    }
    return out;
}

QString header(const store::Store& s, const QString& number, const char* column) {
    return s
        .scalar(QStringLiteral("SELECT %1 FROM strentete WHERE ent_fact_no = ?")
                    .arg(QLatin1String(column)),
                {number})
        .toString();
}

QString rowValue(const store::Store& s, const QString& index, const char* column) {
    return s
        .scalar(QStringLiteral("SELECT %1 FROM strcompetition WHERE c_index = ?")
                    .arg(QLatin1String(column)),
                {index})
        .toString();
}

QString rowOf(const store::Store& s, const QString& index, const QString& party) {
    return s
        .scalar(QStringLiteral("SELECT c_index FROM strcompetition WHERE index_reference = ? AND "
                               "c_nom_organisateur LIKE ?"),
                {index, party + QStringLiteral(" - %")})
        .toString();
}

std::string refusal(const std::function<void()>& f) {
    try {
        f();
    } catch (const Refusal& r) {
        return r.message().toStdString();
    }
    return "(no refusal)";
}

}  // namespace

TEST(CompetitionInvoicing, LinesOfEachCase) {
    const InvoicingPrices prices{euros("10.00"), euros("2.50")};
    // A club: two teams of four, entries billed at 10.00 per player.
    EXPECT_EQ(describe(competitionInvoiceLines({2, 0, 0, 0, 0}, "CDCNH", 4, true, false, false,
                                               "Coupe de Provence", prices)),
              QStringList{"99999991|Frais Engagement Coupe de Provence|2|4000|8000"});
    // Lines of individuals: 12 players of the eliminatory rounds, 6 lines each.
    EXPECT_EQ(describe(competitionInvoiceLines({0, 12, 3, 6, 2}, "CDCNH", 1, false, true, false,
                                               "Coupe", prices)),
              QStringList({"99999990|Lignage Eliminatoires (12 joueurs)|72|250|18000",
                           "99999990|Lignage Finale (3 joueurs)|6|250|1500"}));
    // Teams of two: the labels count teams.
    EXPECT_EQ(describe(competitionInvoiceLines({1, 2, 0, 6, 2}, "CDCNH", 2, true, true, false,
                                               "Coupe", prices)),
              QStringList({"99999991|Frais Engagement Coupe|1|2000|2000",
                           "99999990|Lignage Eliminatoires (2 équipes)|24|250|6000"}));
    // National "CHAF": the fixed prices replace the confirmed one, and no
    // entry-fee line follows.
    EXPECT_EQ(describe(competitionInvoiceLines({10, 4, 2, 0, 0}, "CHAF", 1, true, false, true,
                                               "Challenge", prices)),
              QStringList(
                  {"99999991|Frais Engagement : Equipe non qualifiée phase district|10|1210|12100",
                   "99999991|Frais Engagement : Equipe non qualifiée phase régionale|4|770|3080",
                   "99999991|Frais Engagement : Equipe qualifiée phase régionale|2|330|660"}));
    // National "DBHON", lines billed as well.
    EXPECT_EQ(
        describe(competitionInvoiceLines({4, 3, 1, 2, 1}, "dbhon", 2, true, true, true,
                                         "Doublettes", prices)),
        QStringList({"99999991|Frais Engagement : Equipe Qualifiée phase régionale|3|1540|4620",
                     "99999991|Frais Engagement : Equipe Non Qualifiée phase régionale|1|"
                     "2420|2420",
                     "99999990|Lignage Eliminatoires (3 équipes)|12|250|3000",
                     "99999990|Lignage Finale (1 équipes)|2|250|500"}));
    // Below the national level those natures are ordinary ones.
    EXPECT_EQ(describe(competitionInvoiceLines({3, 1, 0, 0, 0}, "CHAF", 1, true, false, false,
                                               "Challenge", prices)),
              QStringList{"99999991|Frais Engagement Challenge|3|1000|3000"});
}

TEST(CompetitionInvoicing, DueDatesAndPrices) {
    EXPECT_EQ(competitionDueDate({2026, 11, 15}, "LR06"), QDate(2026, 11, 30));
    EXPECT_EQ(competitionDueDate({2026, 11, 16}, "LR06"), QDate(2026, 12, 15));
    EXPECT_EQ(competitionDueDate({2026, 1, 3}, "JKV"), QDate(2026, 1, 31));
    EXPECT_EQ(competitionDueDate({2028, 2, 10}, "JKV"), QDate(2028, 2, 29));
    EXPECT_EQ(competitionDueDate({2027, 2, 10}, "JKV"), QDate(2027, 2, 28));
    EXPECT_EQ(competitionDueDate({2026, 12, 20}, "JKV"), QDate(2027, 1, 15));
    EXPECT_EQ(competitionDueDate({2027, 1, 31}, "JKV"), QDate(2027, 2, 15));
    EXPECT_EQ(competitionDueDate({2026, 12, 20}, "BFC"), QDate(2026, 12, 20));
    EXPECT_EQ(competitionDueDate({2026, 11, 3}, "PDL"), QDate(2026, 11, 3));

    EXPECT_EQ(confirmPrice("12,50").cents(), 1250);
    EXPECT_EQ(confirmPrice(" 3.3 ").cents(), 330);
    for (const char* bad : {"0", "0,00", "-2", "abc", ""})
        EXPECT_EQ(refusal([&] { confirmPrice(bad); }), "Veuillez saisir un tarif") << bad;
}

TEST(CompetitionInvoicing, ClubCompetitionIsInvoicedPrintedAndClosed) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    const QString index = "FD700001";

    EXPECT_EQ(refusal([&] { planInvoicing(s, index); }), "Aucune facture à émettre.");
    ASSERT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 4);
    const InvoicingPlan plan = planInvoicing(s, index);
    EXPECT_EQ(plan.rows, 4);
    EXPECT_EQ(plan.season, "2027");
    EXPECT_TRUE(plan.asksEntryPrice);
    EXPECT_TRUE(plan.asksLinePrice);
    EXPECT_EQ(plan.entryTariff.cents(), 1800);
    EXPECT_EQ(plan.lineTariff.cents(), 450);
    EXPECT_EQ(
        refusal([&] {
            invoiceCompetition(s, kLeague06, settings, index, {euros("10"), Money()}, inst.today());
        }),
        "Veuillez saisir un tarif");

    std::vector<std::pair<int, int>> heard;
    const InvoicingOutcome out =
        invoiceCompetition(s, kLeague06, settings, index, {euros("10"), euros("2,50")},
                           QDate(2026, 11, 21), [&](int done, int total) {
                               heard.emplace_back(done, total);
                               return true;
                           });
    EXPECT_FALSE(out.cancelled);
    ASSERT_EQ(out.numbers,
              std::vector<QString>({"2027000012", "2027000013", "2027000014", "2027000015"}));
    ASSERT_EQ(out.files.size(), 4u);
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.back(), std::make_pair(4, 4));

    // The invoice of CL13001 (three teams of four, 2/1 in the rounds).
    const QString phoceen = rowOf(s, index, "CL13001");
    const QString n = rowValue(s, phoceen, "c_num_facture");
    EXPECT_EQ(n, "2027000013");
    EXPECT_EQ(storedLines(s, n),
              QStringList({"01|99999991|Frais Engagement Championnat régional quadrettes|3|4000|"
                           "12000|CDCNH|" +
                               phoceen + "|CL13001|21/11/2026",
                           "02|99999990|Lignage Eliminatoires (2 équipes)|48|250|12000|CDCNH|" +
                               phoceen + "|CL13001|21/11/2026",
                           "03|99999990|Lignage Finale (1 équipes)|12|250|3000|CDCNH|" + phoceen +
                               "|CL13001|21/11/2026"}));
    const QStringList expected{"ent_fact_lib=Bowling Club Phocéen",
                               "ent_fact_president=Henri Santoni",
                               "ent_fact_ad1=Chez Henri Santoni",
                               "ent_fact_ad2=7 rue du Club",
                               "ent_fact_cp_ville=13008 Marseille",
                               "ent_fact_mail1=contact.cl13001@clubs-bowling.example",
                               "ent_clt_lib=Bowling Club Phocéen",
                               "ent_clt_cp_ville=13008 Marseille",
                               "ent_tiers_fact=CL13001",
                               "ent_tiers_clt=CL13001",
                               "ent_fact_entite= ",
                               "ent_clt_entite= ",
                               "ent_fact_date=21/11/2026",
                               "ent_fact_tri=20261121",
                               "ent_fact_echeance=15/12/2026",
                               "ent_fact_competition=Championnat régional quadrettes",
                               "ent_c_index=" + phoceen,
                               "ent_nature=CDCNH",
                               "ent_fact_type=F",
                               "ent_montant=27000",
                               "ent_fact_edt=O",
                               "ent_envoi_mail=N",
                               "ent_compta=N"};
    for (const QString& e : expected) {
        const QString col = e.section('=', 0, 0);
        EXPECT_EQ(col + "=" + header(s, n, col.toLatin1().constData()), e);
    }
    // Printed: the row is final, its document in the invoice folder.
    EXPECT_EQ(rowValue(s, phoceen, "c_facture"), "F");
    EXPECT_EQ(rowValue(s, phoceen, "c_date_facture"), "21/11/2026");
    EXPECT_EQ(rowValue(s, phoceen, "c_tri_facture"), "20261121");
    EXPECT_EQ(rowValue(s, phoceen, "c_edt_fact"), "OUI");
    EXPECT_EQ(rowValue(s, phoceen, "c_add_tiers"), "N");
    EXPECT_EQ(rowValue(s, phoceen, "c_envoi_mail"), "N");
    const QString pdf = QDir(settings.invoiceFolder).filePath("CL13001_FN_2027000013.pdf");
    EXPECT_TRUE(std::find(out.files.begin(), out.files.end(), pdf) != out.files.end());
    QString text;
    ASSERT_EQ(test::runProgram("pdftotext", {"-layout", pdf, "-"}, {}, &text, nullptr), 0);
    EXPECT_TRUE(text.contains("FACTURE N° BOW2027000013 du 21/11/2026")) << qPrintable(text);
    EXPECT_TRUE(text.contains("Lignage Eliminatoires (2 équipes)")) << qPrintable(text);
    EXPECT_TRUE(text.contains("270,00 €")) << qPrintable(text);
    // The batch draws what it has just written; the document made again from
    // the stored invoice is the same.
    ASSERT_EQ(invoicing::generateInvoicePdf(s, settings, n), pdf);
    QString again;
    ASSERT_EQ(test::runProgram("pdftotext", {"-layout", pdf, "-"}, {}, &again, nullptr), 0);
    EXPECT_EQ(again, text);

    // A row left without counts keeps the competition open; once it is
    // invoiced too, the competition closes.
    EXPECT_EQ(rowValue(s, index, "c_facture"), "G");
    EXPECT_EQ(competitionOpenness(s, index), Openness::Frozen);
    setTeamCounts(s, kNational, rowOf(s, index, "CL83001"), {"1", "0", "0"});
    ASSERT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 1);
    const InvoicingOutcome last = invoiceCompetition(s, kLeague06, settings, index,
                                                     {euros("10"), euros("2,50")}, inst.today());
    EXPECT_EQ(last.numbers, std::vector<QString>{"2027000016"});
    EXPECT_EQ(competitionOpenness(s, index), Openness::Closed);
}

TEST(CompetitionInvoicing, PartiesOfLeaguesAndCommittees) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);

    // The national challenge: LR11 is invoiced at its CSR, the others at their president.
    ASSERT_EQ(calculateCompetition(s, kNational, "FD700015", "CHAF", false), 5);
    invoiceCompetition(s, kNational, settings, "FD700015", {euros("18"), Money()},
                       QDate(2026, 11, 10));
    const QString lr11 = rowValue(s, rowOf(s, "FD700015", "LR11"), "c_num_facture");
    EXPECT_EQ(header(s, lr11, "ent_fact_president"),
              QStringLiteral("Monsieur le Président du CSR Hervé Doucet"));
    EXPECT_EQ(header(s, lr11, "ent_fact_lib"), QStringLiteral("Ligue Régionale Île-de-France"));
    EXPECT_EQ(header(s, lr11, "ent_fact_echeance"), "30/11/2026");
    // Four players: 6 × 48.40, 3 × 30.80, 1 × 13.20.
    EXPECT_EQ(header(s, lr11, "ent_montant"), "39600");
    const QString lr06 = rowValue(s, rowOf(s, "FD700015", "LR06"), "c_num_facture");
    EXPECT_EQ(header(s, lr06, "ent_fact_president"),
              QStringLiteral("Monsieur le Président Gérard Castellan"));
    EXPECT_EQ(header(s, lr06, "ent_tiers_fact"), "LR06");
    EXPECT_EQ(storedLines(s, lr06).size(), 3);

    // A committee competition made by the league.
    ASSERT_EQ(calculateCompetition(s, kLeague06, "FD700007", "CDCND", false), 2);
    invoiceCompetition(s, kLeague06, settings, "FD700007", {euros("5"), Money()},
                       QDate(2026, 11, 21));
    const QString cd13 = rowValue(s, rowOf(s, "FD700007", "CD013"), "c_num_facture");
    EXPECT_EQ(header(s, cd13, "ent_tiers_fact"), "CD013");
    EXPECT_EQ(header(s, cd13, "ent_fact_lib"), QStringLiteral("Bouches-du-Rhône"));
    EXPECT_EQ(header(s, cd13, "ent_fact_president"), "Marcel Olivieri");
    EXPECT_EQ(header(s, cd13, "ent_fact_cp_ville"), "13002 Marseille");
    EXPECT_EQ(header(s, cd13, "ent_montant"), "4000");  // 4 teams of 2 at 5.00
    EXPECT_TRUE(QFile::exists(QDir(settings.invoiceFolder).filePath("CD013_FN_" + cd13 + ".pdf")));
}

TEST(CompetitionInvoicing, CancelLeavesWholeInvoicesOnly) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    ASSERT_EQ(calculateCompetition(s, kLeague06, "FD700001", "CDCNH", false), 4);

    int asked = 0;
    const InvoicingOutcome out =
        invoiceCompetition(s, kLeague06, settings, "FD700001", {euros("10"), euros("2,50")},
                           inst.today(), [&](int, int) { return ++asked <= 2; });
    EXPECT_TRUE(out.cancelled);
    EXPECT_EQ(out.numbers.size(), 2u);
    EXPECT_EQ(out.files.size(), 2u);
    int printed = 0, left = 0;
    for (const auto& r : s.select(partyRowsQuery("FD700001"))) {
        const QString state = r.value("c_facture").toString();
        if (state == "F") {
            ++printed;
            EXPECT_FALSE(storedLines(s, r.value("c_num_facture").toString()).isEmpty());
        }
        left += state == "C";
    }
    EXPECT_EQ(printed, 2);
    EXPECT_EQ(left, 2);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete WHERE ent_c_index IN (SELECT c_index FROM "
                       "strcompetition WHERE index_reference = 'FD700001')")
                  .toInt(),
              2);
}

TEST(CompetitionInvoicing, AnInvoiceAKilledRunWroteGoesBackToItsRowNeverTwice) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    const QString index = "FD700001";
    const InvoicingPrices prices{euros("10"), euros("2,50")};
    ASSERT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 4);
    ASSERT_EQ(invoiceCompetition(s, kLeague06, settings, index, prices, inst.today()).numbers,
              std::vector<QString>({"2027000012", "2027000013", "2027000014", "2027000015"}));

    // CL06001's invoice is cancelled, to be made again.
    invoicing::issueCreditNotes(s, {"2027000012"}, inst.today());
    invoicing::resetCompetitionInvoicing(s, {"2027000012"});
    // CL13002 and CL13003 as a kill between an invoice and its row leaves
    // them: the invoice whole, the row back to invoice.
    const QString aix = rowOf(s, index, "CL13002");
    const QString aubagne = rowOf(s, index, "CL13003");
    s.exec(
        "UPDATE strcompetition SET c_facture = ' ', c_num_facture = ' ' WHERE c_index IN "
        "(?, ?)",
        {aix, aubagne});
    // Even with other counts typed since, CL13003 has been billed: a credit
    // note, not a second invoice, is the way to change it.
    setTeamCounts(s, kNational, aubagne, {"5", "1", "0"});

    ASSERT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 3);
    const InvoicingOutcome again =
        invoiceCompetition(s, kLeague06, settings, index, prices, QDate(2026, 11, 25));
    EXPECT_EQ(again.numbers, std::vector<QString>({"2027000017"}));
    EXPECT_EQ(again.finished, std::vector<QString>({"2027000014", "2027000015"}));
    EXPECT_TRUE(outcomeNotes(again).contains("2 facture(s) laissée(s) sans document"))
        << qPrintable(outcomeNotes(again));
    for (const auto& [row, number] : {std::pair{aix, "2027000014"}, {aubagne, "2027000015"}}) {
        EXPECT_EQ(rowValue(s, row, "c_num_facture"), number);
        EXPECT_EQ(rowValue(s, row, "c_facture"), "F");
        EXPECT_EQ(rowValue(s, row, "c_date_facture"), "21/11/2026");
        EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete WHERE ent_c_index = ?", {row}).toInt(),
                  1);
    }
    EXPECT_EQ(rowValue(s, rowOf(s, index, "CL06001"), "c_num_facture"), "2027000017");
    EXPECT_EQ(competitionOpenness(s, index), Openness::Frozen);
}

TEST(CompetitionInvoicing, AFailingRunSaysWhatItDidAndWhatTheNextFinishes) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("ligue06");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    const QString index = "FD700001";
    ASSERT_EQ(calculateCompetition(s, kLeague06, index, "CDCNH", false), 4);
    // No document can be written: the invoice folder is a file.
    invoicing::DocumentSettings broken = settings;
    broken.invoiceFolder = QDir(inst.home()).filePath("pas-un-dossier");
    {
        QFile f(broken.invoiceFolder);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    QString message;
    std::vector<QString> written;
    try {
        invoiceCompetition(s, kLeague06, broken, index, {euros("10"), euros("2,50")}, inst.today());
        ADD_FAILURE() << "the run should have stopped";
    } catch (const InterruptedRun& e) {
        message = e.message();
        written = e.outcome().numbers;
    }
    ASSERT_FALSE(written.empty());
    EXPECT_TRUE(message.startsWith("La génération des factures s'est arrêtée : "))
        << qPrintable(message);
    EXPECT_TRUE(message.contains(QStringLiteral("%1 facture(s) enregistrée(s) avant l'arrêt (N° "
                                                "2027000012")
                                     .arg(written.size())))
        << qPrintable(message);
    EXPECT_TRUE(message.contains("dont 0 avec leur document")) << qPrintable(message);
    EXPECT_TRUE(message.contains("seront faits par la prochaine génération"))
        << qPrintable(message);
    // Nothing is marked printed without its document; the rows keep their
    // invoices, and the data check names them.
    for (const QString& n : written) {
        EXPECT_EQ(header(s, n, "ent_fact_edt"), "N") << qPrintable(n);
        EXPECT_EQ(s.scalar("SELECT c_facture FROM strcompetition WHERE c_num_facture = ?", {n})
                      .toString(),
                  "A");
    }
    const tools::DataCheckReport check = tools::checkData(s, settings.invoiceFolder);
    EXPECT_EQ(check.findingsOf(tools::check::kRowsLeftWritten).size(), written.size());
    EXPECT_TRUE(check.findingsOf(tools::check::kPrintedWithoutFile).isEmpty());

    // The next opening finishes them: documents made, rows final, once.
    const FinishedRows finished = finishInterruptedRows(s, settings);
    EXPECT_EQ(finished.numbers, written);
    EXPECT_TRUE(finished.report().contains("terminées")) << qPrintable(finished.report());
    for (const QString& n : written) {
        EXPECT_EQ(header(s, n, "ent_fact_edt"), "O");
        EXPECT_EQ(s.scalar("SELECT c_facture FROM strcompetition WHERE c_num_facture = ?", {n})
                      .toString(),
                  "F");
    }
    EXPECT_TRUE(tools::checkData(s, settings.invoiceFolder)
                    .findingsOf(tools::check::kRowsLeftWritten)
                    .isEmpty());
    EXPECT_TRUE(finishInterruptedRows(s, settings).empty());
    // A file removed since is named by the check.
    QFile::remove(invoicing::invoicePdfPath(settings.invoiceFolder, "CL06001", "", written[0]));
    EXPECT_EQ(tools::checkData(s, settings.invoiceFolder)
                  .findingsOf(tools::check::kPrintedWithoutFile)
                  .size(),
              1);
}
