#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <algorithm>
#include <tuple>

#include "app/Session.h"
#include "invoicing/InvoiceDocument.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceLayout.h"
#include "invoicing/InvoiceParties.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/PrinterLookup.h"
#include "store/Refusal.h"
#include "store/Settings.h"
#include "support/DemoInvoices.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

// One word of a PDF as pdftotext -bbox gives it, in twips from the top left.
struct Word {
    int page;
    double x0, y0, x1, y1;
    QString text;
};

// The words of a PDF, page by page, and the lines they make.
class PdfText {
  public:
    explicit PdfText(const QString& path) {
        QString out;
        EXPECT_EQ(test::runProgram("pdftotext", {"-bbox", path, "-"}, {}, &out, nullptr), 0);
        static const QRegularExpression word(
            "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" "
            "yMax=\"([\\d.]+)\">([^<]*)</word>");
        int page = 0;
        for (const QString& line : out.split('\n')) {
            if (line.contains("<page ")) ++page;
            const auto m = word.match(line);
            if (m.hasMatch())
                m_words.push_back({page, m.captured(1).toDouble() * 20,
                                   m.captured(2).toDouble() * 20, m.captured(3).toDouble() * 20,
                                   m.captured(4).toDouble() * 20,
                                   QTextDocumentFragment::fromHtml(m.captured(5)).toPlainText()});
        }
        m_pages = page;
    }
    int pages() const { return m_pages; }
    // Every word that is exactly `text`, top to bottom of each page.
    std::vector<const Word*> findAll(const QString& text) const {
        std::vector<const Word*> out;
        for (const auto& w : m_words)
            if (w.text == text) out.push_back(&w);
        std::sort(out.begin(), out.end(), [](const Word* a, const Word* b) {
            return std::tie(a->page, a->y0) < std::tie(b->page, b->y0);
        });
        return out;
    }
    // The first word that is exactly `text`, from `page` on.
    const Word* find(const QString& text, int page = 1) const {
        for (const auto& w : m_words)
            if (w.page >= page && w.text == text) return &w;
        return nullptr;
    }
    // The words on the same line as w, left to right, joined by blanks.
    QString lineOf(const Word& w, double fromX = 0, double toX = 1e9) const {
        QStringList out;
        for (const auto& o : m_words)
            if (o.page == w.page && std::abs(o.y0 - w.y0) < 60 && o.x0 >= fromX && o.x1 <= toX)
                out << o.text;
        return out.join(' ');
    }
    QString all(int page = 0) const {
        QStringList out;
        for (const auto& w : m_words)
            if (page == 0 || w.page == page) out << w.text;
        return out.join(' ');
    }
    int count(const QString& text) const {
        int n = 0;
        for (const auto& w : m_words) n += w.text == text;
        return n;
    }
    // The words of a region of a page (top-left corners inside it), top to
    // bottom and left to right, joined by blanks: a text broken into lines
    // reads back whole.
    QString region(int page, double left, double right, double top, double bottom) const {
        std::vector<const Word*> in;
        for (const auto& w : m_words)
            if (w.page == page && w.x0 >= left && w.x0 < right && w.y0 >= top && w.y0 < bottom)
                in.push_back(&w);
        std::sort(in.begin(), in.end(), [](const Word* a, const Word* b) {
            if (std::abs(a->y0 - b->y0) >= 60) return a->y0 < b->y0;
            return a->x0 < b->x0;
        });
        QStringList out;
        for (const Word* w : in) out << w->text;
        return out.join(' ');
    }
    const std::vector<Word>& words() const { return m_words; }

  private:
    std::vector<Word> m_words;
    int m_pages = 0;
};

using test::kClubInvoice;
using test::kCommitteeInvoice;
using test::kLeagueInvoice;
using test::kLongInvoice;
const QString& kCreditNote = test::kDemoCreditNote;

struct Fixture {
    test::TestInstall inst;
    std::unique_ptr<app::Session> session;
    DocumentSettings settings;
    explicit Fixture(const QString& login = "gestu") {
        test::application();
        session = inst.startAs(login);
        settings = documentSettings(*session);
    }
    store::Store& store() { return session->store(); }
    QString header(const QString& number, const char* column) {
        return test::headerValue(store(), number, column);
    }
};

}  // namespace

TEST(InvoiceDocument, ClubInvoiceTextsFormatsPlacesAndRecords) {
    Fixture f;
    // The competition row that carries the number is marked with the header.
    f.store().insert("strcompetition", {{"c_index", "FD799009"},
                                        {"c_facture", "A"},
                                        {"c_num_facture", kClubInvoice},
                                        {"c_edt_fact", "NON"},
                                        {"c_envoi_mail", "O"},
                                        {"c_add_tiers", "O"}});
    // A pseudo-competition carrying the same number is not a competition invoiced.
    f.store().insert("strcompetition", {{"c_index", "8FA00097"},
                                        {"c_facture", "X"},
                                        {"c_num_facture", kClubInvoice},
                                        {"c_edt_fact", "NON"},
                                        {"c_envoi_mail", "O"},
                                        {"c_add_tiers", "O"}});
    f.store().exec("UPDATE strentete SET ent_fact_edt = 'N', ent_montant = 0 WHERE ent_fact_no = ?",
                   {kClubInvoice});
    QDir(f.settings.invoiceFolder).removeRecursively();  // made again when missing

    const QString path = generateInvoicePdf(f.store(), f.settings, kClubInvoice);
    EXPECT_EQ(
        QDir::cleanPath(path),
        QDir::cleanPath(QDir(f.settings.invoiceFolder).filePath("CL13001_FN_2027000001.pdf")));
    ASSERT_TRUE(QFile::exists(path));
    EXPECT_EQ(f.header(kClubInvoice, "ent_fact_edt"), "O");
    EXPECT_EQ(f.header(kClubInvoice, "ent_montant"), "80000");
    const auto comp =
        f.store().selectOne("SELECT * FROM strcompetition WHERE c_index = 'FD799009'");
    EXPECT_EQ(comp->value("c_facture").toString(), "F");
    EXPECT_EQ(comp->value("c_edt_fact").toString(), "OUI");
    EXPECT_EQ(comp->value("c_add_tiers").toString(), "N");
    EXPECT_EQ(comp->value("c_envoi_mail").toString(), "N");
    const auto pseudo =
        f.store().selectOne("SELECT * FROM strcompetition WHERE c_index = '8FA00097'");
    EXPECT_EQ(pseudo->value("c_facture").toString(), "X");
    EXPECT_EQ(pseudo->value("c_edt_fact").toString(), "NON");
    EXPECT_EQ(pseudo->value("c_add_tiers").toString(), "O");
    EXPECT_EQ(pseudo->value("c_envoi_mail").toString(), "O");

    PdfText pdf(path);
    EXPECT_EQ(pdf.pages(), 1);
    const Word* title = pdf.find("FACTURE");
    ASSERT_TRUE(title);
    EXPECT_EQ(pdf.lineOf(*title), "FACTURE N° BOW2027000001 du 11/11/2026");
    EXPECT_NEAR(title->x0, 6000, 5);
    EXPECT_NEAR(title->y0, 600, 60);
    // A club gets no "Client concerné" block.
    EXPECT_FALSE(pdf.find("concerné"));
    const Word* billing = pdf.find("Adresse");
    ASSERT_TRUE(billing);
    EXPECT_NEAR(billing->x0, 300, 5);
    EXPECT_NEAR(billing->y0, 2500, 60);
    EXPECT_EQ(pdf.lineOf(*billing, 0, 5000), "Adresse de facturation :");
    const Word* discipline = pdf.find("Discipline");
    EXPECT_NEAR(discipline->x0, 6300, 5);
    EXPECT_NEAR(discipline->y0, 3000, 60);
    EXPECT_EQ(pdf.lineOf(*pdf.find("Interne")), "N° Interne : BW-2027--");

    const Word* head = pdf.find("DESIGNATION");
    EXPECT_NEAR(head->x0, 1500, 5);
    EXPECT_EQ(pdf.lineOf(*head), "DESIGNATION Quantité P.U. Montant HT");
    EXPECT_NEAR(pdf.find("Quantité")->x0, 5500, 5);
    EXPECT_NEAR(pdf.find("P.U.")->x0, 7100, 5);
    EXPECT_NEAR(pdf.find("Montant")->x0, 8600, 5);
    // Rows every 300 twips from 500 below the heads; numbers right-aligned.
    const Word* adult = pdf.find("adulte");
    ASSERT_TRUE(adult);
    EXPECT_EQ(pdf.lineOf(*adult), "Licence adulte 12 45,00 € 540,00 €");
    EXPECT_NEAR(adult->y0 - head->y0, 500 + 300, 40);
    const Word* first = pdf.find("Affiliation");
    EXPECT_NEAR(first->x0, 500, 5);
    EXPECT_NEAR(first->y0 - head->y0, 500, 40);
    EXPECT_EQ(pdf.lineOf(*first), "Affiliation de club 1 120,00 € 120,00 €");
    const Word* qty = nullptr;
    for (const Word* w : pdf.findAll("12"))
        if (std::abs(w->y0 - adult->y0) < 60) qty = w;
    ASSERT_TRUE(qty);
    EXPECT_NEAR(qty->x0, 6000, 5);
    double unitRight = 0, amountRight = 0;
    for (const auto* w = pdf.find("45,00"); w; w = nullptr) unitRight = w->x1;
    EXPECT_GT(unitRight, 6600);
    const Word* euro = pdf.find("540,00");
    amountRight = euro->x1;
    EXPECT_LT(amountRight, 9500);
    EXPECT_GT(amountRight, 8700);

    // Totals, terms, notice, slip and footer.
    EXPECT_EQ(pdf.lineOf(*pdf.find("Acompte"), 7000), "Acompte versé : 0,00 €");
    EXPECT_EQ(pdf.lineOf(*pdf.find("Net"), 7000), "Net à Payer : 800,00 €");
    EXPECT_NEAR(pdf.find("Net")->x0, 7500, 5);
    EXPECT_TRUE(pdf.find("800,00"));
    const QString text = pdf.all();
    // The demo installation's own legal mention.
    EXPECT_TRUE(text.contains("TVA non applicable, art. 293 B du CGI"));
    EXPECT_TRUE(text.contains("Mode de règlement : à réception"));
    EXPECT_TRUE(text.contains("Date échéance : 11/12/2026"));
    EXPECT_TRUE(text.contains("Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N."));
    EXPECT_TRUE(text.contains("GAGNEZ DU TEMPS ! Règlez par virement bancaire."));
    EXPECT_TRUE(text.contains("IBAN : FR76 0000 0000 0000 0000 0000 000"));
    EXPECT_TRUE(text.contains("BIC : BCSPFRPPXXX"));
    const Word* coupon = pdf.find("Coupon");
    EXPECT_NEAR(coupon->x0, 7900, 5);
    EXPECT_NEAR(coupon->y0, 13450, 60);
    EXPECT_EQ(pdf.lineOf(*coupon), "Coupon à joindre à votre règlement");
    EXPECT_TRUE(text.contains("Facture N° : 2027000001"));
    EXPECT_TRUE(text.contains("Date facture : 11/11/2026"));
    EXPECT_TRUE(text.contains("Montant : 800,00 €"));
    // The federation issues the document: named beside the logo and in the footer.
    const auto federation = pdf.findAll("FEDERATION");
    ASSERT_EQ(federation.size(), 2u);
    EXPECT_LT(federation[0]->y0, 1200);
    EXPECT_GT(federation[0]->x0, 3200);
    EXPECT_LT(federation[0]->x1, 6000);
    EXPECT_EQ(pdf.region(1, 3200, 5900, 400, 2300),
              "FEDERATION KVARN 14 rue des Neuf-Quilles, 75010 Paris Tél. : 01 40 00 12 34");
    EXPECT_NEAR(federation[1]->y0, 15500, 60);
    EXPECT_TRUE(text.contains("14 rue des Neuf-Quilles, 75010 Paris"));
    // One page: no page number.
    EXPECT_FALSE(pdf.find("Page"));

    // Regenerating replaces the same file and leaves nothing beside it.
    f.store().exec("UPDATE strcompetition SET c_envoi_mail = 'O' WHERE c_index = 'FD799009'");
    EXPECT_EQ(generateInvoicePdf(f.store(), f.settings, kClubInvoice), path);
    EXPECT_EQ(QDir(f.settings.invoiceFolder).entryList(QDir::Files).join(','),
              "CL13001_FN_2027000001.pdf");
    EXPECT_EQ(f.store()
                  .scalar("SELECT c_envoi_mail FROM strcompetition WHERE c_index = 'FD799009'")
                  .toString(),
              "N");
}

TEST(InvoiceDocument, FreeTextLineDepositAndNegativeNet) {
    Fixture f;
    PdfText pdf(generateInvoicePdf(f.store(), f.settings, kCommitteeInvoice));
    // A free-text line: designation and amount only.
    const Word* location = pdf.find("Location");
    ASSERT_TRUE(location);
    EXPECT_EQ(pdf.lineOf(*location), "Location de la salle pour l'assemblée générale 250,00 €");
    EXPECT_EQ(pdf.lineOf(*pdf.find("Acompte"), 7000), "Acompte versé : 50,00 €");
    EXPECT_EQ(pdf.lineOf(*pdf.find("Net"), 7000), "Net à Payer : 375,00 €");
    EXPECT_FALSE(pdf.find("concerné"));  // a committee

    // A deposit larger than the total leaves a negative amount to pay.
    f.store().exec("UPDATE strentete SET ent_acompte = 100000 WHERE ent_fact_no = ?",
                   {kCommitteeInvoice});
    PdfText over(generateInvoicePdf(f.store(), f.settings, kCommitteeInvoice));
    EXPECT_EQ(over.lineOf(*over.find("Net"), 7000), "Net à Payer : -575,00 €");
    EXPECT_EQ(over.lineOf(*over.find("Acompte"), 7000), "Acompte versé : 1 000,00 €");
    EXPECT_TRUE(over.all().contains("Montant : -575,00 €"));
}

TEST(InvoiceDocument, ClientBlockDependsOnPartyAndOperator) {
    {
        Fixture f;
        PdfText pdf(generateInvoicePdf(f.store(), f.settings, kLeagueInvoice));
        const Word* client = pdf.find("concerné");
        ASSERT_TRUE(client);
        EXPECT_EQ(pdf.lineOf(*client, 5000), "Client concerné : LR06");
        EXPECT_NEAR(pdf.find("Client")->x0, 5400, 5);
        EXPECT_NEAR(client->y0, 2500, 60);
        EXPECT_TRUE(pdf.all().contains("Gérard Castellan 12 boulevard des Platanes"));
    }
    {
        // A committee operator never prints it.
        Fixture f("CD13");
        EXPECT_TRUE(f.settings.committeeOperator());
        PdfText pdf(generateInvoicePdf(f.store(), f.settings, kLeagueInvoice));
        EXPECT_FALSE(pdf.find("concerné"));
    }
    DocumentSettings s;
    EXPECT_FALSE(showsClientBlock("CL13001", s));
    EXPECT_FALSE(showsClientBlock("CD013", s));
    EXPECT_FALSE(showsClientBlock("BOW0131", s));
    EXPECT_TRUE(showsClientBlock("LR06", s));
    s.operatorLeague = "CD13";
    EXPECT_FALSE(showsClientBlock("LR06", s));
}

TEST(InvoiceDocument, CreditNotes) {
    Fixture f;
    // A credit note printed on its own reads as one, with its own due date
    // under the terms and on the slip.
    f.store().exec("UPDATE strentete SET ent_fact_echeance = '05/01/2027' WHERE ent_fact_no = ?",
                   {kCreditNote});
    PdfText single(generateInvoicePdf(f.store(), f.settings, kCreditNote));
    const auto dueDates = single.findAll("échéance");
    ASSERT_EQ(dueDates.size(), 2u);
    EXPECT_EQ(single.lineOf(*dueDates[0], 0, 7000), "Date échéance : 05/01/2027");
    EXPECT_EQ(single.lineOf(*dueDates[1], 7800), "Date échéance : 05/01/2027");
    EXPECT_EQ(single.lineOf(*single.find("AVOIR")), "AVOIR N° BOW2027000004 du 21/11/2026");
    EXPECT_TRUE(single.all().contains("Avoir N° : 2027000004"));
    EXPECT_FALSE(single.find("Acompte"));
    EXPECT_FALSE(single.find("IBAN"));
    EXPECT_EQ(single.lineOf(*single.find("Net"), 7000), "Net à Payer : -425,00 €");
    EXPECT_TRUE(single.all().contains("-250,00 €"));

    // The range run writes only credit notes and marks their headers.
    f.store().exec("UPDATE strentete SET ent_fact_edt = 'N'");
    const auto written = generateCreditNotePdfs(f.store(), f.settings, "2027000001", "2027000009");
    ASSERT_EQ(written.size(), 1u);
    EXPECT_TRUE(written[0].endsWith("/CD013_FN_2027000004.pdf"));
    EXPECT_EQ(f.header(kCreditNote, "ent_fact_edt"), "O");
    EXPECT_EQ(f.header(kClubInvoice, "ent_fact_edt"), "N");
}

TEST(InvoiceDocument, LongInvoiceContinuesWithHeadsRepeated) {
    Fixture f;
    PdfText pdf(generateInvoicePdf(f.store(), f.settings, kLongInvoice));
    ASSERT_EQ(pdf.pages(), 2);
    EXPECT_EQ(pdf.count("DESIGNATION"), 2);
    const Word* head2 = pdf.find("DESIGNATION", 2);
    ASSERT_TRUE(head2);
    EXPECT_EQ(head2->page, 2);
    EXPECT_FALSE(pdf.all(1).contains("Net à Payer"));
    EXPECT_FALSE(pdf.all(1).contains("Coupon"));
    ASSERT_TRUE(pdf.find("Net", 2));
    EXPECT_EQ(pdf.lineOf(*pdf.find("Net", 2), 7000), "Net à Payer : 1 350,00 €");
    EXPECT_TRUE(pdf.all(2).contains("Coupon à joindre"));
    // Every page says which it is, at its foot.
    EXPECT_EQ(pdf.lineOf(*pdf.find("Page", 1)), "Page 1 / 2");
    EXPECT_GT(pdf.find("Page", 1)->y0, 16000);
    EXPECT_EQ(pdf.lineOf(*pdf.find("Page", 2)), "Page 2 / 2");
    // Every line once, in order, and the title on both pages.
    EXPECT_EQ(pdf.count("équipe"), 45);
    EXPECT_EQ(pdf.count("BOW2027000005"), 2);
    EXPECT_LT(pdf.find("45", 1)->page, 3);
    // Pagination keeps a few lines above the totals and never more than fit.
    const auto pages = paginateLines(60, 6500);
    int sum = 0;
    for (int n : pages) sum += n;
    EXPECT_EQ(sum, 60);
    EXPECT_GE(pages.back(), 1);
    EXPECT_EQ(paginateLines(3, 5000), std::vector<int>{3});
    // Heads at 5000: 21 rows fit above the totals, 32 on a full page. Rows
    // that overflow fill the first page but leave at least five to stand
    // above the totals; a short overflow leaves all but one.
    EXPECT_EQ(paginateLines(21, 5000), std::vector<int>{21});
    EXPECT_EQ(paginateLines(22, 5000), (std::vector<int>{17, 5}));
    EXPECT_EQ(paginateLines(37, 5000), (std::vector<int>{32, 5}));
    EXPECT_EQ(paginateLines(38, 5000), (std::vector<int>{32, 6}));
    EXPECT_EQ(paginateLines(3, 11000), (std::vector<int>{1, 2}));

    // As printed: twenty rows, just too many for one page, leave five.
    f.store().exec(
        "DELETE FROM strfacture WHERE f_num_facture = ? AND CAST(f_num_lig AS INTEGER) > 20",
        {paddedInvoiceNumber(kLongInvoice)});
    PdfText twenty(generateInvoicePdf(f.store(), f.settings, kLongInvoice));
    ASSERT_EQ(twenty.pages(), 2);
    EXPECT_EQ(twenty.count("équipe"), 20);
    int secondPage = 0;
    for (const Word* w : twenty.findAll("équipe")) secondPage += w->page == 2;
    EXPECT_EQ(secondPage, 5);
    EXPECT_TRUE(twenty.all(2).contains("équipe 16 "));
    EXPECT_TRUE(twenty.all(2).contains("Net à Payer"));
}

TEST(InvoiceDocument, RefusalsNamesAndPrinterLookup) {
    Fixture f;
    // No line: refused, the header left unmarked.
    InvoiceHeader h;
    h.dateText = "21/11/2026";
    h.nature = "DIV";
    h.competitionIndex = kMiscIndex;
    h.billed.entity = "CD13";
    h.billed.name = "Comité";
    const QString n = createInvoice(f.store(), h, f.inst.today());
    removeLine(f.store(), n, "01");
    f.store().exec("UPDATE strentete SET ent_fact_edt = 'N' WHERE ent_fact_no = ?", {n});
    try {
        generateInvoicePdf(f.store(), f.settings, n);
        FAIL() << "no refusal";
    } catch (const Refusal& r) {
        EXPECT_EQ(r.message(), "aucune ligne sur cette facture");
    }
    EXPECT_EQ(f.header(n, "ent_fact_edt"), "N");

    // An entity code names the file, as the mailing looks for it.
    addLine(f.store(), n);
    EXPECT_TRUE(generateInvoicePdf(f.store(), f.settings, n)
                    .endsWith("/CD13_FN_" + paddedInvoiceNumber(n) + ".pdf"));
    EXPECT_EQ(invoicePdfPath("C:\\factures\\", "CD044", " ", "58"),
              "C:/factures/CD044_FN_00000058.pdf");

    const QStringList printers{"HP LaserJet", "PDF Writer - bioPDF", "Brother"};
    EXPECT_EQ(findPrinter(printers, "pdf writer - biopdf"), 1);
    EXPECT_EQ(findPrinter(printers, "*biopdf"), 1);
    EXPECT_EQ(findPrinter(printers, "hp*"), 0);
    EXPECT_EQ(findPrinter(printers, "Brothe?"), 2);
    EXPECT_EQ(findPrinter(printers, "PDF"), -1);
    EXPECT_EQ(findPrinter(printers, "a.b"), -1);
    EXPECT_EQ(printerNotFoundMessage("bioPDF"), "No printer was found by the name of 'bioPDF'.");
}

TEST(InvoiceDocument, BatchCommand) {
    test::TestInstall inst;
    QString out, err;
    EXPECT_EQ(test::runProgram(
                  ORVE_BATCH,
                  {"--home", inst.home(), "--as", "gestu", "pdf", kClubInvoice, kLeagueInvoice}, {},
                  &out, &err),
              0)
        << qPrintable(err);
    EXPECT_TRUE(out.contains("CL13001_FN_2027000001.pdf")) << qPrintable(out);
    EXPECT_TRUE(out.contains("LR06_FN_2027000003.pdf"));
    EXPECT_EQ(test::runProgram(ORVE_BATCH,
                               {"--home", inst.home(), "--as", "gestu", "pdf", "--credit-notes",
                                "2027000001", "2027000009"},
                               {}, &out, &err),
              0);
    EXPECT_TRUE(out.contains("CD013_FN_2027000004.pdf")) << qPrintable(out);
    EXPECT_EQ(
        test::runProgram(ORVE_BATCH, {"--home", inst.home(), "--as", "gestu", "pdf", "424242"}, {},
                         &out, &err),
        1);
    EXPECT_TRUE((out + err).contains("La facture N° 424242 n'existe pas."))
        << qPrintable(out + err);
}

namespace {

// An invoice of `lines` lines to a party, under a competition title.
QString invoiceTo(store::Store& store, const QDate& today, const InvoiceParty& billed,
                  const InvoiceParty& client, const QString& title, int lines,
                  const QString& longLine = {}) {
    InvoiceHeader h;
    h.dateText = "21/11/2026";
    h.nature = "JORE";
    h.competitionIndex = kRegionalDayIndex;
    h.competitionTitle = title;
    h.billed = billed;
    h.client = client;
    const QString n = createInvoice(store, h, today);
    updateLine(store, n, "01",
               {"00000001", longLine.isEmpty() ? QString("Engagement équipe 1") : longLine, 1,
                Money::fromCents(1500)});
    for (int i = 2; i <= lines; ++i)
        appendLine(store, n,
                   {"00000001", QString("Engagement équipe %1").arg(i), 2, Money::fromCents(1500)});
    return n;
}

}  // namespace

TEST(InvoiceDocument, LongTitlesNamesAndAddressesWrapAndNeverOverprint) {
    Fixture f;
    // 120 characters, blanks between its words.
    const QString title =
        "Championnat régional des clubs de la ligue, doublettes mixtes, individuels et équipes, "
        "phase finale de la saison 2026-27";
    ASSERT_EQ(title.size(), 120);
    const QString longLine =
        "Participation aux frais d'organisation de la phase finale régionale, arbitrage, "
        "location des pistes et remise des trophées";

    // The demo's longest league name invoiced on behalf of its longest committee name.
    const QString league =
        f.store()
            .scalar("SELECT re_code FROM strregion ORDER BY length(re_lib) DESC, re_code LIMIT 1")
            .toString();
    const QString committee =
        f.store()
            .scalar("SELECT de_no FROM strdept ORDER BY length(de_lib) DESC, de_no LIMIT 1")
            .toString();
    const InvoiceParty billed = leagueParty(f.store(), league);
    const InvoiceParty client = committeeParty(f.store(), committee, AddressBlock::OnBehalfOf);
    // And a name and an address longer than any place on the page.
    const InvoiceParty typed = otherParty(
        {"Association sportive et culturelle des quilleurs réunis de la vallée de la Durance et "
         "du Verdon",
         "Monsieur le Président Jean-Baptiste de La Tour-Maubourg-Villeneuve",
         "Résidence les Terrasses du Parc, bâtiment C, escalier 4, appartement 1207", "", "", "",
         "04100 Manosque-les-Plateaux-de-Haute-Provence"},
        "", "");

    for (const auto& [party, onBehalf] :
         {std::pair{billed, client}, std::pair{typed, InvoiceParty{}}}) {
        SCOPED_TRACE(party.name.toStdString());
        const QString n = invoiceTo(f.store(), f.inst.today(), party,
                                    onBehalf.isChosen() ? onBehalf : party, title, 45, longLine);
        PdfText pdf(generateInvoicePdf(f.store(), f.settings, n));
        ASSERT_EQ(pdf.pages(), 2);
        EXPECT_EQ(pdf.lineOf(*pdf.find("Page", 2)), "Page 2 / 2");
        const Word* head = pdf.find("DESIGNATION");
        ASSERT_TRUE(head);
        // The whole title, on as many lines as it takes, in its column.
        const QString competition = pdf.region(1, 6200, 11906, 2400, head->y0 - 200);
        EXPECT_TRUE(competition.contains("Compétition : " + title + " du "))
            << qPrintable(competition);
        EXPECT_TRUE(competition.contains("N° Interne : BW-"));
        // Each line of the billing block whole, left of the client block.
        const QString billing = pdf.region(1, 0, 5300, 2400, head->y0 - 200);
        for (const QString& line :
             {party.name, party.president, party.address1, party.postcodeTown})
            if (!line.trimmed().isEmpty())
                EXPECT_TRUE(billing.contains(line.simplified())) << qPrintable(billing);
        // The designation of a row whole, inside its column.
        EXPECT_TRUE(pdf.region(1, 400, 5300, head->y0 + 300, 16000).contains(longLine));
        // The slip names the party whole, inside its frame.
        const QString slip = pdf.region(2, 7800, 11300, 13300, 15300);
        EXPECT_TRUE(slip.contains("Client : " + party.name.simplified())) << qPrintable(slip);
        // Nothing runs over a column, a frame or the page's edge.
        for (const Word& w : pdf.words()) {
            EXPECT_LT(w.x1, 11906 - 250) << qPrintable(w.text);
            if (w.page == 1 && w.y0 > 2400 && w.y0 < head->y0 - 200 && w.x0 < 5300)
                EXPECT_LT(w.x1, client.isChosen() && onBehalf.isChosen() ? 5400 : 6300)
                    << qPrintable(w.text);
            if (w.y0 > 13300 && w.y0 < 15300 && w.x0 > 7800)
                EXPECT_LT(w.x1, 11300) << qPrintable(w.text);
            if (w.page == 1 && w.x0 >= 400 && w.x0 < 5300 && w.y0 > head->y0 && w.y0 < 15200)
                EXPECT_LT(w.x1, 5300) << qPrintable(w.text);
        }
    }

    // A name no size can hold on the slip is cut with "…" above the invoice
    // number, which stays readable.
    const InvoiceParty huge =
        otherParty({QStringLiteral("Association des quilleurs réunis ").repeated(16)}, "", "");
    const QString n = invoiceTo(f.store(), f.inst.today(), huge, huge, title, 3);
    PdfText pdf(generateInvoicePdf(f.store(), f.settings, n));
    const int last = pdf.pages();
    const Word* number = nullptr;
    for (const Word* w : pdf.findAll("Facture"))
        if (w->page == last && w->x0 > 7800 && w->y0 > 13300) number = w;
    ASSERT_TRUE(number);
    EXPECT_EQ(pdf.lineOf(*number, 7800), "Facture N° : " + n);
    const QString slip = pdf.region(last, 7800, 11300, 13300, number->y0 - 30);
    EXPECT_TRUE(slip.startsWith("Coupon à joindre à votre règlement Client : Association des"));
    EXPECT_TRUE(slip.endsWith(QStringLiteral("…"))) << qPrintable(slip);
    for (const Word& w : pdf.words())
        if (w.page == last && w.x0 > 7800 && w.y0 > 13300 && w.y0 < number->y0 - 30)
            EXPECT_LE(w.y1, number->y0 + 10) << qPrintable(w.text);
}

TEST(InvoiceDocument, LegalMentionsAndPaymentNoticesAreTheInstallations) {
    Fixture f;
    // Nothing set: the texts printed so far, no late-payment mention.
    {
        orve::store::Settings ini(f.session->settingsPath());
        ini.remove("mentions");
    }
    f.settings = documentSettings(*f.session);
    {
        PdfText pdf(generateInvoicePdf(f.store(), f.settings, kClubInvoice));
        const QString text = pdf.all();
        EXPECT_TRUE(text.contains("TVA NON APPLICABLE"));
        EXPECT_FALSE(text.contains("Pénalités"));
        EXPECT_FALSE(text.contains("Indemnité"));
        EXPECT_TRUE(text.contains("Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N."));
        EXPECT_TRUE(text.contains("GAGNEZ DU TEMPS ! Règlez par virement bancaire."));
    }
    {
        orve::store::Settings ini(f.session->settingsPath());
        ini.setValue("mentions/tva", "TVA non applicable, art. 293 B du CGI");
        ini.setValue("mentions/penalites",
                     "Pénalités de retard : trois fois le taux d'intérêt légal");
        ini.setValue("mentions/indemnite",
                     "Indemnité forfaitaire pour frais de recouvrement : 40 €");
        ini.setValue("federation/ordre_reglement", "Règlements à l'ordre de la Fédération KVARN");
        ini.setValue("federation/avis_virement", "Préférez le virement bancaire.");
    }
    f.settings = documentSettings(*f.session);
    PdfText pdf(generateInvoicePdf(f.store(), f.settings, kClubInvoice));
    const QString text = pdf.all();
    EXPECT_FALSE(text.contains("TVA NON APPLICABLE"));
    EXPECT_FALSE(text.contains("K.V.A.R.N."));
    EXPECT_FALSE(text.contains("GAGNEZ"));
    EXPECT_TRUE(text.contains("Règlements à l'ordre de la Fédération KVARN"));
    EXPECT_TRUE(text.contains("Préférez le virement bancaire."));
    // Under the totals, one under the other, left of them.
    const Word* net = pdf.find("Net");
    const Word* vat = pdf.find("293");
    const Word* penalties = pdf.find("Pénalités");
    const Word* fee = pdf.find("Indemnité");
    ASSERT_TRUE(net && vat && penalties && fee);
    EXPECT_EQ(pdf.lineOf(*vat, 0, 7000), "TVA non applicable, art. 293 B du CGI");
    EXPECT_EQ(pdf.lineOf(*penalties, 0, 7000),
              "Pénalités de retard : trois fois le taux d'intérêt légal");
    EXPECT_EQ(pdf.lineOf(*fee, 0, 7000), "Indemnité forfaitaire pour frais de recouvrement : 40 €");
    EXPECT_GT(vat->y0, pdf.find("DESIGNATION")->y0);
    EXPECT_LT(vat->y0, penalties->y0);
    EXPECT_LT(penalties->y0, fee->y0);
    EXPECT_LT(fee->y0, pdf.find("Domiciliation")->y0);
    EXPECT_LT(fee->x1, 7500);
    EXPECT_LT(std::abs(vat->y0 - net->y0), 900);

    // A credit note owes nothing: the VAT mention only.
    PdfText credit(generateInvoicePdf(f.store(), f.settings, kCreditNote));
    EXPECT_TRUE(credit.all().contains("TVA non applicable, art. 293 B du CGI"));
    EXPECT_FALSE(credit.all().contains("Pénalités"));
    EXPECT_FALSE(credit.all().contains("Indemnité"));

    // An installation that wants no VAT mention at all says so with an empty value.
    orve::store::Settings(f.session->settingsPath()).setValue("mentions/tva", "");
    f.settings = documentSettings(*f.session);
    EXPECT_FALSE(
        PdfText(generateInvoicePdf(f.store(), f.settings, kClubInvoice)).all().contains("TVA"));
}
