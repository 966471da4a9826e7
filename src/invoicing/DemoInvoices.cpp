#include "invoicing/DemoInvoices.h"

#include "invoicing/CreditNotes.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/RecordStates.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Seasons.h"

namespace orve::invoicing {

using store::trimmedText;

namespace {

store::Row row(const store::Store& s, const QString& sql, const QString& key) {
    const auto r = s.selectOne(sql, {key});
    if (!r) throw StoreError(QStringLiteral("Données de démonstration incomplètes : %1").arg(key));
    return *r;
}

// A party's billing block read from its row: every party table names its
// columns prefix + "_president", "_ad1".., "_cp", "_ville", "_mail1", "_mail2".
InvoiceParty partyOf(const store::Row& r, const QString& account, const QString& prefix,
                     const QString& name) {
    auto col = [&](const char* suffix) {
        return r.value(prefix + QLatin1String(suffix)).toString();
    };
    return {account,           QString(),    name,
            col("_president"), col("_ad1"),  col("_ad2"),
            col("_ad3"),       col("_ad4"),  col("_cp") + QStringLiteral(" ") + col("_ville"),
            col("_mail1"),     col("_mail2")};
}

InvoiceParty club(const store::Store& s, const QString& code) {
    const auto r = row(s, QStringLiteral("SELECT * FROM strclub WHERE club_code = ?"), code);
    return partyOf(r, code, QStringLiteral("club"), trimmedText(r, "club_nom"));
}

// Committees are invoiced under "CD" followed by their number.
InvoiceParty committee(const store::Store& s, const QString& no) {
    const auto r = row(s, QStringLiteral("SELECT * FROM strdept WHERE de_no = ?"), no);
    return partyOf(r, QStringLiteral("CD") + no, QStringLiteral("de"),
                   QStringLiteral("Comité Départemental ") + trimmedText(r, "de_lib"));
}

InvoiceParty league(const store::Store& s, const QString& code) {
    const auto r = row(s, QStringLiteral("SELECT * FROM strregion WHERE re_code = ?"), code);
    return partyOf(r, code, QStringLiteral("re"), trimmedText(r, "re_lib"));
}

InvoiceHeader header(const store::Store& s, const QString& index, const QDate& date,
                     const InvoiceParty& billed, const InvoiceParty& client) {
    const auto c = row(s, QStringLiteral("SELECT * FROM strcompetition WHERE c_index = ?"), index);
    InvoiceHeader h;
    h.dateText = format::displayDate(date);
    h.dueDateText = format::displayDate(date.addDays(30));
    h.nature = trimmedText(c, "c_nature");
    h.competitionIndex = index;
    h.competitionTitle = trimmedText(c, "c_intitule");
    h.codification = c.value("c_codification").toString();
    h.billed = billed;
    h.client = client;
    return h;
}

Money price(const store::Store& s, const QString& article) {
    return Money::fromVariant(
        s.scalar(QStringLiteral("SELECT t_tarif FROM strtarifsaison WHERE t_article = ? "
                                "ORDER BY t_saison DESC LIMIT 1"),
                 {article}));
}

QString articleText(const store::Store& s, const QString& article) {
    return s.scalar(QStringLiteral("SELECT a_libelle FROM strarticle WHERE a_index = ?"), {article})
        .toString();
}

// The first line of a new invoice becomes the first real line.
void fill(store::Store& s, const QString& number, const std::vector<InvoiceLine>& lines) {
    updateLine(s, number, QStringLiteral("01"), lines.front());
    for (size_t i = 1; i < lines.size(); ++i) appendLine(s, number, lines[i]);
}

InvoiceLine article(const store::Store& s, const QString& code, qint64 quantity) {
    return {code, articleText(s, code), quantity, price(s, code)};
}

}  // namespace

void createDemoInvoices(store::Store& s, const QDate& today) {
    store::Transaction tx(s);
    // The working season's invoices are numbered from <season>000001, as
    // the new-season and renumbering tools leave them: the national transfer
    // file writes the season and the last four digits, and reads them back.
    s.insert(QStringLiteral("strentete"),
             {{"ent_fact_no", QString::number(qint64(store::seasonOf(today)) * 1000000)},
              {"ent_fact_type", kInvoiceType},
              {"ent_fact_lib", QStringLiteral("Changement de numerotation")},
              {"ent_fact_date", format::displayDate(today)},
              {"ent_fact_tri", format::sortDate(today)},
              {"ent_montant", 0},
              {"ent_acompte", 0},
              {"ent_fact_edt", kNo},
              {"ent_envoi_mail", kYes},
              {"ent_compta", kYes}});

    const QDate day = today.addDays(-10);
    const InvoiceParty none;

    // Licences of a club, invoiced by its league.
    InvoiceHeader licenceHeader =
        header(s, kLicenceIndex, day, club(s, QStringLiteral("CL13001")), none);
    licenceHeader.level = QStringLiteral("LR06");
    const QString licences = createInvoice(s, licenceHeader, today);
    fill(s, licences,
         {article(s, QStringLiteral("00000004"), 1), article(s, QStringLiteral("00000001"), 12),
          article(s, QStringLiteral("00000002"), 5), article(s, QStringLiteral("00000003"), 3)});

    // Miscellaneous invoice of the league to a committee, with a free-text
    // line and a deposit.
    InvoiceHeader misc = header(s, kMiscIndex, day, committee(s, QStringLiteral("013")), none);
    misc.deposit = Money::fromCents(5000);
    misc.level = QStringLiteral("LR06");
    const QString miscNumber = createInvoice(s, misc, today);
    fill(s, miscNumber,
         {article(s, QStringLiteral("00000005"), 1),
          article(s, QStringLiteral("00000006"), 2),
          {kFreeTextArticle, QStringLiteral("Location de la salle pour l'assemblée générale"), 1,
           Money::fromCents(25000)}});

    // A league's yearly subscription, made out on behalf of the league itself.
    const InvoiceParty lr06 = league(s, QStringLiteral("LR06"));
    const QString leagueNumber = createInvoice(s, header(s, kLeagueIndex, day, lr06, lr06), today);
    fill(s, leagueNumber,
         {article(s, QStringLiteral("00000010"), 1), article(s, QStringLiteral("00000012"), 40)});

    // The committee's invoice is cancelled by a credit note that names it.
    issueCreditNotes(s, {miscNumber}, today);

    // A regional day with one line per team: two pages.
    const InvoiceParty lr44 = league(s, QStringLiteral("LR44"));
    InvoiceHeader day44 = header(s, kRegionalDayIndex, day, lr44, lr44);
    day44.competitionTitle = QStringLiteral("Journée régionale Pays de la Loire du ") +
                             format::displayDate(day.addDays(-20));
    const QString longNumber = createInvoice(s, day44, today);
    std::vector<InvoiceLine> teams;
    const Money fee = price(s, QStringLiteral("00000011"));
    for (int i = 1; i <= 45; ++i)
        teams.push_back({QStringLiteral("00000011"),
                         QStringLiteral("Participation journée régionale - équipe %1").arg(i),
                         1 + i % 3, Money::fromCents(fee.cents() / 10)});
    fill(s, longNumber, teams);
    tx.commit();
}

}  // namespace orve::invoicing
