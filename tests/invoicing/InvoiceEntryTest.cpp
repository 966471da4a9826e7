#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/Session.h"
#include "invoicing/InvoiceEntry.h"
#include "invoicing/InvoiceParties.h"
#include "store/Refusal.h"
#include "support/DemoInvoices.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

// The demo's licence invoice of club CL13001: 1 affiliation (120,00), 12 adult
// (45,00), 5 young (22,00) and 3 discovery (10,00) licences.
const QString kLicenceInvoice = "2027000001";

struct Fixture {
    test::TestInstall inst;
    std::unique_ptr<app::Session> session = inst.startAs("gestu");
    store::Store& store() { return session->store(); }
    QString header(const QString& number, const char* column) {
        return test::headerValue(store(), number, column);
    }
    int headers() { return store().scalar("SELECT COUNT(*) FROM strentete").toInt(); }
    SelectionCondition season2027(const QString& nature = {}) {
        SelectionState s;
        s.season = "2027";
        if (!nature.isEmpty()) s.nature = nature;
        return buildSelectionCondition(s);
    }
};

EntryHeaderState clubState(store::Store& store, const QString& date = "21/11/2026") {
    EntryHeaderState s;
    s.dateText = date;
    s.billed = clubParty(store, "CL13001");
    return s;
}

}  // namespace

TEST(InvoiceEntry, ModesDecideNatureIndexFilterAndQuestions) {
    const EntryMode lic = entryMode("LIC");
    EXPECT_EQ(lic.natureType, "LI");
    EXPECT_EQ(lic.nature, "LIC");
    EXPECT_EQ(lic.competitionIndex, "8FA00000");
    EXPECT_EQ(lic.competitionFilter, "X");
    EXPECT_TRUE(lic.manual);
    EXPECT_FALSE(lic.asksCompetitionData);
    EXPECT_EQ(lic.presetText, "Bordereau N° ");

    EXPECT_EQ(entryMode("DIV").competitionIndex, "8FA00001");
    EXPECT_EQ(entryMode("DIV").natureType, "DV");
    EXPECT_TRUE(entryMode("LI").asksCompetitionData);
    EXPECT_EQ(entryMode("LI").competitionIndex, "8FA00005");
    EXPECT_TRUE(entryMode("JORE").asksCompetitionData);
    EXPECT_EQ(entryMode("JORE").competitionIndex, "8FA00006");
    EXPECT_EQ(entryMode("JORE").natureType, "JO");
    EXPECT_EQ(entryMode("PRIVE").competitionFilter, "X");
    EXPECT_TRUE(entryMode("PRIVE").presetText.isEmpty());

    const EntryMode compet = entryMode("COMPET");
    EXPECT_EQ(compet.competitionFilter, " ");
    EXPECT_FALSE(compet.manual);
    EXPECT_EQ(compet.natureType, "FD");
    EXPECT_THROW(entryMode("XYZ"), Refusal);
}

TEST(InvoiceEntry, ListingHoldsOneRowPerLineWithTotalsAndFilters) {
    Fixture f;
    const EntryMode lic = entryMode("LIC");
    // Every filter on "Tous": "X" lists the invoices of every
    // pseudo-competition of the season, whichever mode is open.
    ListingTotals t = refreshInvoiceListing(f.store(), lic, f.season2027());
    EXPECT_EQ(t.rows, 4 + 6 + 2 + 45);
    // The demo's pseudo-competitions are those of the working season.
    t = refreshInvoiceListing(f.store(), lic, f.season2027("LIC"));
    EXPECT_EQ(t.rows, 4);
    EXPECT_EQ(t.quantity, 21);
    EXPECT_EQ(t.amount.cents(), 80000);
    EXPECT_EQ(totalAmountText(t.amount), "Montant facturé : 800,00 €");
    EXPECT_EQ(totalQuantityText(1234), "Quantité facturée : 1 234");

    store::Store& tri = f.store().scratch();
    const auto rows = tri.select(invoiceListingQuery());
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].value("c_index").toString(), "8FA00000");
    EXPECT_EQ(rows[0].value("c_num_facture").toString(), kLicenceInvoice);
    EXPECT_EQ(rows[0].value("c_date_facture").toString(), "11/11/2026");
    EXPECT_EQ(rows[0].value("c_tri_facture").toString(), "20261111");
    EXPECT_EQ(rows[0].value("f_libelle").toString(), "Affiliation de club");
    EXPECT_EQ(rows[1].value("f_qte").toInt(), 12);
    EXPECT_EQ(rows[1].value("f_pu").toInt(), 4500);
    EXPECT_EQ(rows[1].value("f_montant").toInt(), 54000);
    EXPECT_EQ(rows[0].value("ent_envoi_mail").toString(), "N");

    // Nothing of another season, another month or another number.
    SelectionState other;
    other.season = "2026";
    EXPECT_EQ(refreshInvoiceListing(f.store(), lic, buildSelectionCondition(other)).rows, 0);
    EXPECT_EQ(tri.scalar("SELECT COUNT(*) FROM strcompetition").toInt(), 0);
    SelectionState month;
    month.season = "2027";
    month.month = "10/2026";
    EXPECT_EQ(refreshInvoiceListing(f.store(), lic, buildSelectionCondition(month)).rows, 0);
    month.month = "11/26";
    month.nature = "LIC";
    EXPECT_EQ(refreshInvoiceListing(f.store(), lic, buildSelectionCondition(month)).rows, 4);
    SelectionState number;
    number.season = "2027";
    number.nature = "LIC";
    number.invoiceNumber = "2027000003";
    EXPECT_EQ(refreshInvoiceListing(f.store(), lic, buildSelectionCondition(number)).rows, 0);

    // A credit note is listed with its invoice and cancels it in the totals;
    // the cancelled invoice's rows show the credit note's date.
    t = refreshInvoiceListing(f.store(), entryMode("DIV"), f.season2027("DIV"));
    EXPECT_EQ(t.rows, 6);
    EXPECT_EQ(t.amount.cents(), 0);
    EXPECT_EQ(t.quantity, 0);
    for (const auto& r : tri.select("SELECT c_date_facture, c_tri_facture FROM strcompetition "
                                    "WHERE c_num_facture = '2027000002'")) {
        EXPECT_EQ(r.value(0).toString(), "21/11/2026");
        EXPECT_EQ(r.value(1).toString(), "20261121");
    }
    // The register's competitions are not the pseudo-competitions.
    const ListingTotals compet =
        refreshInvoiceListing(f.store(), entryMode("COMPET"), f.season2027());
    EXPECT_EQ(tri.scalar("SELECT COUNT(*) FROM strcompetition WHERE c_index LIKE '8FA%'").toInt(),
              0);
    EXPECT_EQ(compet.rows, tri.scalar("SELECT COUNT(*) FROM strcompetition").toInt());
}

TEST(InvoiceEntry, TicksAreKeptPerInvoiceInTheWorkstationListing) {
    Fixture f;
    refreshInvoiceListing(f.store(), entryMode("LI"), f.season2027());
    EXPECT_TRUE(tickedInvoices(f.store()).empty());
    setListingTick(f.store(), "2027000003", true);
    // Two lines, one invoice.
    EXPECT_EQ(
        f.store().scratch().scalar("SELECT COUNT(*) FROM strcompetition WHERE c_edt = 'X'").toInt(),
        2);
    EXPECT_EQ(tickedInvoices(f.store()), std::vector<QString>{"2027000003"});
    EXPECT_EQ(f.store().scratch().select(invoiceListingQuery(true)).size(), 2u);
    // Nothing shared carries the tick.
    EXPECT_EQ(f.store().scalar("SELECT COUNT(*) FROM strcompetition WHERE c_edt = 'X'").toInt(), 0);
    setListingTick(f.store(), "2027000003", false);
    EXPECT_TRUE(tickedInvoices(f.store()).empty());
    setListingTick(f.store(), "2027000003", true);
    refreshInvoiceListing(f.store(), entryMode("LI"), f.season2027());
    EXPECT_TRUE(tickedInvoices(f.store()).empty());
}

TEST(InvoiceEntry, ArticlesTariffsAndEditedLines) {
    Fixture f;
    const app::ListItems lic = articleItems(f.store(), "LIC");
    ASSERT_EQ(lic.size(), 6u);
    EXPECT_EQ(lic[0].code, "00000001");
    EXPECT_EQ(lic[3].code, "00000004");
    EXPECT_EQ(lic[4].code, "00000012");  // the federal tax goes with every nature
    EXPECT_EQ(lic[5].code, kFreeTextArticle);
    EXPECT_EQ(lic[5].label, "Texte libre");
    EXPECT_EQ(articleItems(f.store(), "DIV").size(), 5u);
    EXPECT_EQ(nameFirstText(lic[0]), "Licence adulte # 00000001");

    EXPECT_EQ(articleTariff(f.store(), "00000001", "2027", "LIC")->cents(), 4500);
    EXPECT_EQ(articleTariff(f.store(), "00000001", "2026", "LIC")->cents(), 4320);
    EXPECT_FALSE(articleTariff(f.store(), "00000001", "2030", "LIC"));
    EXPECT_FALSE(articleTariff(f.store(), "00000001", "2027", "DIV"));
    EXPECT_EQ(articleTariff(f.store(), "00000012", "2027", "LIC")->cents(), 300);
    EXPECT_FALSE(articleTariff(f.store(), "00000012", "2030", "LIC"));

    InvoiceLine l = editedLine(f.store(), "00000002", "3", "22,00", "Bordereau N° 77");
    EXPECT_EQ(l.text, "Licence jeune (moins de 18 ans)");
    EXPECT_EQ(l.amount().cents(), 6600);
    l = editedLine(f.store(), kFreeTextArticle, "1", "15", "  Bordereau N° 77 ");
    EXPECT_EQ(l.text, "Bordereau N° 77");
    EXPECT_EQ(l.unitPrice.cents(), 1500);
    EXPECT_THROW(editedLine(f.store(), "", "1", "1", ""), Refusal);
    EXPECT_THROW(editedLine(f.store(), "00000002", "1,5", "1", ""), Refusal);
    EXPECT_THROW(editedLine(f.store(), "00000002", "1", "abc", ""), Refusal);
    EXPECT_THROW(editedLine(f.store(), kFreeTextArticle, "1", "1", " "), Refusal);
}

TEST(InvoiceEntry, HeaderIsCreatedModifiedAndItsLinesTotalled) {
    Fixture f;
    const int before = f.headers();
    const EntryMode lic = entryMode("LIC");
    // Refusals write nothing.
    EXPECT_THROW(saveEntryHeader(f.store(), lic, clubState(f.store(), ""), {}, f.inst.today()),
                 Refusal);
    EXPECT_THROW(
        saveEntryHeader(f.store(), lic, clubState(f.store(), "31/02/2026"), {}, f.inst.today()),
        Refusal);
    EntryHeaderState nobody;
    nobody.dateText = "21/11/2026";
    EXPECT_THROW(saveEntryHeader(f.store(), lic, nobody, {}, f.inst.today()), Refusal);
    EntryHeaderState badDeposit = clubState(f.store());
    badDeposit.depositText = "dix";
    EXPECT_THROW(saveEntryHeader(f.store(), lic, badDeposit, {}, f.inst.today()), Refusal);
    // The register's competitions need the competition named in the panel.
    EXPECT_THROW(
        saveEntryHeader(f.store(), entryMode("COMPET"), clubState(f.store()), {}, f.inst.today()),
        Refusal);
    EXPECT_EQ(f.headers(), before);

    EntryHeaderState s = clubState(f.store());
    s.depositText = "12,50";
    const QString number = saveEntryHeader(f.store(), lic, s, {}, f.inst.today());
    EXPECT_EQ(number, "2027000012");
    EXPECT_EQ(f.header(number, "ent_c_index"), "8FA00000");
    EXPECT_EQ(f.header(number, "ent_nature"), "LIC");
    EXPECT_EQ(f.header(number, "ent_fact_competition"), "Licence Saison 2026-2027");
    EXPECT_EQ(f.header(number, "ent_tiers_fact"), "CL13001");
    EXPECT_EQ(f.header(number, "ent_clt_lib"), f.header(number, "ent_fact_lib"));
    EXPECT_EQ(f.header(number, "ent_acompte"), "1250");

    // The first line is replaced by the edited one; the type follows the total.
    InvoiceTotal t = writeEditedLine(f.store(), number, "01",
                                     editedLine(f.store(), "00000001", "2", "45,00", ""));
    EXPECT_EQ(t.total.cents(), 9000);
    EXPECT_EQ(t.type, "F");
    t = writeEditedLine(f.store(), number, "01",
                        editedLine(f.store(), kFreeTextArticle, "-1", "12,50", "Remise"));
    EXPECT_EQ(t.type, "A");
    EXPECT_EQ(f.header(number, "ent_fact_type"), "A");

    // Modified under the same number, with another date and party.
    s = clubState(f.store(), "22/11/2026");
    s.depositText = "7";
    s.billed =
        otherParty({"M. Martin", "", "1 rue Haute", "", "", "", "13001 - Marseille"}, "m@x.fr", "");
    EXPECT_EQ(saveEntryHeader(f.store(), lic, s, number, f.inst.today()), number);
    EXPECT_EQ(f.header(number, "ent_fact_type"), "A");  // still a credit by its lines
    EXPECT_EQ(f.headers(), before + 1);
    EXPECT_EQ(f.header(number, "ent_fact_date"), "22/11/2026");
    EXPECT_EQ(f.header(number, "ent_fact_entite"), "AUTRE");
    EXPECT_EQ(f.header(number, "ent_tiers_fact").trimmed(), "");

    const EntryInvoice back = loadEntryInvoice(f.store(), number);
    EXPECT_EQ(back.state.dateText, "22/11/2026");
    EXPECT_EQ(back.state.billed.name, "M. Martin");
    EXPECT_EQ(back.state.billed.entity, "AUTRE");
    EXPECT_EQ(back.state.billed.mail1, "m@x.fr");
    EXPECT_EQ(back.state.depositText, "7,00");
    ASSERT_EQ(back.lines.size(), 1u);
    EXPECT_EQ(back.lines[0].text, "Remise");
    EXPECT_THROW(loadEntryInvoice(f.store(), "123"), Refusal);

    // An invoice brought back and saved keeps its due date and its lines.
    const QString due = f.header(kLicenceInvoice, "ent_fact_echeance");
    ASSERT_NE(due, f.header(kLicenceInvoice, "ent_fact_date"));
    const EntryInvoice demo = loadEntryInvoice(f.store(), kLicenceInvoice);
    saveEntryHeader(f.store(), lic, demo.state, kLicenceInvoice, f.inst.today());
    EXPECT_EQ(f.header(kLicenceInvoice, "ent_fact_echeance"), due);
    EXPECT_EQ(f.header(kLicenceInvoice, "ent_fact_type"), "F");
    EXPECT_EQ(readLines(f.store(), kLicenceInvoice).size(), 4u);
}

TEST(InvoiceEntry, LeagueAndDayInvoicesTakeTheTypedCompetition) {
    Fixture f;
    const int before = f.headers();
    EntryHeaderState s;
    s.dateText = "21/11/2026";
    s.billed = leagueParty(f.store(), "LR06");
    EXPECT_THROW(saveEntryHeader(f.store(), entryMode("LI"), s, {}, f.inst.today()), Refusal);
    EXPECT_EQ(f.headers(), before);
    s.competitionNumber = "K-2027-014";
    s.competitionTitle = "Ligue Provence du 14/11/2026";
    const QString number = saveEntryHeader(f.store(), entryMode("LI"), s, {}, f.inst.today());
    EXPECT_EQ(f.header(number, "ent_fact_competition"), "Ligue Provence du 14/11/2026");
    EXPECT_EQ(f.header(number, "ent_c_codification"), "K-2027-014");
    EXPECT_EQ(f.header(number, "ent_c_index"), "8FA00005");
    EXPECT_EQ(f.header(number, "ent_nature"), "LI");
    const EntryInvoice back = loadEntryInvoice(f.store(), number);
    EXPECT_EQ(back.state.competitionTitle, "Ligue Provence du 14/11/2026");
    EXPECT_EQ(back.state.competitionNumber, "K-2027-014");
}

TEST(InvoiceEntry, TheDocumentNameIsShownOnlyOnceTheFileIsThere) {
    Fixture f;
    QTemporaryDir folder;
    EXPECT_EQ(existingDocumentName(f.store(), folder.path(), kLicenceInvoice), "");
    QFile file(QDir(folder.path()).filePath("CL13001_FN_2027000001.pdf"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(existingDocumentName(f.store(), folder.path(), kLicenceInvoice),
              "CL13001_FN_2027000001.pdf");
    EXPECT_EQ(existingDocumentName(f.store(), folder.path(), "2027000003"), "");
    EXPECT_EQ(existingDocumentName(f.store(), folder.path(), "77"), "");
}
