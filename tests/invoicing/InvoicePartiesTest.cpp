#include <gtest/gtest.h>

#include "app/Session.h"
#include "invoicing/InvoiceParties.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

QStringList texts(const app::ListItems& items, bool nameFirst = false) {
    QStringList out;
    for (const auto& i : items) out << (nameFirst ? nameFirstText(i) : i.text());
    return out;
}

// The seven lines and two mails as the screen shows them.
QStringList block(const InvoiceParty& p) {
    return {p.name,     p.president,    p.address1, p.address2, p.address3,
            p.address4, p.postcodeTown, p.mail1,    p.mail2};
}

QString refusalOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const Refusal& r) {
        return r.message();
    }
    return {};
}

}  // namespace

TEST(InvoiceParties, ListsOfferedToEachOperator) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    // Every party of the federation, whatever the operator's level: keys
    // first for leagues and committees.
    const QStringList leagues = texts(leagueItems(s));
    ASSERT_EQ(leagues.size(), 6);
    EXPECT_EQ(leagues.first(), "LR06 # Ligue Régionale Provence-Alpes-Côte d'Azur");
    EXPECT_EQ(leagues.last(), "LR69 # Ligue Régionale Auvergne-Rhône-Alpes");
    const QStringList committees = texts(committeeItems(s));
    EXPECT_EQ(committees.size(), 10);
    EXPECT_EQ(committees.first(), "006 # Alpes-Maritimes");

    // Clubs and centres of the department typed, name first, by name or town,
    // those of another league included.
    const auto clubs = clubItems(s, "13");
    EXPECT_EQ(texts(clubs, true),
              (QStringList{"Bowling Club Phocéen # CL13001", "Les Quilles d'Aix # CL13002",
                           "Strike Club Aubagne # CL13003"}));
    EXPECT_EQ(nameFirstKey(nameFirstText(clubs[1])), "CL13002");
    EXPECT_EQ(nameFirstKey("Choisir"), "");
    EXPECT_FALSE(clubItems(s, "75").empty());
    EXPECT_EQ(texts(centreItems(s, "083"), true), QStringList{"La Seyne-sur-Mer # BOW0832"});
    EXPECT_FALSE(centreItems(s, "075").empty());

    // Licensees: name contains the text, or begins with it after "%", any case.
    auto names = [&](const QString& typed) {
        QStringList out;
        for (const auto& i : licenseeItems(s, typed)) out << i.label;
        return out;
    };
    EXPECT_EQ(names("re"), (QStringList{"LEBRETON Anaïs", "MOREAU Denis", "RENAUD Margaux"}));
    EXPECT_EQ(names("%re"), QStringList{"RENAUD Margaux"});
    EXPECT_EQ(names("%Renaud"), QStringList{"RENAUD Margaux"});
    EXPECT_EQ(names("%"), names(""));
    EXPECT_EQ(names("%").size(), 16);
    // The operator's "_" and "%" are letters, not wildcards.
    EXPECT_TRUE(names("_").isEmpty());
    EXPECT_TRUE(names("R%N").isEmpty());
    const auto renaud = licenseeItems(s, "%RENAUD").at(0);
    EXPECT_TRUE(nameFirstText(renaud).startsWith("RENAUD Margaux # 20")) << qPrintable(renaud.code);
    EXPECT_TRUE(renaud.code.endsWith("-0750033"));
}

TEST(InvoiceParties, EachKindFillsTheBlock) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();

    const InvoiceParty lr06 = leagueParty(s, "LR06");
    EXPECT_EQ(lr06.account, "LR06");
    EXPECT_TRUE(lr06.entity.isEmpty());
    EXPECT_EQ(
        block(lr06),
        (QStringList{"L.R. Ligue Régionale Provence-Alpes-Côte d'Azur",
                     "Monsieur le Président Gérard Castellan", "12 boulevard des Platanes",
                     "Maison des sports", "", "", "13008 - Marseille",
                     "president.lr06@ligues-bowling.example", "csr.lr06@ligues-bowling.example"}));
    // A league chosen for itself: its president, even when invoiced at its CSR.
    EXPECT_EQ(leagueParty(s, "LR11").president, "Madame la Présidente Sylvie Marchand");

    // A committee that invoices itself, filed so the accounting finds it.
    const InvoiceParty cd13 = committeeParty(s, "13", AddressBlock::Billing);
    EXPECT_EQ(cd13.account, "CD013");
    EXPECT_EQ(block(cd13),
              (QStringList{"C.D. Bouches-du-Rhône", "Président(e) du C.D. Marcel Olivieri",
                           "3 rue du Vieux-Port", "", "", "", "13002 - Marseille",
                           "cd013@comites-bowling.example", ""}));
    // Through its league: the league's address (at its CSR here), and the
    // committee itself on whose behalf.
    const InvoiceParty cd92 = committeeParty(s, "092", AddressBlock::Billing);
    EXPECT_EQ(cd92.account, "LR11");
    EXPECT_EQ(cd92.name, "L.R. Ligue Régionale Île-de-France");
    EXPECT_EQ(cd92.president, "C.S.R. Monsieur le Président du CSR Hervé Doucet");
    EXPECT_EQ(cd92.postcodeTown, "75011 - Paris");
    const InvoiceParty cd92self = committeeParty(s, "092", AddressBlock::OnBehalfOf);
    EXPECT_EQ(cd92self.account, "CD092");
    EXPECT_EQ(cd92self.name, "C.D. Hauts-de-Seine");
    // Through a league not invoiced at its CSR: the CSR line all the same.
    EXPECT_EQ(committeeParty(s, "006", AddressBlock::Billing).president,
              "C.S.R. " + s.scalar("SELECT re_csr_int || ' ' || re_csr_nom FROM strregion WHERE "
                                   "re_code = 'LR06'")
                              .toString()
                              .trimmed());
    // A bare "LR" is the committee's own league; "CD" + number another committee.
    s.exec("UPDATE strdept SET de_facturation = 'LR' WHERE de_no = '021'");
    EXPECT_EQ(committeeParty(s, "21", AddressBlock::Billing).account, "LR21");
    s.exec("UPDATE strdept SET de_facturation = 'CD13' WHERE de_no = '083'");
    EXPECT_EQ(committeeParty(s, "83", AddressBlock::Billing).account, "CD013");

    // What the department choice refuses, naming the invoice.
    auto committeeRefusal = [&](const QString& facturation, const QString& no) {
        s.exec("UPDATE strdept SET de_facturation = ? WHERE de_no = '083'", {facturation});
        return refusalOf([&] { committeeParty(s, no, AddressBlock::Billing, "2027000001"); });
    };
    EXPECT_EQ(committeeRefusal(" ", "083"),
              "Impossible d'éditer la facture 2027000001 - compléter le dept : 083");
    EXPECT_EQ(committeeRefusal("LR99", "083"),
              "Impossible d'éditer la facture 2027000001 - veuillez créer la region : LR99");
    EXPECT_EQ(committeeRefusal("CD77", "083"),
              "Impossible d'éditer la facture 2027000001 - veuillez créer le dept : 077");
    EXPECT_EQ(committeeRefusal("CD83", "99"),
              "Impossible d'éditer la facture 2027000001 - veuillez créer le dept : 099");
    EXPECT_EQ(refusalOf([&] { leagueParty(s, "LR98"); }), "La ligue LR98 n'existe pas.");

    const InvoiceParty club = clubParty(s, "CL13001");
    EXPECT_EQ(club.account, "CL13001");
    EXPECT_EQ(
        block(club),
        (QStringList{"Bowling Club Phocéen", "Henri Santoni", "Chez Henri Santoni", "7 rue du Club",
                     "", "", "13008 - Marseille", "contact.cl13001@clubs-bowling.example", ""}));

    const InvoiceParty centre = centreParty(s, "BOW0131");
    EXPECT_EQ(centre.account, "BOW0131");
    EXPECT_EQ(block(centre),
              (QStringList{"BOWLING de : Marseille", "", "210 avenue du Prado", "", "", "",
                           "13008-Marseille", "accueil.131@centres-bowling.example", ""}));

    const InvoiceParty licensee = licenseeParty(s, licenseeItems(s, "%RENAUD").at(0).code);
    EXPECT_TRUE(licensee.account.isEmpty());
    EXPECT_EQ(licensee.entity, "LIC0750033");
    EXPECT_EQ(block(licensee),
              (QStringList{"RENAUD Margaux", "", "70 boulevard Diderot", "", "", "", "75012 Paris",
                           "margaux.renaud@licencies.example", ""}));
    EXPECT_EQ(refusalOf([&] { licenseeParty(s, "2027"); }), "Le licencié 2027 n'existe pas.");

    const InvoiceParty other =
        otherParty({" Association X ", "M. Y", "1 rue Z"}, "x@example.org", "");
    EXPECT_EQ(other.entity, "AUTRE");
    EXPECT_TRUE(other.account.isEmpty());
    EXPECT_EQ(block(other), (QStringList{"Association X", "M. Y", "1 rue Z", "", "", "", "",
                                         "x@example.org", ""}));
}

TEST(InvoiceParties, HeaderFiledUnderAccountOrEntity) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    auto header = [&](const InvoiceParty& billed, const InvoiceParty& chosenClient) {
        InvoiceHeader h;
        h.dateText = "21/11/2026";
        h.nature = "DIV";
        h.competitionIndex = kMiscIndex;
        h.billed = billed;
        h.client = onBehalfOf(billed, chosenClient);
        const QString n = createInvoice(s, h, inst.today());
        return s.selectOne("SELECT * FROM strentete WHERE ent_fact_no = ?", {n}).value();
    };
    auto col = [](const store::Row& r, const char* c) { return r.value(c).toString(); };

    // A committee invoiced through its league, on its own behalf.
    const auto viaLeague = header(committeeParty(s, "92", AddressBlock::Billing),
                                  committeeParty(s, "92", AddressBlock::OnBehalfOf));
    EXPECT_EQ(col(viaLeague, "ent_tiers_fact"), "LR11");
    EXPECT_EQ(col(viaLeague, "ent_fact_entite"), " ");
    EXPECT_EQ(col(viaLeague, "ent_tiers_clt"), "CD092");
    EXPECT_EQ(col(viaLeague, "ent_clt_lib"), "C.D. Hauts-de-Seine");

    // "Pour le compte de" left empty repeats the party invoiced; a licensee
    // is filed under its entity code, never an account.
    const auto licensee = header(licenseeParty(s, licenseeItems(s, "%AUBERT").at(0).code), {});
    EXPECT_EQ(col(licensee, "ent_fact_entite"), "LIC0130021");
    EXPECT_EQ(col(licensee, "ent_tiers_fact"), " ");
    EXPECT_EQ(col(licensee, "ent_clt_entite"), "LIC0130021");
    EXPECT_EQ(col(licensee, "ent_clt_lib"), "AUBERT Lucien");
    EXPECT_EQ(col(licensee, "ent_fact_mail1"), "lucien.aubert@licencies.example");

    const auto free = header(otherParty({"Mairie de Cassis"}, "", ""), clubParty(s, "CL13003"));
    EXPECT_EQ(col(free, "ent_fact_entite"), "AUTRE");
    EXPECT_EQ(col(free, "ent_tiers_fact"), " ");
    EXPECT_EQ(col(free, "ent_tiers_clt"), "CL13003");
    EXPECT_EQ(col(free, "ent_clt_entite"), " ");
}
