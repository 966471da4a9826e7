#include <gtest/gtest.h>

#include "AccountingFixture.h"
#include "accounting/AccountingConstants.h"
#include "accounting/SalesJournal.h"
#include "accounting/TurnoverStatistics.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::accounting;

namespace {

struct ReportWorld {
    test::TestInstall inst{test::TestInstall::Kind::Empty};
    std::unique_ptr<app::Session> session;
    ReportWorld() {
        session = inst.start();
        test::addAccountingFixture(session->store());
        test::addStatisticsFixture(session->store());
    }
    store::Store& store() { return session->store(); }
    StatisticsRequest request(StatisticsMode mode, const QString& season = "2022",
                              const QString& from = "__/__/____",
                              const QString& to = "__/__/____") {
        StatisticsRequest r;
        r.mode = mode;
        r.selection = test::seasonSelection(season);
        r.period = statisticsPeriod(season, from, to);
        return r;
    }
};

// "key|article|quantity|amount" per row.
QStringList summaryOf(const store::Rows& rows, const char* key) {
    QStringList out;
    for (const auto& r : rows)
        out << QStringList{r.value(key).toString(), r.value("f_article").toString(),
                           r.value("f_qte").toString(), r.value("f_montant").toString()}
                   .join('|');
    return out;
}

}  // namespace

TEST(SalesJournal, ListsTheLinesOfTheSeasonByMonthWithTheirTotals) {
    ReportWorld w;
    const auto all = test::seasonSelection("2021");
    const ReportTotals totals = journalTotals(w.store(), all);
    EXPECT_EQ(totals.lines, 10);
    EXPECT_EQ(totals.amount, Money::fromCents(72780));
    EXPECT_EQ(totals.quantity, 36);
    // A line entered under an entity code names it; a line whose header is
    // gone keeps its own party.
    w.store().exec(
        "UPDATE strfacture SET f_fact_entite = 'ASSO12' WHERE f_num_facture = '2021000014'");
    const auto rows = w.store().select(journalQuery(all));
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_EQ(rows[0].value("c_num_facture").toString(), "00000058");
    EXPECT_EQ(rows[0].value("c_date_facture").toString(), "05/10/2020");
    EXPECT_EQ(rows[0].value("f_tiers_fact").toString(), "CL77002");
    EXPECT_EQ(rows[2].value("c_num_facture").toString(), "00000077");
    EXPECT_EQ(rows[2].value("f_tiers_fact").toString(), "CL77001");
    EXPECT_EQ(rows[5].value("f_tiers_fact").toString(), "ASSO12");
    EXPECT_EQ(rows[9].value("c_tri_facture").toString(), "20210325");

    // One month, its year typed with two digits or four.
    for (const QString& month : {QString("10/20"), QString("10/2020")}) {
        const auto october = test::seasonSelection("2021", month);
        EXPECT_EQ(w.store().select(journalQuery(october)).size(), 3u);
        const ReportTotals t = journalTotals(w.store(), october);
        EXPECT_EQ(t.amount, Money::fromCents(181950));
        EXPECT_EQ(t.quantity, 14);
    }
    const ReportTotals none = journalTotals(w.store(), test::seasonSelection("2021", "02/21"));
    EXPECT_EQ(none.lines, 0);
    EXPECT_EQ(none.amount, Money());
    EXPECT_EQ(none.quantity, 0);

    // The state options choose the competitions by their invoicing state.
    EXPECT_EQ(journalTotals(w.store(), all, InvoicingStatus::Invoiced).lines, 4);
    EXPECT_EQ(journalTotals(w.store(), all, InvoicingStatus::ManualInvoicing).lines, 6);
    EXPECT_EQ(journalTotals(w.store(), all, InvoicingStatus::AwaitingInvoicing).lines, 0);

    // A column head sorts the same statement.
    const auto byAmount = w.store().select(journalQuery(all).sortedBy("f_montant", true));
    EXPECT_EQ(byAmount.front().value("f_montant").toLongLong(), 123450);
    EXPECT_EQ(byAmount.back().value("f_montant").toLongLong(), -123450);
}

TEST(SalesJournal, CsvIsForAFrenchSpreadsheet) {
    ReportWorld w;
    const QByteArray csv = journalCsv(w.store(), test::seasonSelection("2021", "10/20"));
    ASSERT_TRUE(csv.startsWith("\xEF\xBB\xBF"));
    const QStringList lines = QString::fromUtf8(csv.mid(3)).split("\r\n");
    ASSERT_EQ(lines.size(), 6);  // header, three lines, total, and the end
    EXPECT_TRUE(lines[0].startsWith("Saison;Type;Intitulé de la compétiton;Nature;Formule;"));
    EXPECT_TRUE(lines[0].endsWith(";Quantité;Prix unitaire;Montant"));
    EXPECT_TRUE(lines[1].endsWith(";Licence adulte;12;45,00;540,00")) << lines[1].toStdString();
    EXPECT_EQ(lines[4], "Total;;;;;;;;;;;;;;;;;14;;1819,50");
    EXPECT_EQ(lines[5], "");
    EXPECT_EQ(csvField("Ligue; Provence \"Sud\""), "\"Ligue; Provence \"\"Sud\"\"\"");

    // Titles and labels typed by clerks or brought by imports reach the
    // spreadsheet as text, never as a formula; amounts stay numbers.
    w.store().exec("UPDATE strcompetition SET c_intitule = ?", {"=HYPERLINK(\"http://x.test\")"});
    w.store().exec("UPDATE strfacture SET f_libelle = ?", {"@SUM(1+1)"});
    const QStringList formulas =
        QString::fromUtf8(journalCsv(w.store(), test::seasonSelection("2021", "10/20")).mid(3))
            .split("\r\n");
    ASSERT_EQ(formulas.size(), 6);
    EXPECT_TRUE(formulas[1].contains(";\"'=HYPERLINK(\"\"http://x.test\"\")\";"))
        << formulas[1].toStdString();
    EXPECT_TRUE(formulas[1].endsWith(";'@SUM(1+1);12;45,00;540,00")) << formulas[1].toStdString();
    EXPECT_EQ(formulas[4], "Total;;;;;;;;;;;;;;;;;14;;1819,50");
}

TEST(TurnoverStatistics, SeasonPeriodKeepsTheThirtyFirstOfAugustAndNotTheFirstOfSeptember) {
    ReportWorld w;
    EXPECT_EQ(defaultPeriodStart("2022"), "01/09/2021");
    EXPECT_EQ(defaultPeriodEnd("2022"), "31/08/2022");
    const StatisticsPeriod p = statisticsPeriod("2022", "__/__/____", "  /  /    ");
    EXPECT_EQ(p.from, "20210901");
    EXPECT_EQ(p.to, "20220831");
    const StatisticsResult all = computeStatistics(w.store(), w.request(StatisticsMode::ByNature));
    EXPECT_EQ(all.totals.lines, 6);  // 01/09/2021 and 31/08/2022 in, 01/09/2022 out
    EXPECT_EQ(all.totals.amount, Money::fromCents(11200));
    EXPECT_EQ(all.totals.quantity, 16);
    EXPECT_FALSE(all.notice);

    // Typed dates replace the season's bounds.
    const StatisticsResult part = computeStatistics(
        w.store(), w.request(StatisticsMode::ByNature, "2022", "01/02/2022", "30/06/2022"));
    EXPECT_EQ(part.totals.amount, Money::fromCents(5000 + 300));
    EXPECT_THROW(statisticsPeriod("2022", "32/01/2022", ""), Refusal);

    const StatisticsResult nothing =
        computeStatistics(w.store(), w.request(StatisticsMode::ByNature, "2019"));
    EXPECT_TRUE(nothing.summary.empty());
    ASSERT_TRUE(nothing.notice);
    EXPECT_EQ(*nothing.notice, "aucune ligne de facturation correspond à votre demande");
}

TEST(TurnoverStatistics, EachModeGroupsItsOwnOrganisersWithCumulativeRows) {
    ReportWorld w;
    const StatisticsResult natures =
        computeStatistics(w.store(), w.request(StatisticsMode::ByNature));
    ASSERT_EQ(natures.summary.size(), 4u);
    EXPECT_EQ(summaryOf(natures.summary, "c_nature"),
              (QStringList{"CHAF|99999990|12|1200", "CHAF|99999991|2|2000", "DBEXC|99999991|1|3000",
                           "PRIVE|00000008|1|5000"}));
    EXPECT_EQ(natures.summary[0].value("f_libelle").toString(), "Prix d'une ligne");
    EXPECT_EQ(natures.summary[0].value("c_intitule").toString(), "-");
    EXPECT_EQ(natures.summary[0].value("c_date_finale").toString(), "__/__/____");
    EXPECT_EQ(natures.summary[0].value("c_tri_finale").toString(), "00000000");
    EXPECT_EQ(natures.summary[3].value("c_intitule").toString(), "Tournois Privés");
    ASSERT_EQ(natures.bars.size(), 3u);
    EXPECT_EQ(natures.bars[0].label, "CHAF");
    EXPECT_EQ(natures.bars[0].amount, Money::fromCents(3200));

    // By league: only organisers whose code begins with "R"; one "CUM" row each.
    const auto leagues = w.request(StatisticsMode::ByLeague);
    const StatisticsResult byLeague = computeStatistics(w.store(), leagues);
    ASSERT_EQ(byLeague.summary.size(), 2u);
    EXPECT_EQ(summaryOf(byLeague.summary, "c_cod4"), (QStringList{"R06|-|7|2500", "R11|-|1|3000"}));
    EXPECT_EQ(byLeague.summary[0].value("c_cod1").toString(), "CUM");
    EXPECT_EQ(byLeague.summary[0].value("c_intitule").toString(), "Cumul de la facturation");
    EXPECT_EQ(byLeague.summary[0].value("c_facture").toString(), "C");
    EXPECT_EQ(byLeague.summary[0].value("c_nom_organisateur").toString(), "R06");
    // The totals are those of every line of the period, the mode's or not.
    EXPECT_EQ(byLeague.totals.amount, Money::fromCents(11200));
    EXPECT_EQ(byLeague.totals.quantity, 16);
    // Down from the organiser to its articles, and from an article to its lines.
    const store::Rows articles = articleTotals(w.store(), leagues, byLeague.summary[0]);
    ASSERT_EQ(articles.size(), 2u);
    EXPECT_EQ(summaryOf(articles, "c_cod4"),
              (QStringList{"R06|99999990|5|500", "R06|99999991|2|2000"}));
    EXPECT_EQ(articles[0].value("c_cod1").toString(), "-");
    const store::Rows lines = w.store().select(detailQuery(leagues, articles[1]));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].value("c_num_facture").toString(), "2022000001");
    EXPECT_EQ(lines[0].value("f_qte").toInt(), 2);

    const StatisticsResult committees =
        computeStatistics(w.store(), w.request(StatisticsMode::ByCommittee));
    EXPECT_EQ(summaryOf(committees.summary, "c_cod4"), QStringList{"D013|-|4|400"});
    EXPECT_EQ(committees.totals.amount, Money::fromCents(11200));
    EXPECT_FALSE(committees.notice);
    const StatisticsResult interRegions =
        computeStatistics(w.store(), w.request(StatisticsMode::ByInterRegion));
    EXPECT_EQ(summaryOf(interRegions.summary, "c_cod4"), QStringList{"IR1|-|1|5000"});

    // Mode 1 goes down by nature and article.
    const auto byNature = w.request(StatisticsMode::ByNature);
    const store::Rows chaf = articleTotals(w.store(), byNature, natures.summary[0]);
    ASSERT_EQ(chaf.size(), 1u);
    EXPECT_EQ(w.store().select(detailQuery(byNature, chaf[0])).size(), 3u);

    EXPECT_EQ(statisticsModeOf("3"), StatisticsMode::ByCommittee);
    EXPECT_THROW(statisticsModeOf("5"), Refusal);
}

TEST(TurnoverStatistics, CsvListsEachOrganisersArticlesThenItsCumulativeRow) {
    ReportWorld w;
    const QByteArray csv = statisticsCsv(w.store(), w.request(StatisticsMode::ByLeague));
    EXPECT_EQ(QString::fromUtf8(csv.mid(3)),
              "Organisateur;Intitulé;Article;Produits facturés;Quantité;Montant\r\n"
              "R06;-;99999990;Prix d'une ligne;5;5,00\r\n"
              "R06;-;99999991;Engagement par joueur;2;20,00\r\n"
              "R06;Cumul de la facturation;-;-;7;25,00\r\n"
              "R11;-;99999991;Engagement par joueur;1;30,00\r\n"
              "R11;Cumul de la facturation;-;-;1;30,00\r\n"
              "Total;;;;16;112,00\r\n");
    w.store().exec("UPDATE strarticle SET a_libelle = ? WHERE a_index = '99999990'",
                   {"+cmd|' /C calc'!A0"});
    w.store().exec("UPDATE strarticle SET a_libelle = ? WHERE a_index = '99999991'", {"\t-2+3"});
    EXPECT_TRUE(QString::fromUtf8(statisticsCsv(w.store(), w.request(StatisticsMode::ByLeague)))
                    .contains("R06;-;99999990;'+cmd|' /C calc'!A0;5;5,00\r\n"
                              "R06;-;99999991;'\t-2+3;2;20,00\r\n"));
}
