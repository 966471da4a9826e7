#include <gtest/gtest.h>

#include "invoicing/InvoiceRecords.h"
#include "store/Refusal.h"
#include "support/DemoInvoices.h"
#include "support/TestInstall.h"
#include "tools/InvoiceRenumbering.h"
#include "tools/NewSeason.h"

using namespace orve;
using namespace orve::tools;

namespace {

QString refusalOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Refusal& r) {
        return r.message();
    }
    return {};
}

int rows(const store::Store& s, const QString& sql) { return s.scalar(sql).toInt(); }

QString row(const store::Store& s, const QString& columns, const QString& index,
            const QString& season) {
    const auto r =
        s.selectOne("SELECT " + columns + " FROM strcompetition WHERE c_index = ? AND c_saison = ?",
                    {index, season});
    if (!r) return "absente";
    QStringList v;
    for (int i = 0; i < r->count(); ++i) v << r->value(i).toString();
    return v.join('|');
}

invoicing::InvoiceHeader clubHeader(const QDate& day) {
    invoicing::InvoiceHeader h;
    h.dateText = day.toString("dd/MM/yyyy");
    h.nature = "DIV";
    h.competitionIndex = invoicing::kMiscIndex;
    h.competitionTitle = "Facture Divers";
    h.billed.account = "CL13002";
    h.billed.name = "Les Quilles d'Aix";
    return h;
}

}  // namespace

TEST(NewSeason, RefusesEarlyYearsCopiesEachNumberOnceAndNeverTwice) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    // The working season is 2027: the window proposes the next one.
    EXPECT_EQ(proposedSeason(session->workingSeason()), 2028);
    // An older season's row of the miscellaneous number, with another title:
    // the latest season's row is the one copied.
    s.insert("strcompetition", {{"c_index", "8FA00001"},
                                {"c_saison", "2018"},
                                {"c_intitule", "Divers 2018"},
                                {"c_nature", "DIV"},
                                {"c_facture", "X"}});
    const int before = rows(s, "SELECT COUNT(*) FROM strcompetition");

    EXPECT_EQ(refusalOf([&] { setUpSeason(s, "2018", inst.today()); }), "année incorrecte !!!");
    EXPECT_EQ(refusalOf([&] { setUpSeason(s, "", inst.today()); }), "année incorrecte !!!");
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strcompetition"), before);

    const NewSeasonResult first = setUpSeason(s, "2029", inst.today());
    EXPECT_EQ(first.created, (QStringList{"9FA00000", "9FA00001", "9FA00005", "9FA00006"}));
    EXPECT_EQ(first.message(),
              "Traitement termine\nSaison 2029 : 4 pseudo-compétitions créées, aucune n'existait "
              "déjà.");
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strcompetition"), before + 4);
    EXPECT_EQ(
        row(s, "c_intitule, c_nature, c_date_finale, c_tri_finale, c_date_enreg, c_date_modif",
            "9FA00000", "2029"),
        "Licences|LIC|31/08/2029|20290831|21/11/2026|21/11/2026");
    // Everything else as in the source: state, invoicing flags, organiser.
    EXPECT_EQ(row(s,
                  "c_intitule, c_facture, c_nat_fact, c_fact_engagement, c_fact_ligne, "
                  "c_organisateur, c_formule, index_reference, c_num_facture",
                  "9FA00001", "2029"),
              "Facture Divers|X|R|O|N|R|1|00000000| ");

    // Run again: nothing new; after one copy was removed, only that one.
    const NewSeasonResult second = setUpSeason(s, "2029", inst.today());
    EXPECT_TRUE(second.created.isEmpty());
    EXPECT_EQ(second.message(),
              "Traitement termine\nSaison 2029 : aucune pseudo-compétition créée, 4 existaient "
              "déjà.");
    s.exec("DELETE FROM strcompetition WHERE c_index = '9FA00005'");
    const NewSeasonResult third = setUpSeason(s, "2029", inst.today());
    EXPECT_EQ(third.created, QStringList{"9FA00005"});
    EXPECT_EQ(third.message(),
              "Traitement termine\nSaison 2029 : 1 pseudo-compétition créée, 3 existaient déjà.");

    // Ten years apart the index is the same: what counts is the season.
    const NewSeasonResult next = setUpSeason(s, "2028", inst.today());
    EXPECT_EQ(next.created.size(), 4);
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strcompetition WHERE c_index = '8FA00000'"), 2);
    EXPECT_EQ(row(s, "c_intitule", "8FA00000", "2027"), "Licence Saison 2026-2027");
}

TEST(InvoiceRenumbering, RefusesNumbersNotAboveTheLastAndTheNextInvoiceTakesTheTypedOne) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    EXPECT_EQ(lastInvoiceNumber(s), test::kLastDemoNumber);
    const int headers = rows(s, "SELECT COUNT(*) FROM strentete");
    for (const QString& typed : {test::kLastDemoNumber, QString("2027000004"), QString("")})
        EXPECT_EQ(refusalOf([&] { renumberInvoices(s, typed, inst.today()); }),
                  "Impossible, le prochain N° doit être supérieur au dernier utilisé !!!")
            << typed.toStdString();
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strentete"), headers);

    const RenumberingResult r = renumberInvoices(s, "2028000001", inst.today());
    EXPECT_EQ(r.placeholder, "2028000000");
    EXPECT_EQ(r.message(), "Traitement termine\nLa prochaine facture portera le N° 2028000001.");
    const auto placeholder = s.selectOne(
        "SELECT ent_fact_lib, ent_fact_date, ent_fact_tri, ent_envoi_mail, "
        "ent_compta, ent_tiers_fact, ent_c_index FROM strentete "
        "WHERE ent_fact_no = '2028000000'");
    ASSERT_TRUE(placeholder);
    EXPECT_EQ(placeholder->value(0).toString(), "Changement de numerotation");
    EXPECT_EQ(placeholder->value(1).toString(), "21/11/2026");
    EXPECT_EQ(placeholder->value(2).toString(), "20261121");
    EXPECT_EQ(placeholder->value(3).toString(), "O");
    EXPECT_EQ(placeholder->value(4).toString(), "O");
    EXPECT_TRUE(placeholder->value(5).isNull());
    EXPECT_TRUE(placeholder->value(6).isNull());
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strfacture WHERE f_num_facture = '2028000000'"), 0);
    EXPECT_EQ(invoicing::nextInvoiceNumber(s), "2028000001");
    const QString made = invoicing::createInvoice(s, clubHeader(inst.today()), inst.today());
    EXPECT_EQ(made, "2028000001");
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strfacture WHERE f_num_facture = '2028000001'"), 1);

    // One above the last is what comes anyway: no placeholder repeats the last number.
    const RenumberingResult plain = renumberInvoices(s, "2028000002", inst.today());
    EXPECT_TRUE(plain.placeholder.isEmpty());
    EXPECT_EQ(rows(s, "SELECT COUNT(*) FROM strentete WHERE ent_fact_no = '2028000001'"), 1);
    EXPECT_EQ(invoicing::createInvoice(s, clubHeader(inst.today()), inst.today()), "2028000002");

    // Numbers beyond what a 32-bit integer holds go on the same way.
    renumberInvoices(s, "9000000001", inst.today());
    EXPECT_EQ(lastInvoiceNumber(s), "9000000000");
    EXPECT_EQ(invoicing::createInvoice(s, clubHeader(inst.today()), inst.today()), "9000000001");
}

TEST(InvoiceRenumbering, AnEmptyInvoiceFileShowsTheFirstNumber) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    EXPECT_EQ(lastInvoiceNumber(s), "000001");
    EXPECT_EQ(refusalOf([&] { renumberInvoices(s, "1", inst.today()); }),
              "Impossible, le prochain N° doit être supérieur au dernier utilisé !!!");
    EXPECT_EQ(renumberInvoices(s, "2028000001", inst.today()).placeholder, "2028000000");
    EXPECT_EQ(invoicing::nextInvoiceNumber(s), "2028000001");
}
