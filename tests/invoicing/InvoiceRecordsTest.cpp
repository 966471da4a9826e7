#include <gtest/gtest.h>

#include "invoicing/InvoiceRecords.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

InvoiceHeader clubHeader(const QString& date = QStringLiteral("15/11/2026")) {
    InvoiceHeader h;
    h.dateText = date;
    h.nature = QStringLiteral("DIV");
    h.competitionIndex = kMiscIndex;
    h.competitionTitle = QStringLiteral("Facture Divers");
    h.billed.account = QStringLiteral("CL13001");
    h.billed.name = QStringLiteral("Bowling Club Phocéen");
    return h;
}

void insertHeader(store::Store& s, const QString& number) {
    s.insert(QStringLiteral("strentete"), {{"ent_fact_no", number}, {"ent_fact_type", "F"}});
}

QString lineValue(store::Store& s, const QString& number, const QString& line, const char* col) {
    return s
        .scalar(
            QStringLiteral("SELECT %1 FROM strfacture WHERE f_num_facture = ? AND f_num_lig = ?")
                .arg(QLatin1String(col)),
            {paddedInvoiceNumber(number), line})
        .toString();
}

}  // namespace

TEST(InvoiceRecords, NumberingTakesTheHighestNumberByValue) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();

    // An empty table gives 1, padded to eight digits in the first line.
    const QString first = createInvoice(s, clubHeader(), inst.today());
    EXPECT_EQ(first, "1");
    EXPECT_EQ(lineValue(s, first, "01", "f_num_facture"), "00000001");
    EXPECT_EQ(lineValue(s, first, "01", "f_article"), "999999999");
    EXPECT_EQ(lineValue(s, first, "01", "f_libelle"), QStringLiteral("à définir"));
    EXPECT_EQ(lineValue(s, first, "01", "f_tri_date"), "20261115");
    const auto header = s.selectOne("SELECT * FROM strentete WHERE ent_fact_no = '1'");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->value("ent_fact_type").toString(), "F");
    // Marked printed only once its document is on disk.
    EXPECT_EQ(header->value("ent_fact_edt").toString(), "N");
    EXPECT_EQ(header->value("ent_envoi_mail").toString(), "N");
    EXPECT_EQ(header->value("ent_compta").toString(), "N");
    EXPECT_EQ(header->value("ent_fact_entite").toString(), " ");
    EXPECT_EQ(header->value("ent_fact_tri").toString(), "20261115");

    insertHeader(s, "57");
    EXPECT_EQ(createInvoice(s, clubHeader(), inst.today()), "58");
    EXPECT_EQ(lineValue(s, "58", "01", "f_num_facture"), "00000058");

    // Text order would put "999" after "1000".
    insertHeader(s, "999");
    insertHeader(s, "1000");
    EXPECT_EQ(nextInvoiceNumber(s), "1001");

    // A renumbering marker moves the numbering on; longer numbers stay whole.
    s.insert("strentete",
             {{"ent_fact_no", "2027000000"}, {"ent_fact_lib", "Changement de numerotation"}});
    const QString jumped = createInvoice(s, clubHeader(), inst.today());
    EXPECT_EQ(jumped, "2027000001");
    EXPECT_EQ(lineValue(s, jumped, "01", "f_num_facture"), "2027000001");
}

TEST(InvoiceRecords, HeaderValidationWritesNothing) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    auto refusal = [&](const InvoiceHeader& h) {
        try {
            createInvoice(s, h, inst.today());
        } catch (const Refusal& r) {
            return r.message();
        }
        return QString();
    };
    EXPECT_EQ(refusal(clubHeader("")), QStringLiteral("date obligatoire"));
    EXPECT_EQ(refusal(clubHeader("__/__/____")), QStringLiteral("date obligatoire"));
    EXPECT_EQ(refusal(clubHeader("31/02/2026")),
              QStringLiteral("la date : 31/02/2026 n'est pas valide"));
    InvoiceHeader nobody = clubHeader();
    nobody.billed = {};
    EXPECT_EQ(refusal(nobody), QStringLiteral("veuillez sélectionner un facturé"));
    // An address to type by hand left blank is refused before a number is used up.
    InvoiceHeader blank = clubHeader();
    blank.billed = {};
    blank.billed.entity = kOtherEntity;
    blank.billed.address1 = QStringLiteral("  ");
    EXPECT_EQ(refusal(blank), QStringLiteral("Adresse de facturation obligatoire"));
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete").toInt(), 0);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strfacture").toInt(), 0);

    // A free address is filed by its entity code, the account left blank.
    InvoiceHeader entity = clubHeader();
    entity.billed.account.clear();
    entity.billed.entity = QStringLiteral("CD13");
    const QString n = createInvoice(s, entity, inst.today());
    EXPECT_EQ(n, "1");
    EXPECT_EQ(
        s.scalar(
             "SELECT ent_tiers_fact || '|' || ent_fact_entite FROM strentete WHERE ent_fact_no = ?",
             {n})
            .toString(),
        " |CD13");
    // Modifying keeps the number and brings the lines' dates along.
    InvoiceHeader changed = entity;
    changed.dateText = QStringLiteral("01/12/2026");
    modifyInvoice(s, n, changed);
    EXPECT_EQ(s.scalar("SELECT COUNT(*) FROM strentete").toInt(), 1);
    EXPECT_EQ(lineValue(s, n, "01", "f_tri_date"), "20261201");
}

TEST(InvoiceRecords, LinesTotalsAndType) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    const QString n = createInvoice(s, clubHeader(), inst.today());

    updateLine(s, n, "01",
               {QStringLiteral("00000005"), QStringLiteral("Remise"), 1, Money::fromCents(-1250)});
    EXPECT_EQ(s.scalar("SELECT ent_fact_type FROM strentete WHERE ent_fact_no = ?", {n}).toString(),
              "A");
    appendLine(s, n,
               {QStringLiteral("00000005"), QStringLiteral("Frais"), 1, Money::fromCents(1250)});
    // A total of exactly 0 is an invoice.
    const InvoiceTotal t = updateTotal(s, n);
    EXPECT_EQ(t.total.cents(), 0);
    EXPECT_EQ(t.type, "F");
    EXPECT_EQ(s.scalar("SELECT ent_fact_type FROM strentete WHERE ent_fact_no = ?", {n}).toString(),
              "F");
    // Showing a total reads it and changes nothing: a credit note of 0,00 €
    // stays a credit note.
    s.update("strentete", {{"ent_fact_type", "A"}}, "ent_fact_no = ?", {n});
    EXPECT_EQ(readTotal(s, n).type, "A");
    EXPECT_EQ(readTotal(s, n).total.cents(), 0);
    EXPECT_EQ(s.scalar("SELECT ent_fact_type FROM strentete WHERE ent_fact_no = ?", {n}).toString(),
              "A");
    EXPECT_EQ(s.select(linesQuery(n)).size(), 2u);

    // Amount is quantity times price, exactly.
    updateLine(s, n, "02",
               {QStringLiteral("00000001"), QStringLiteral("Licence"), 3, Money::fromCents(4533)});
    EXPECT_EQ(lineValue(s, n, "02", "f_montant"), "13599");

    for (int i = 3; i <= 9; ++i) EXPECT_EQ(addLine(s, n), QStringLiteral("0%1").arg(i));
    EXPECT_EQ(addLine(s, n), "10");
    EXPECT_EQ(lineValue(s, n, "10", "f_article"), "00000001");
    EXPECT_EQ(lineValue(s, n, "10", "f_libelle"), QStringLiteral("à définir"));
    // Read by value: "10" comes after "09".
    const auto lines = readLines(s, n);
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines.back().number, "10");
}

TEST(InvoiceRecords, CopiedLinesAreRenumberedAfterTheExistingOnes) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    const QString source = createInvoice(s, clubHeader(), inst.today());
    updateLine(s, source, "01", {"00000001", "Licence adulte", 12, Money::fromCents(4500)});
    appendLine(s, source, {"00000002", "Licence jeune", 5, Money::fromCents(2200)});
    appendLine(s, source, {kFreeTextArticle, "Texte libre", 1, Money::fromCents(1000)});

    const QString target = createInvoice(s, clubHeader(), inst.today());
    addLine(s, target);  // lines 01 and 02 already there
    EXPECT_EQ(copyLines(s, source, target, -1, QDate(2026, 11, 21)), 3);
    const auto lines = readLines(s, target);
    ASSERT_EQ(lines.size(), 5u);
    QStringList numbers;
    for (const auto& l : lines) numbers << l.number;
    EXPECT_EQ(numbers.join(','), "01,02,03,04,05");
    EXPECT_EQ(lines[2].quantity, -12);
    EXPECT_EQ(lines[2].unitPrice.cents(), 4500);
    EXPECT_EQ(lines[2].amount.cents(), -54000);
    EXPECT_EQ(lines[4].article, kFreeTextArticle);
    EXPECT_EQ(lineValue(s, target, "03", "f_tri_date"), "20261121");
    EXPECT_EQ(
        s.scalar("SELECT ent_fact_type FROM strentete WHERE ent_fact_no = ?", {target}).toString(),
        "A");
}

TEST(InvoiceRecords, CompetitionRowFollowsItsInvoice) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    s.insert("strcompetition",
             {{"c_index", "FD700001"}, {"c_facture", "C"}, {"c_edt_fact", "NON"}});
    markCompetitionInvoiced(s, "FD700001", "58", QDate(2026, 11, 21));
    auto row = s.selectOne("SELECT * FROM strcompetition WHERE c_index = 'FD700001'");
    EXPECT_EQ(row->value("c_facture").toString(), "A");
    EXPECT_EQ(row->value("c_num_facture").toString(), "58");
    EXPECT_EQ(row->value("c_date_facture").toString(), "21/11/2026");
    EXPECT_EQ(row->value("c_tri_facture").toString(), "20261121");

    EXPECT_EQ(resetCompetitionInvoicing(s, {"58"}), 1);
    row = s.selectOne("SELECT * FROM strcompetition WHERE c_index = 'FD700001'");
    EXPECT_EQ(row->value("c_facture").toString(), " ");
    EXPECT_EQ(row->value("c_date_facture").toString(), "__/__/____");
    EXPECT_EQ(row->value("c_edt_fact").toString(), "NON");
    EXPECT_EQ(row->value("c_envoi_mail").toString(), "N");
    EXPECT_EQ(row->value("c_num_facture").toString().trimmed(), "");
}
