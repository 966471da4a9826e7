#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QRegularExpression>
#include <QTextDocumentFragment>

#include "app/Session.h"
#include "invoicing/CreditNotes.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Refusal.h"
#include "support/DemoInvoices.h"
#include "support/TestInstall.h"
#include "support/TestServer.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

using test::kClubInvoice;
using test::kCommitteeInvoice;
using test::kDemoCreditNote;
using test::kLeagueInvoice;
using test::kLongInvoice;
using test::kMarker;

struct Fixture {
    test::TestInstall inst;
    std::unique_ptr<app::Session> session = inst.startAs("gestu");
    store::Store& store() { return session->store(); }
    QDate today() const { return inst.today(); }
    QString header(const QString& number, const char* column) {
        return test::headerValue(store(), number, column);
    }
    int count(const QString& sql, const store::Params& params = {}) {
        return store().scalar(sql, params).toInt();
    }
    int headers() { return count("SELECT COUNT(*) FROM strentete"); }
    int lines() { return count("SELECT COUNT(*) FROM strfacture"); }
    QString creditNoteOf(const QString& invoice) {
        return store()
            .scalar("SELECT ent_fact_no FROM strentete WHERE ent_fact_origine = ?", {invoice})
            .toString();
    }
};

QString next(const QString& number, int step = 1) {
    return QString::number(number.toLongLong() + step);
}

// A club invoice of three lines, one of them free text, with a deposit.
QString threeLineInvoice(store::Store& s, const QDate& date) {
    InvoiceHeader h;
    h.dateText = "05/11/2026";
    h.dueDateText = "05/12/2026";
    h.nature = "DIV";
    h.competitionIndex = kMiscIndex;
    h.competitionTitle = "Facture Divers";
    h.billed.account = "CL13002";
    h.billed.name = "Les Quilles d'Aix";
    h.billed.mail1 = "contact@quilles-aix.example";
    h.client = h.billed;
    h.deposit = Money::fromCents(1000);
    const QString n = createInvoice(s, h, date);
    updateLine(s, n, "01", {"00000005", "Frais de dossier", 2, Money::fromCents(1500)});
    appendLine(s, n, {"00000006", "Formation d'arbitre", 3, Money::fromCents(8000)});
    appendLine(s, n, {kFreeTextArticle, "Prêt de matériel", 1, Money::fromCents(4250)});
    return n;
}

// The lines of a PDF as pdftotext -bbox places its words: words whose tops
// stand within 60 twips are one line, read left to right.
struct PdfLine {
    int page;
    double y, x;  // twips from the top left
    QString text;
};
std::vector<PdfLine> pdfLines(const QString& path) {
    QString out;
    EXPECT_EQ(test::runProgram("pdftotext", {"-bbox", path, "-"}, {}, &out, nullptr), 0);
    static const QRegularExpression word(
        "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"[\\d.]+\" "
        "yMax=\"[\\d.]+\">([^<]*)</word>");
    std::vector<PdfLine> lines;
    int page = 0;
    for (const QString& l : out.split('\n')) {
        if (l.contains("<page ")) ++page;
        const auto m = word.match(l);
        if (!m.hasMatch()) continue;
        const double x = m.captured(1).toDouble() * 20, y = m.captured(2).toDouble() * 20;
        const QString text = QTextDocumentFragment::fromHtml(m.captured(3)).toPlainText();
        auto it = std::find_if(lines.begin(), lines.end(), [&](const PdfLine& p) {
            return p.page == page && std::abs(p.y - y) < 60 && x > p.x;
        });
        if (it == lines.end())
            lines.push_back({page, y, x, text});
        else
            it->text += ' ' + text;
    }
    return lines;
}
const PdfLine* lineStarting(const std::vector<PdfLine>& lines, const QString& start) {
    for (const auto& l : lines)
        if (l.text.startsWith(start)) return &l;
    return nullptr;
}

}  // namespace

TEST(CreditNotes, LinesNegatedRenumberedAndHeaderCopied) {
    Fixture f;
    const QString invoice = threeLineInvoice(f.store(), f.today());
    // A line of the workstation's invoice list showing that invoice.
    f.store().scratch().insert("strcompetition", {{"c_index", kMiscIndex},
                                                  {"c_num_facture", invoice},
                                                  {"c_date_facture", "05/11/2026"},
                                                  {"c_tri_facture", "20261105"}});

    const QDate day(2026, 11, 24);
    const auto issued = issueCreditNotes(f.store(), {invoice}, day);
    ASSERT_EQ(issued.size(), 1u);
    const QString note = issued[0].creditNote;
    EXPECT_EQ(issued[0].invoice, invoice);
    EXPECT_EQ(note, next(invoice));

    const auto original = readLines(f.store(), invoice);
    const auto lines = readLines(f.store(), note);
    ASSERT_EQ(lines.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(lines[i].number, QStringLiteral("0%1").arg(i + 1));
        EXPECT_EQ(lines[i].article, original[i].article);
        EXPECT_EQ(lines[i].text, original[i].text);
        EXPECT_EQ(lines[i].quantity, -original[i].quantity);
        EXPECT_EQ(lines[i].unitPrice, original[i].unitPrice);
        EXPECT_EQ(lines[i].amount, -original[i].amount);
    }
    EXPECT_EQ(f.count("SELECT COUNT(*) FROM strfacture WHERE f_num_lig = '99'"), 0);
    // Lines carry the credit note's date and the parties of the invoice's lines.
    EXPECT_EQ(f.count("SELECT COUNT(*) FROM strfacture WHERE f_num_facture = ? AND f_date_fact = "
                      "'24/11/2026' AND f_tri_date = '20261124' AND f_tiers_fact = 'CL13002' AND "
                      "f_nature = 'DIV' AND f_index_compet = ?",
                      {paddedInvoiceNumber(note), kMiscIndex}),
              3);

    // The header: its own dates, type "A", the invoice's parties and total negated.
    EXPECT_EQ(f.header(note, "ent_fact_type"), "A");
    EXPECT_EQ(f.header(note, "ent_fact_date"), "24/11/2026");
    EXPECT_EQ(f.header(note, "ent_fact_echeance"), "24/11/2026");
    EXPECT_EQ(f.header(note, "ent_montant").toLongLong(), -(3000 + 24000 + 4250));
    EXPECT_EQ(f.header(note, "ent_fact_edt"), "N");
    EXPECT_EQ(f.header(note, "ent_fact_origine"), invoice);
    for (const char* column :
         {"ent_fact_lib", "ent_fact_mail1", "ent_tiers_fact", "ent_fact_entite", "ent_tiers_clt",
          "ent_clt_lib", "ent_fact_competition", "ent_c_index", "ent_nature"})
        EXPECT_EQ(f.header(note, column), f.header(invoice, column)) << column;
    EXPECT_EQ(updateTotal(f.store(), note).type, "A");

    // The cancelled invoice is left as it was; its list row shows the credit note's date.
    EXPECT_EQ(f.header(invoice, "ent_fact_type"), "F");
    EXPECT_EQ(readLines(f.store(), invoice).size(), 3u);
    EXPECT_EQ(f.store()
                  .scratch()
                  .scalar("SELECT c_date_facture || c_tri_facture FROM strcompetition WHERE "
                          "c_num_facture = ?",
                          {invoice})
                  .toString(),
              "24/11/202620261124");

    // An invoice of 0,00 € gives a credit note all the same.
    const QString zero = threeLineInvoice(f.store(), f.today());
    appendLine(f.store(), zero, {kFreeTextArticle, "Remise", 1, Money::fromCents(-31250)});
    const QString zeroNote = issueCreditNotes(f.store(), {zero}, day).at(0).creditNote;
    EXPECT_EQ(f.header(zeroNote, "ent_fact_type"), "A");
    EXPECT_EQ(readLines(f.store(), zeroNote).size(), 4u);
}

TEST(CreditNotes, ConsecutiveNumbersInListOrderEachInvoiceOnce) {
    Fixture f;
    const QString first = next(test::kLastDemoNumber);
    int told = 0;
    // The list shows an invoice once per line, and may show it padded.
    const auto issued = issueCreditNotes(
        f.store(), {kLeagueInvoice, kClubInvoice, kLeagueInvoice, "0" + kClubInvoice}, f.today(),
        [&](const IssuedCreditNote& n, int done, int total) {
            ++told;
            EXPECT_EQ(done, told);
            EXPECT_EQ(total, 2);
            // Told once it is committed: it is there for everyone.
            EXPECT_EQ(f.creditNoteOf(n.invoice), n.creditNote);
            return true;
        });
    ASSERT_EQ(issued.size(), 2u);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(issued[0].invoice, kLeagueInvoice);
    EXPECT_EQ(issued[0].creditNote, first);
    EXPECT_EQ(issued[1].invoice, kClubInvoice);
    EXPECT_EQ(issued[1].creditNote, next(first));
    EXPECT_EQ(f.creditNoteOf(kLeagueInvoice), first);
    EXPECT_EQ(f.creditNoteOf(kClubInvoice), next(first));
    // Invoices and credit notes share one series.
    EXPECT_EQ(nextInvoiceNumber(f.store()), next(first, 2));

    // Stopping between two leaves the others for later.
    const QString extra = threeLineInvoice(f.store(), f.today());
    const auto stopped = issueCreditNotes(f.store(), {kLongInvoice, extra}, f.today(),
                                          [](const IssuedCreditNote&, int, int) { return false; });
    ASSERT_EQ(stopped.size(), 1u);
    EXPECT_EQ(stopped[0].invoice, kLongInvoice);
    EXPECT_TRUE(f.creditNoteOf(extra).isEmpty());
}

TEST(CreditNotes, RefusalsWriteNothingAndLetTheOthersThrough) {
    Fixture f;
    // The demo's credit note was made by the rule and names its invoice.
    EXPECT_EQ(f.header(kDemoCreditNote, "ent_fact_origine"), kCommitteeInvoice);
    EXPECT_EQ(f.header(kDemoCreditNote, "ent_fact_type"), "A");

    for (const std::vector<QString>& empty :
         {std::vector<QString>{}, std::vector<QString>{" ", ""}}) {
        try {
            checkCreditNotes(f.store(), empty);
            FAIL() << "no refusal";
        } catch (const Refusal& r) {
            EXPECT_EQ(r.message(), "Aucune facture de sélectionnée");
        }
    }

    // A negative invoice made by hand is a credit note too.
    InvoiceHeader h;
    h.dateText = "20/11/2026";
    h.nature = "DIV";
    h.competitionIndex = kMiscIndex;
    h.billed.entity = "AUTRE";
    h.billed.name = "Remboursement";
    const QString refund = createInvoice(f.store(), h, f.today());
    updateLine(f.store(), refund, "01",
               {kFreeTextArticle, "Trop-perçu", 1, Money::fromCents(-900)});

    const std::vector<QString> ticked{kClubInvoice, kCommitteeInvoice, kDemoCreditNote, refund,
                                      "424242",     kMarker,           kLeagueInvoice};
    const CreditNoteCheck check = checkCreditNotes(f.store(), ticked);
    EXPECT_EQ(check.accepted, (std::vector<QString>{kClubInvoice, kLeagueInvoice}));
    ASSERT_EQ(check.refused.size(), 5u);
    EXPECT_EQ(check.refused[0].invoice, kCommitteeInvoice);
    EXPECT_EQ(check.refused[0].message,
              "La facture N° 2027000002 a déjà été annulée par l'avoir N° 2027000004");
    EXPECT_EQ(check.refused[1].message,
              "L'avoir N° 2027000004 ne peut pas être annulé par un avoir");
    EXPECT_EQ(check.refused[2].message,
              QStringLiteral("L'avoir N° %1 ne peut pas être annulé par un avoir").arg(refund));
    EXPECT_EQ(check.refused[3].message, "La facture N° 424242 n'existe pas.");
    EXPECT_EQ(check.refused[4].message,
              "La facture N° 2027000000 n'a aucune ligne : il n'y a rien à annuler.");

    // The whole list is refused at once, with every reason, and nothing written.
    const int headers = f.headers(), lines = f.lines();
    try {
        issueCreditNotes(f.store(), ticked, f.today());
        FAIL() << "no refusal";
    } catch (const Refusal& r) {
        EXPECT_EQ(r.message(), check.refusalText());
        EXPECT_EQ(r.message().count('\n'), 4);
        EXPECT_TRUE(r.message().startsWith("La facture N° 2027000002 a déjà été annulée"));
    }
    EXPECT_EQ(f.headers(), headers);
    EXPECT_EQ(f.lines(), lines);

    // Once the operator agrees, the others get their credit notes.
    const auto issued = issueCreditNotes(f.store(), check.accepted, f.today());
    ASSERT_EQ(issued.size(), 2u);
    EXPECT_EQ(f.headers(), headers + 2);
    EXPECT_EQ(f.creditNoteOf(kCommitteeInvoice), kDemoCreditNote);
    // And never a second time.
    const auto again = checkCreditNotes(f.store(), {kClubInvoice, issued[0].creditNote});
    EXPECT_TRUE(again.accepted.empty());
    EXPECT_EQ(again.refusalText(),
              QStringLiteral("La facture N° 2027000001 a déjà été annulée par l'avoir N° %1\n"
                             "L'avoir N° %1 ne peut pas être annulé par un avoir")
                  .arg(issued[0].creditNote));
}

TEST(CreditNotes, FailureMidRunKeepsWholeCreditNotesOnly) {
    Fixture f;
    const QString first = nextInvoiceNumber(f.store());
    const QString second = next(first);
    // The store fails on the second credit note's lines, after its header is written.
    const QString padded = paddedInvoiceNumber(second);
    if (test::onServer()) {
        f.store().exec(
            "CREATE FUNCTION facture.orve_test_failure() RETURNS trigger AS $$ BEGIN "
            "RAISE EXCEPTION 'disque plein'; END $$ LANGUAGE plpgsql");
        f.store().exec(QStringLiteral("CREATE TRIGGER orve_test_failure BEFORE INSERT ON "
                                      "facture.strfacture FOR EACH ROW WHEN (NEW.f_num_facture = "
                                      "'%1') EXECUTE FUNCTION facture.orve_test_failure()")
                           .arg(padded));
    } else {
        f.store().exec(QStringLiteral("CREATE TRIGGER facture.orve_test_failure BEFORE INSERT ON "
                                      "strfacture WHEN NEW.f_num_facture = '%1' BEGIN SELECT "
                                      "RAISE(ABORT, 'disque plein'); END")
                           .arg(padded));
    }
    std::vector<IssuedCreditNote> told;
    EXPECT_THROW(
        issueCreditNotes(f.store(), {kClubInvoice, kLeagueInvoice, kLongInvoice}, f.today(),
                         [&](const IssuedCreditNote& n, int, int) {
                             told.push_back(n);
                             return true;
                         }),
        StoreError);
    // The first is whole, nothing is left of the second, the third was not begun.
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].creditNote, first);
    EXPECT_EQ(f.header(first, "ent_fact_origine"), kClubInvoice);
    EXPECT_EQ(readLines(f.store(), first).size(), readLines(f.store(), kClubInvoice).size());
    EXPECT_EQ(f.count("SELECT COUNT(*) FROM strentete WHERE ent_fact_no = ?", {second}), 0);
    EXPECT_EQ(f.count("SELECT COUNT(*) FROM strfacture WHERE f_num_facture = ?", {padded}), 0);
    EXPECT_TRUE(f.creditNoteOf(kLeagueInvoice).isEmpty());
    EXPECT_TRUE(f.creditNoteOf(kLongInvoice).isEmpty());
    // The number was not used up: the run can be taken up again.
    EXPECT_EQ(nextInvoiceNumber(f.store()), second);
    f.store().exec(test::onServer() ? "DROP TRIGGER orve_test_failure ON facture.strfacture"
                                    : "DROP TRIGGER facture.orve_test_failure");
    const auto resumed = issueCreditNotes(f.store(), {kLeagueInvoice, kLongInvoice}, f.today());
    EXPECT_EQ(resumed.at(0).creditNote, second);

    // Another workstation cancelling an invoice of the list meanwhile stops
    // the run there, keeping what was made before.
    const QString a = threeLineInvoice(f.store(), f.today());
    const QString b = threeLineInvoice(f.store(), f.today());
    QString theirs;
    try {
        issueCreditNotes(f.store(), {a, b}, f.today(), [&](const IssuedCreditNote&, int, int) {
            theirs = issueCreditNotes(f.store(), {b}, f.today()).at(0).creditNote;
            return true;
        });
        FAIL() << "no refusal";
    } catch (const Refusal& r) {
        EXPECT_EQ(
            r.message(),
            QStringLiteral("La facture N° %1 a déjà été annulée par l'avoir N° %2").arg(b, theirs));
    }
    EXPECT_FALSE(f.creditNoteOf(a).isEmpty());
    EXPECT_EQ(f.creditNoteOf(b), theirs);
}

TEST(CreditNotes, InstallationFromBeforeTheOriginColumnOpensWhole) {
    Fixture f;
    const int headers = f.headers(), lines = f.lines();
    const qint64 sum = f.store().scalar("SELECT SUM(f_montant) FROM strfacture").toLongLong();
    const auto version = [&f] {
        return test::onServer()
                   ? f.store().scalar("SELECT MAX(version) FROM facture.orve_version").toInt()
                   : f.store().scalar("PRAGMA facture.user_version").toInt();
    };
    const int latest = version();
    // Taken back to the store as it was before credit notes named their invoice.
    if (test::onServer()) {
        f.store().exec("ALTER TABLE facture.strentete DROP COLUMN ent_fact_origine");
        f.store().exec("ALTER TABLE facture.strentete DROP COLUMN ent_niveau");
        f.store().exec("DELETE FROM facture.orve_version WHERE version >= 2");
    } else {
        f.store().exec("DROP INDEX facture.strentete_origine");
        f.store().exec("ALTER TABLE facture.strentete DROP COLUMN ent_fact_origine");
        f.store().exec("ALTER TABLE facture.strentete DROP COLUMN ent_niveau");
        f.store().exec("PRAGMA facture.user_version = 1");
    }
    ASSERT_FALSE(f.store().columns("strentete").contains("ent_fact_origine"));
    f.session.reset();

    f.session = f.inst.startAs("gestu");
    EXPECT_TRUE(f.store().columns("strentete").contains("ent_fact_origine"));
    EXPECT_EQ(f.headers(), headers);
    EXPECT_EQ(f.lines(), lines);
    EXPECT_EQ(f.store().scalar("SELECT SUM(f_montant) FROM strfacture").toLongLong(), sum);
    EXPECT_EQ(f.header(kClubInvoice, "ent_fact_lib"), "Bowling Club Phocéen");
    EXPECT_EQ(version(), latest);
    // The old credit note is still one; new ones name their invoice again.
    EXPECT_FALSE(checkCreditNotes(f.store(), {kDemoCreditNote}).refused.empty());
    const QString note = issueCreditNotes(f.store(), {kLeagueInvoice}, f.today()).at(0).creditNote;
    EXPECT_EQ(f.creditNoteOf(kLeagueInvoice), note);
}

TEST(CreditNotes, DocumentNamesTheCancelledInvoice) {
    Fixture f;
    test::application();
    const DocumentSettings settings = documentSettings(*f.session);
    const auto lines = pdfLines(generateInvoicePdf(f.store(), settings, kDemoCreditNote));
    const PdfLine* title = lineStarting(lines, "AVOIR N°");
    const PdfLine* origin = lineStarting(lines, "Avoir sur facture");
    const PdfLine* billed = lineStarting(lines, "Adresse de facturation");
    ASSERT_TRUE(title && origin && billed);
    EXPECT_EQ(origin->text, "Avoir sur facture N° BOW2027000002 du 11/11/2026");
    // Under the title, aligned with it, clear of the address blocks.
    EXPECT_NEAR(origin->x, title->x, 30);
    EXPECT_GT(origin->y, title->y + 250);
    EXPECT_LT(origin->y + 250, billed->y);
    EXPECT_EQ(title->text, "AVOIR N° BOW2027000004 du 21/11/2026");

    // An invoice, and a credit note made by hand, name no invoice.
    EXPECT_FALSE(
        lineStarting(pdfLines(generateInvoicePdf(f.store(), settings, kClubInvoice)), "Avoir sur"));
    f.store().exec("UPDATE strentete SET ent_fact_origine = NULL WHERE ent_fact_no = ?",
                   {kDemoCreditNote});
    const auto handMade = pdfLines(generateInvoicePdf(f.store(), settings, kDemoCreditNote));
    EXPECT_TRUE(lineStarting(handMade, "AVOIR N°"));
    EXPECT_FALSE(lineStarting(handMade, "Avoir sur"));
}

TEST(CreditNotes, BatchCommand) {
    test::TestInstall inst;
    const QStringList today{"ORVE_TODAY=24/11/2026"};
    auto batch = [&](const QStringList& args, QString* out, QString* err) {
        return test::runProgram(ORVE_BATCH,
                                QStringList{"--home", inst.home(), "--as", "gestu"} + args, {}, out,
                                err, today);
    };
    QString out, err;
    // Each credit note with its document, as the window makes them.
    EXPECT_EQ(batch({"avoir", kLeagueInvoice, kClubInvoice}, &out, &err), 0) << qPrintable(err);
    const QStringList printed = out.split('\n');
    ASSERT_EQ(printed.size(), 6) << qPrintable(out);
    EXPECT_EQ(printed[0], "avoir N° 2027000012 : facture N° 2027000003 annulée");
    EXPECT_TRUE(printed[1].startsWith("document écrit : ")) << qPrintable(out);
    EXPECT_TRUE(printed[1].endsWith("LR06_FN_2027000012.pdf")) << qPrintable(out);
    EXPECT_EQ(printed[2], "avoir N° 2027000013 : facture N° 2027000001 annulée");
    EXPECT_TRUE(printed[3].endsWith("CL13001_FN_2027000013.pdf")) << qPrintable(out);
    EXPECT_EQ(printed[4], "2 avoir(s) généré(s)");

    // A refusal in the list: the French messages, exit 1, nothing written.
    EXPECT_EQ(batch({"avoir", kLongInvoice, kClubInvoice, kDemoCreditNote}, &out, &err), 1);
    EXPECT_TRUE(
        err.contains("La facture N° 2027000001 a déjà été annulée par l'avoir N° 2027000013"))
        << qPrintable(err);
    EXPECT_TRUE(err.contains("L'avoir N° 2027000004 ne peut pas être annulé par un avoir"));
    EXPECT_FALSE(out.contains("avoir N°"));
    EXPECT_EQ(batch({"avoir"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("Argument manquant")) << qPrintable(err);

    {
        auto session = inst.start();
        EXPECT_EQ(session->store().scalar("SELECT COUNT(*) FROM strentete").toInt(), 14);
        EXPECT_EQ(session->store()
                      .scalar("SELECT COUNT(*) FROM strentete WHERE ent_fact_edt = 'O' AND "
                              "ent_fact_no IN ('2027000012', '2027000013')")
                      .toInt(),
                  2);
        EXPECT_EQ(session->store()
                      .scalar("SELECT ent_fact_date FROM strentete WHERE ent_fact_origine = ?",
                              {kLeagueInvoice})
                      .toString(),
                  "24/11/2026");
    }

    const auto lines = pdfLines(printed[1].section("document écrit : ", 1).trimmed());
    ASSERT_TRUE(lineStarting(lines, "Avoir sur"));
    EXPECT_EQ(lineStarting(lines, "Avoir sur")->text,
              "Avoir sur facture N° BOW2027000003 du 11/11/2026");
}
