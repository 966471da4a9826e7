#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <functional>

#include "competitions/CompetitionRegister.h"
#include "competitions/InvoicingRuns.h"
#include "competitions/NationalInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::competitions;

namespace {

Money euros(const char* text) { return *Money::parse(QString::fromLatin1(text)); }

// An imported master row, as the championship and private imports write it.
struct Seed {
    const char* index;
    const char* season;
    const char* type;  // "FD" championship, "PR" private
    const char* nature;
    const char* codification;
    const char* n1 = "0";
    const char* n2 = "0";
    const char* n3 = "0";
    QVariant fixedPart = 0;  // cents
    QVariant players = 0;
    const char* sortDate = "20180527";
    const char* state = " ";
};

void seed(store::Store& s, const std::vector<Seed>& rows) {
    store::Transaction tx(s);
    for (const Seed& r : rows)
        s.insert("strcompetition",
                 {{"c_index", r.index},
                  {"index_reference", kMasterReference},
                  {"c_saison", r.season},
                  {"c_type", r.type},
                  {"c_intitule", QStringLiteral("Compétition %1").arg(r.index)},
                  {"c_nature", r.nature},
                  {"c_codification", r.codification},
                  {"c_cod3", r.n1},
                  {"c_cod4", r.n2},
                  {"c_cod5", r.n3},
                  {"c_nb_equipe_eliminatoire", r.fixedPart},
                  {"c_nb_equipe_finale", r.players},
                  {"c_tri_finale", r.sortDate},
                  {"c_date_finale", format::displayDate(QDate::fromString(r.sortDate, "yyyyMMdd"))},
                  {"c_facture", r.state}});
    tx.commit();
}

QString rowValue(const store::Store& s, const QString& index, const char* column) {
    return s
        .scalar(QStringLiteral("SELECT %1 FROM strcompetition WHERE c_index = ?")
                    .arg(QLatin1String(column)),
                {index})
        .toString();
}

QStringList marked(const store::Store& s, BatchKind kind, const QString& season) {
    QStringList out;
    for (const auto& r : s.select(calculatedBatchRowsQuery(kind, season)))
        out << r.value("c_index").toString();
    return out;
}

// "article|label|quantity|unit price|amount" per line, in cents.
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
                  "f_index_compet, f_tiers_fact FROM strfacture WHERE f_num_facture = ? "
                  "ORDER BY f_num_lig",
                  {invoicing::paddedInvoiceNumber(number)})) {
        QStringList fields;
        for (int i = 0; i < r.count(); ++i) fields << r.value(i).toString();
        out << fields.join('|');
    }
    return out;
}

// Columns of a header, "column=value" each.
QStringList header(const store::Store& s, const QString& number, const QStringList& columns) {
    const auto r = s.selectOne(
        QStringLiteral("SELECT %1 FROM strentete WHERE ent_fact_no = ?").arg(columns.join(", ")),
        {number});
    QStringList out;
    for (int i = 0; r && i < columns.size(); ++i) out << columns[i] + "=" + r->value(i).toString();
    return out;
}

std::string refusal(const std::function<void()>& f) {
    try {
        f();
    } catch (const Refusal& r) {
        return r.message().toStdString();
    }
    return "(no refusal)";
}

int invoiceCount(const store::Store& s) {
    return s.scalar("SELECT COUNT(*) FROM strentete").toInt();
}

}  // namespace

TEST(NationalInvoicing, MarksOfBothKindsAndTheLimitsOfSeason2018) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    seed(s,
         {
             // Championship, 2018: below the key limit with lines, it is marked...
             {"8FD00479", "2018", "FD", "CDCNH", "CL13001", "0", "2", "0"},
             {"8FD00012", "2018", "FD", "CDCND", "cl13002", "1"},
             // ...the limit itself and above never, whatever they owe...
             {"8FD00480", "2018", "FD", "CDCNH", "CL13001", "5", "5", "5"},
             {"8fd00481", "2018", "FD", "CDCND", "CL13001", "1"},
             // ...nor nobody, nor nothing owed, nor what is invoiced already.
             {"8FD00010", "2018", "FD", "CDCND", "CL99999", "3", "3", "3"},
             {"8FD00011", "2018", "FD", "CDCNH", "CL13002", "0", "0", "0"},
             {"8FD00013", "2018", "FD", "CDCNH", "CL13003", "", "", ""},
             {"8FD00014", "2018", "FD", "CDCNH", "CL13003", "4", "0", "0", 0, 0, "20180527", "F"},
             // Another nature is not the championship's.
             {"8FD00015", "2018", "FD", "CHAF", "CL13003", "4"},
             // Season 2028 keys are "8FD" too: the 2018 limit is not theirs.
             {"8FD00500", "2028", "FD", "CDCNH", "CL13001", "0", "0", "1"},
             // Private, 2018: dated before September 2018 with a fixed part or players.
             {"8PR00001", "2018", "PR", "PRIVE", "CL13001", "", "", "", 5000, 0, "20180830"},
             {"8PR00002", "2018", "PR", "PRIVE", "BOW0131", "", "", "", 0, 12, "20180301"},
             {"8PR00003", "2018", "PR", "PRIVE", "CL13001", "", "", "", 5000, 3, "20180900"},
             {"8PR00004", "2018", "PR", "PRIVE", "CL13001", "", "", "", 5000, 3, "20180915"},
             {"8PR00005", "2018", "PR", "PRIVE", "CL99999", "", "", "", 5000, 3, "20180101"},
             {"8PR00006", "2018", "PR", "PRIVE", "CL13001", "", "", "", 0, 0, "20180101"},
             {"8PR00007", "2018", "PR", "PRIVE", "CL13001", "", "", "", QVariant(), QVariant(),
              "20180101"},
             // In 2019 a private competition of October 2018 is invoiced.
             {"9PR00001", "2019", "PR", "PRIVE", "LR06", "", "", "", 0, 3, "20181015"},
         });

    EXPECT_EQ(calculateBatch(s, BatchKind::Championship, "2018"), 2);
    EXPECT_EQ(marked(s, BatchKind::Championship, "2018"), QStringList({"8FD00012", "8FD00479"}));
    EXPECT_EQ(rowValue(s, "8FD00480", "c_facture"), " ");
    EXPECT_EQ(rowValue(s, "8FD00014", "c_facture"), "F");
    // What is left open is what the window lists.
    QStringList open;
    for (const auto& r : s.select(openBatchRowsQuery(BatchKind::Championship, "2018")))
        open << r.value("c_index").toString();
    EXPECT_EQ(open, QStringList({"8FD00010", "8FD00011", "8FD00013", "8FD00480", "8fd00481"}));
    EXPECT_EQ(calculateBatch(s, BatchKind::Championship, "2028"), 1);
    EXPECT_EQ(marked(s, BatchKind::Championship, "2028"), QStringList{"8FD00500"});

    EXPECT_EQ(calculateBatch(s, BatchKind::Private, "2018"), 2);
    EXPECT_EQ(marked(s, BatchKind::Private, "2018"), QStringList({"8PR00001", "8PR00002"}));
    EXPECT_EQ(calculateBatch(s, BatchKind::Private, "2019"), 1);
    // Calculating again marks the same rows, and only its own kind's.
    EXPECT_EQ(calculateBatch(s, BatchKind::Private, "2018"), 2);
    EXPECT_EQ(marked(s, BatchKind::Championship, "2018"), QStringList({"8FD00012", "8FD00479"}));

    // The plan asks the price of each gender that has lines, once.
    const BatchPlan plan = planBatch(s, BatchKind::Championship, "2018");
    EXPECT_EQ(plan.rows, 2);
    EXPECT_TRUE(plan.asksMenPrice);
    EXPECT_TRUE(plan.asksWomenPrice);
    EXPECT_FALSE(plan.asksPlayerPrice);
    const BatchPlan privatePlan = planBatch(s, BatchKind::Private, "2018");
    EXPECT_TRUE(privatePlan.asksPlayerPrice);
    EXPECT_FALSE(privatePlan.asksMenPrice);
    EXPECT_EQ(refusal([&] { planBatch(s, BatchKind::Private, "2020"); }),
              "Aucune facture à émettre.");

    // Reopening a window puts every calculated row back.
    releaseCalculatedRows(s);
    EXPECT_TRUE(marked(s, BatchKind::Private, "2018").isEmpty());
}

TEST(NationalInvoicing, LinesAndPartiesByPrefix) {
    BatchRow row;
    row.n1 = 4;
    row.n2 = 0;
    row.n3 = 2;
    EXPECT_EQ(describe(championshipLines(row, euros("3,50"))),
              QStringList({"99999990|Lignage N1|4|350|1400", "99999990|Lignage N3|2|350|700"}));
    row.fixedPart = euros("45,50");
    row.players = 12;
    EXPECT_EQ(describe(privateLines(row, euros("2"))),
              QStringList({"99999992|Calendrier : Frais Fixe|1|4550|4550",
                           "99999993|Participation par joueur|12|200|2400"}));
    // A zero fixed part or no player still makes its line.
    row.fixedPart = Money();
    row.players = 0;
    EXPECT_EQ(describe(privateLines(row, euros("2"))),
              QStringList({"99999992|Calendrier : Frais Fixe|1|0|0",
                           "99999993|Participation par joueur|0|200|0"}));

    test::TestInstall inst;
    auto session = inst.start();
    const store::Store& s = session->store();
    // A centre is invoiced at its invoicing address, not at the centre's own.
    const auto centre = codificationParty(s, "BOW0131", "r");
    EXPECT_EQ(centre.account, "BOW0131");
    EXPECT_EQ(centre.name, "SAS Loisirs Marseille");
    EXPECT_EQ(centre.address1, "210 avenue du Prado");
    EXPECT_EQ(centre.postcodeTown, "13008 Marseille");
    EXPECT_EQ(centre.mail1, "accueil.131@centres-bowling.example");
    s.update("strbowling",
             {{"b_fac_nom", "Bowling Prado SARL"},
              {"b_fac_ad1", "BP 12"},
              {"b_fac_cp", "13272"},
              {"b_fac_ville", "Marseille Cedex 08"}},
             "b_compte_tiers = ?", {"BOW0131"});
    const auto moved = codificationParty(s, "bow0131", "r");
    EXPECT_EQ(moved.name + "|" + moved.address1 + "|" + moved.postcodeTown,
              "Bowling Prado SARL|BP 12|13272 Marseille Cedex 08");
    // A club, a committee by its number as typed, a league at its president's.
    EXPECT_EQ(codificationParty(s, "CL13001", "r").name, "Bowling Club Phocéen");
    const auto committee = codificationParty(s, "CD13", "r");
    EXPECT_EQ(committee.account, "CD013");
    EXPECT_EQ(committee.name, "Bouches-du-Rhône");
    EXPECT_EQ(codificationParty(s, "CD013", "r").account, "CD013");
    const auto league = codificationParty(s, "LR06", "r");
    EXPECT_EQ(league.account, "LR06");
    EXPECT_FALSE(league.president.isEmpty());
    EXPECT_EQ(refusal([&] { codificationParty(s, "XY123", "7PR00009 (Open)"); }),
              "7PR00009 (Open) : le code « XY123 » ne désigne ni un club (CL), ni un comité (CD), "
              "ni un centre de bowling (BOW), ni une ligue (LR).");
    EXPECT_EQ(refusal([&] { codificationParty(s, "CL01999", "r"); }),
              "r : le club CL01999 n'existe pas.");
}

TEST(NationalInvoicing, ChampionshipInvoicedLineByLine) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);

    // The demo's championship of the working season: nobody ("CL99999") and
    // a club without lines stay open.
    ASSERT_EQ(calculateBatch(s, BatchKind::Championship, "2027"), 3);
    EXPECT_EQ(marked(s, BatchKind::Championship, "2027"),
              QStringList({"7FD00001", "7FD00002", "7FD00004"}));
    const BatchPlan plan = planBatch(s, BatchKind::Championship, "2027");
    const int before = invoiceCount(s);
    EXPECT_EQ(plan.menTariff.cents(), 450);
    EXPECT_EQ(plan.womenTariff.cents(), 450);
    EXPECT_EQ(refusal([&] {
                  invoiceBatch(s, settings, BatchKind::Championship, "2027",
                               {euros("4"), Money(), Money()}, inst.today());
              }),
              "Veuillez saisir un tarif");
    EXPECT_EQ(invoiceCount(s), before);

    // Invoiced on the 3rd of December: due the 31st, whoever the operator.
    const InvoicingOutcome out =
        invoiceBatch(s, settings, BatchKind::Championship, "2027",
                     {euros("4,00"), euros("3,50"), Money()}, QDate(2026, 12, 3));
    ASSERT_EQ(out.numbers, std::vector<QString>({"2027000012", "2027000013", "2027000014"}));
    EXPECT_EQ(storedLines(s, "2027000012"),
              QStringList({"01|99999990|Lignage N1|4|350|1400|CDCND|7FD00001|CL13001",
                           "02|99999990|Lignage N2|2|350|700|CDCND|7FD00001|CL13001"}));
    EXPECT_EQ(storedLines(s, "2027000013"),
              QStringList({"01|99999990|Lignage N1|6|400|2400|CDCNH|7FD00002|CL13001",
                           "02|99999990|Lignage N3|1|400|400|CDCNH|7FD00002|CL13001"}));
    EXPECT_EQ(storedLines(s, "2027000014").size(), 3);
    EXPECT_EQ(header(s, "2027000012",
                     {"ent_fact_competition", "ent_c_codification", "ent_c_index", "ent_tiers_fact",
                      "ent_fact_lib", "ent_fact_date", "ent_fact_echeance", "ent_nature",
                      "ent_montant", "ent_fact_type"}),
              QStringList({"ent_fact_competition=CHAMPIONNAT DES CLUBS-NATIONAL-Dames",
                           "ent_c_codification=CL13001", "ent_c_index=7FD00001",
                           "ent_tiers_fact=CL13001", "ent_fact_lib=Bowling Club Phocéen",
                           "ent_fact_date=03/12/2026", "ent_fact_echeance=31/12/2026",
                           "ent_nature=CDCND", "ent_montant=2100", "ent_fact_type=F"}));
    EXPECT_EQ(header(s, "2027000014", {"ent_fact_competition", "ent_montant"}),
              QStringList({"ent_fact_competition=CHAMPIONNAT DES CLUBS-NATIONAL-Hommes",
                           "ent_montant=3600"}));
    // Each row is printed and final, its document in the invoice folder.
    for (const auto& [index, number] :
         {std::pair{"7FD00001", "2027000012"}, std::pair{"7FD00004", "2027000014"}}) {
        EXPECT_EQ(rowValue(s, index, "c_facture"), "F");
        EXPECT_EQ(rowValue(s, index, "c_num_facture"), number);
        EXPECT_EQ(rowValue(s, index, "c_tri_facture"), "20261203");
        EXPECT_EQ(rowValue(s, index, "c_edt_fact"), "OUI");
    }
    EXPECT_TRUE(QFile::exists(QDir(settings.invoiceFolder).filePath("CL75001_FN_2027000014.pdf")));
    EXPECT_EQ(rowValue(s, "7FD00003", "c_facture"), " ");
    EXPECT_EQ(rowValue(s, "7FD00005", "c_facture"), " ");
    EXPECT_EQ(refusal([&] { planBatch(s, BatchKind::Championship, "2027"); }),
              "Aucune facture à émettre.");
}

TEST(NationalInvoicing, PrivateInvoicedWithTheCentresInvoicingAddress) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    store::Store& s = session->store();
    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    const int before = invoiceCount(s);
    seed(s, {{"7PR00009", "2027", "PR", "PRIVE", "XY123", "", "", "", 1000, 0, "20261201"}});

    ASSERT_EQ(calculateBatch(s, BatchKind::Private, "2027"), 4);
    // A row that names no party refuses the run before anything is written.
    EXPECT_EQ(refusal([&] {
                  invoiceBatch(s, settings, BatchKind::Private, "2027", {{}, {}, euros("2")},
                               inst.today());
              }),
              "7PR00009 (Compétition 7PR00009) : le code « XY123 » ne désigne ni un club (CL), ni "
              "un comité (CD), ni un centre de bowling (BOW), ni une ligue (LR).");
    EXPECT_EQ(invoiceCount(s), before);
    s.update("strcompetition", {{"c_codification", kNoParty}}, "c_index = ?", {"7PR00009"});
    ASSERT_EQ(calculateBatch(s, BatchKind::Private, "2027"), 3);
    EXPECT_EQ(planBatch(s, BatchKind::Private, "2027").playerTariff.cents(), 0);
    EXPECT_EQ(
        refusal([&] { invoiceBatch(s, settings, BatchKind::Private, "2027", {}, inst.today()); }),
        "Veuillez saisir un tarif");

    const InvoicingOutcome out = invoiceBatch(s, settings, BatchKind::Private, "2027",
                                              {{}, {}, euros("2,00")}, inst.today());
    ASSERT_EQ(out.numbers, std::vector<QString>({"2027000012", "2027000013", "2027000014"}));
    EXPECT_EQ(storedLines(s, "2027000012"),
              QStringList({"01|99999992|Calendrier : Frais Fixe|1|5000|5000|PRIVE|7PR00001|BOW0131",
                           "02|99999993|Participation par joueur|24|200|4800|PRIVE|7PR00001|"
                           "BOW0131"}));
    EXPECT_EQ(header(s, "2027000012",
                     {"ent_fact_competition", "ent_tiers_fact", "ent_fact_lib", "ent_fact_ad1",
                      "ent_fact_cp_ville", "ent_fact_mail1", "ent_clt_lib", "ent_fact_echeance",
                      "ent_montant"}),
              QStringList({"ent_fact_competition=Tournoi d'automne du Prado",
                           "ent_tiers_fact=BOW0131", "ent_fact_lib=SAS Loisirs Marseille",
                           "ent_fact_ad1=210 avenue du Prado", "ent_fact_cp_ville=13008 Marseille",
                           "ent_fact_mail1=accueil.131@centres-bowling.example",
                           "ent_clt_lib=SAS Loisirs Marseille", "ent_fact_echeance=15/12/2026",
                           "ent_montant=9800"}));
    EXPECT_EQ(storedLines(s, "2027000013"),
              QStringList({"01|99999992|Calendrier : Frais Fixe|1|0|0|PRIVE|7PR00002|CL75001",
                           "02|99999993|Participation par joueur|40|200|8000|PRIVE|7PR00002|"
                           "CL75001"}));
    EXPECT_EQ(storedLines(s, "2027000014"),
              QStringList({"01|99999992|Calendrier : Frais Fixe|1|3000|3000|PRIVE|7PR00003|CD013",
                           "02|99999993|Participation par joueur|0|200|0|PRIVE|7PR00003|CD013"}));
    EXPECT_TRUE(QFile::exists(QDir(settings.invoiceFolder).filePath("BOW0131_FN_2027000012.pdf")));
    EXPECT_EQ(rowValue(s, "7PR00004", "c_facture"), " ");

    // A run killed between an invoice and its row left the invoice whole and
    // the row "C": the next run gives that invoice back to it, writing none again.
    s.update("strcompetition", {{"c_facture", kCalculatedState}, {"c_num_facture", QVariant()}},
             "c_index = ?", {"7PR00002"});
    const InvoicingOutcome again = invoiceBatch(s, settings, BatchKind::Private, "2027",
                                                {{}, {}, euros("2,00")}, inst.today());
    EXPECT_TRUE(again.numbers.empty());
    EXPECT_EQ(again.finished, std::vector<QString>{"2027000013"});
    EXPECT_EQ(invoiceCount(s), before + 3);
    EXPECT_EQ(rowValue(s, "7PR00002", "c_facture"), "F");
    EXPECT_EQ(rowValue(s, "7PR00002", "c_num_facture"), "2027000013");
}

TEST(NationalBatch, CommandsCalculateAndInvoiceBothKinds) {
    test::TestInstall inst;
    QString out, err;
    const QStringList today{"ORVE_TODAY=21/11/2026"};
    auto run = [&](const QStringList& args) {
        return test::runProgram(ORVE_BATCH,
                                QStringList{"--home", inst.home(), "--as", "gestu"} + args, {},
                                &out, &err, today);
    };
    EXPECT_EQ(run({"cdc", "invoice"}), 1);
    EXPECT_TRUE(err.contains("Aucune facture à émettre.")) << qPrintable(err);
    ASSERT_EQ(run({"cdc", "calculate", "--saison", "2027"}), 0) << qPrintable(err);
    EXPECT_TRUE(out.contains("7FD00004  CL75001  CDCNH  3 / 3 / 3")) << qPrintable(out);
    EXPECT_TRUE(out.contains("3 facture(s) à émettre pour la saison 2027")) << qPrintable(out);
    EXPECT_EQ(run({"cdc", "invoice", "--hommes", "gratuit"}), 1);
    EXPECT_TRUE(err.contains("Veuillez saisir un tarif")) << qPrintable(err);
    // The women's price left out is the season's tariff, as the window presets it.
    ASSERT_EQ(run({"cdc", "invoice", "--hommes", "4"}), 0) << qPrintable(err);
    EXPECT_TRUE(out.contains("3 facture(s) générée(s) pour la saison 2027")) << qPrintable(out);
    EXPECT_TRUE(out.contains("CL13001_FN_2027000012.pdf")) << qPrintable(out);

    ASSERT_EQ(run({"prive", "calculate"}), 0) << qPrintable(err);
    EXPECT_TRUE(out.contains("7PR00001  BOW0131  PRIVE  50,00 € + 24 joueur(s)"))
        << qPrintable(out);
    // No tariff per player in the demo: the price must be given.
    EXPECT_EQ(run({"prive", "invoice"}), 1);
    EXPECT_TRUE(err.contains("Veuillez saisir un tarif")) << qPrintable(err);
    ASSERT_EQ(run({"prive", "invoice", "--joueur", "2,00"}), 0) << qPrintable(err);
    EXPECT_TRUE(out.contains("facture N° 2027000015")) << qPrintable(out);
    EXPECT_TRUE(out.contains("BOW0131_FN_2027000015.pdf")) << qPrintable(out);
    auto session = inst.start();
    EXPECT_EQ(session->store()
                  .scalar("SELECT ent_montant FROM strentete WHERE ent_fact_no = '2027000012'")
                  .toLongLong(),
              2700);  // 4 + 2 lines at the women's 4,50
    EXPECT_EQ(run({"prive", "bill"}), 1);
    EXPECT_TRUE(err.contains("Usage : orve-batch prive")) << qPrintable(err);
}
