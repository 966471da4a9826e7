#include "shell/DemoCompetitions.h"

#include <algorithm>
#include <tuple>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/RowInvoicing.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/RecordStates.h"
#include "reference/Visibility.h"
#include "store/Formats.h"
#include "store/Money.h"
#include "store/Refusal.h"

namespace orve::shell {

using store::Store;

namespace {

struct DemoCompetition {
    reference::Viewer viewer;
    const char* title;
    const char* nature;
    const char* composition;
    const QString& kind;
    bool entry, lines;
    const char* eliminatoryLines;
    const char* finalLines;
    int month, day;  // in the season's second year
    // Party code at the head of the row, and its three counts.
    std::vector<std::tuple<const char*, const char*, const char*, const char*>> counts;
    // The organiser's level (c_cod3: "DE", "IR") and code (c_cod4, "R…" for
    // a league), by which the statistics count the competition.
    const char* level = "";
    const char* organiser = "";
    // Played and invoiced already, so that the statistics have something to
    // count from the first day (then `month` says how many months before
    // the last: 12 is the latest).
    bool invoiced = false;
};

// The invoices of a competition played earlier in the season: its rows
// calculated and invoiced as its generation does, each closed with its
// number; mailed then, their documents are not printed here, as with the
// demo's other invoices.
void invoicePastCompetition(Store& s, const reference::Viewer& viewer, const QString& index,
                            const QDate& day, const QDate& today) {
    const competitions::CompetitionRecord c = competitions::loadCompetition(s, index);
    const auto tariff = [&](const QString& article) {
        return Money::fromVariant(
            s.scalar(QStringLiteral("SELECT t_tarif FROM strtarifsaison WHERE t_article = ? AND "
                                    "t_nature = ? ORDER BY t_saison DESC LIMIT 1"),
                     {article, c.nature}));
    };
    const competitions::InvoicingPrices prices{tariff(competitions::kEntryFeeArticle),
                                               tariff(competitions::kLineFeeArticle)};
    // The rows the calculation marks, as the window would.
    competitions::calculateCompetition(s, viewer, index, c.nature, false);
    for (const auto& r : s.select(competitions::rowsToInvoiceQuery(index))) {
        const QString rowName = r.value("c_nom_organisateur").toString();
        const QString code = competitions::partyCodeOf(rowName);
        const bool league =
            r.value("c_organisateur").toString().trimmed() == competitions::kLeagues;
        const competitions::PartyRowCounts counts{
            r.value("c_nb_equipe").toLongLong(), r.value("c_nb_equipe_eliminatoire").toLongLong(),
            r.value("c_nb_equipe_finale").toLongLong(), c.eliminatoryLines.toLongLong(),
            c.finalLines.toLongLong()};
        const auto lines = competitions::competitionInvoiceLines(
            counts, c.nature, static_cast<int>(format::leadingNumber(c.composition)), c.billEntry,
            c.billLines, viewer.isNational(), c.title, prices);
        if (lines.empty()) continue;
        Money total;
        for (const auto& l : lines) total = total + l.amount();
        invoicing::InvoiceHeader h;
        h.dateText = format::displayDate(day);
        h.dueDateText = format::displayDate(day.addDays(30));
        h.nature = c.nature;
        h.competitionIndex = r.value("c_index").toString();
        h.competitionTitle = c.title;
        h.codification = QStringLiteral(" ");
        // Laid out as the competitions' own runs lay out their parties.
        h.billed = league ? competitions::leagueInvoiceParty(s, code, rowName)
                          : competitions::clubInvoiceParty(s, code, rowName);
        h.client = h.billed;
        h.level = viewer.league;
        const QString number = invoicing::createInvoice(s, h, today);
        invoicing::updateLine(s, number, QStringLiteral("01"), lines.front());
        for (size_t i = 1; i < lines.size(); ++i) invoicing::appendLine(s, number, lines[i]);
        s.update(QStringLiteral("strcompetition"),
                 {{"c_facture", competitions::kInvoicedState},
                  {"c_num_facture", number},
                  {"c_date_facture", format::displayDate(day)},
                  {"c_tri_facture", format::sortDate(day)},
                  {"c_edt_fact", invoicing::kDocumentMade},
                  {"c_envoi_mail", invoicing::kYes}},
                 QStringLiteral("c_index = ?"), {h.competitionIndex});
        // Mailed when they were made; the transfer to accounting is still to do.
        s.update(QStringLiteral("strentete"),
                 {{"ent_montant", QVariant::fromValue<qint64>(total.cents())},
                  {"ent_envoi_mail", invoicing::kYes}},
                 QStringLiteral("ent_fact_no = ?"), {number});
    }
    competitions::closeCompetitionWhenInvoiced(s, index);
}

}  // namespace

void fillCompetitions(Store& s, int season, const QDate& today) {
    using competitions::kClubs;
    using competitions::kCommittees;
    const reference::Viewer league{"ligue06", "LR06", "D1"};
    const reference::Viewer committee{"CD13", "13", "D1"};
    const reference::Viewer national{"gestu", "JKV", "D1"};
    const DemoCompetition demo[] = {
        {league,
         "Championnat régional quadrettes",
         "CDCNH",
         "4",
         kClubs,
         true,
         true,
         "6",
         "3",
         3,
         14,
         {{"CL06001", "2", "2", "1"},
          {"CL13001", "3", "2", "1"},
          {"CL13002", "1", "0", "0"},
          {"CL13003", "2", "1", "0"}},
         "",
         "R06"},
        {league,
         "Coupe des comités doublettes dames",
         "CDCND",
         "2",
         kCommittees,
         true,
         false,
         "0",
         "0",
         4,
         11,
         {{"CD013", "4", "0", "0"}, {"CD083", "2", "0", "0"}},
         "",
         "R06"},
        {committee,
         "Challenge départemental individuel",
         "CDCNH",
         "1",
         kClubs,
         true,
         true,
         "3",
         "2",
         2,
         7,
         {{"CL13001", "6", "4", "2"}, {"CL13002", "3", "0", "0"}, {"CL13003", "2", "2", "0"}},
         "DE",
         "D13"},
        {national,
         "Challenge fédéral",
         "CHAF",
         "4",
         kClubs,
         true,
         false,
         "0",
         "0",
         5,
         23,
         {{"LR06", "10", "4", "2"},
          {"LR11", "6", "3", "1"},
          {"LR21", "2", "1", "0"},
          {"LR44", "5", "2", "1"},
          {"LR69", "3", "1", "0"}}},
        {national,
         "Doublettes honneur",
         "DBHON",
         "2",
         kClubs,
         true,
         false,
         "0",
         "0",
         6,
         6,
         {{"LR06", "0", "3", "1"}, {"LR11", "0", "2", "2"}, {"LR33", "0", "1", "0"}},
         "IR",
         "ISE"},
        {league,
         "Coupe d'automne de la ligue Azur",
         "CDCNH",
         "3",
         kClubs,
         true,
         true,
         "3",
         "3",
         10,
         18,
         {{"CL06001", "2", "2", "1"}, {"CL13001", "1", "1", "0"}},
         "",
         "R06",
         true},
        {committee,
         "Trophée d'automne des Bouches-du-Rhône",
         "CDCND",
         "2",
         kClubs,
         true,
         false,
         "0",
         "0",
         11,
         22,
         {{"CL13001", "3", "0", "0"}, {"CL13002", "2", "0", "0"}},
         "DE",
         "D13",
         true},
        {national,
         "Challenge inter-régional Sud-Est",
         "CHAF",
         "4",
         kClubs,
         true,
         false,
         "0",
         "0",
         12,
         6,
         {{"LR06", "4", "2", "1"}, {"LR11", "3", "1", "0"}},
         "IR",
         "ISE",
         true},
    };
    for (const auto& d : demo) {
        competitions::CompetitionRecord r;
        r.season = QString::number(season);
        r.title = QString::fromUtf8(d.title);
        r.nature = QString::fromUtf8(d.nature);
        r.composition = QString::fromUtf8(d.composition);
        r.billedKind = d.kind;
        r.billEntry = d.entry;
        r.billLines = d.lines;
        r.eliminatoryLines = QString::fromUtf8(d.eliminatoryLines);
        r.finalLines = QString::fromUtf8(d.finalLines);
        // Invoiced ones were played a few days ago, within the season.
        const QDate invoiceDay = std::min(
            today, std::max(QDate(season - 1, 9, 4), today.addDays(-5).addMonths(d.month - 12)));
        r.date = format::displayDate(d.invoiced ? invoiceDay.addDays(-3)
                                                : QDate(season, d.month, d.day));
        r.codes[2] = QString::fromUtf8(d.level);
        r.codes[3] = QString::fromUtf8(d.organiser);
        const QString index = competitions::saveCompetition(s, d.viewer, r).index;
        for (const auto& [code, teams, eliminatory, finals] : d.counts) {
            const auto row = s.selectOne(
                QStringLiteral("SELECT c_index FROM strcompetition WHERE index_reference = ? AND "
                               "c_nom_organisateur LIKE ?"),
                {index, QString::fromUtf8(code) + QStringLiteral(" - %")});
            if (!row)
                throw StoreError(QStringLiteral("Données de démonstration incomplètes : %1 dans %2")
                                     .arg(QString::fromUtf8(code), index));
            competitions::setTeamCounts(s, d.viewer, row->value(0).toString(),
                                        {QString::fromUtf8(teams), QString::fromUtf8(eliminatory),
                                         QString::fromUtf8(finals)});
        }
        if (d.invoiced) invoicePastCompetition(s, d.viewer, index, invoiceDay, today);
    }
}

namespace {

// Competitions of the working season as the national championship and
// private imports write them, with what their invoicing reads: lines at
// levels N1 to N3, a fixed part (cents) and players. Some owe nothing or name
// nobody ("CL99999"), as real files have them.
struct DemoImported {
    const char* number;  // after the prefix
    const char* type;
    const char* nature;
    const char* title;
    const char* codification;
    const char* organiser;
    const char* n1;
    const char* n2;
    const char* n3;
    qint64 fixedPartCents;
    qint64 players;
    int month, day;  // in the season's first year (autumn) or second
};

}  // namespace

void fillImportedCompetitions(Store& s, int season) {
    const QString digit = QString::number(season).right(1);
    const DemoImported demo[] = {
        {"00001", "FD", "CDCND", "CHAMPIONNAT DES CLUBS-NATIONAL", "CL13001",
         "Bowling Club Phocéen", "4", "2", "0", 0, 0, 5, 27},
        {"00002", "FD", "CDCNH", "CHAMPIONNAT DES CLUBS-NATIONAL", "CL13001",
         "Bowling Club Phocéen", "6", "0", "1", 0, 0, 5, 27},
        {"00003", "FD", "CDCND", "CHAMPIONNAT DES CLUBS-NATIONAL", "CL75001", "Paris Quilles Club",
         "0", "0", "0", 0, 0, 5, 27},
        {"00004", "FD", "CDCNH", "CHAMPIONNAT DES CLUBS-NATIONAL", "CL75001", "Paris Quilles Club",
         "3", "3", "3", 0, 0, 5, 27},
        {"00005", "FD", "CDCND", "CHAMPIONNAT DES CLUBS-NATIONAL", "CL99999", "Club inconnu", "5",
         "0", "0", 0, 0, 5, 27},
        {"00001", "PR", "PRIVE", "Tournoi d'automne du Prado", "BOW0131", "BOW0131", "", "", "",
         5000, 24, 10, 12},
        {"00002", "PR", "PRIVE", "Open de Bercy", "CL75001", "CL75001", "", "", "", 0, 40, 1, 16},
        {"00003", "PR", "PRIVE", "Trophée du comité des Bouches-du-Rhône", "CD13", "CD013", "", "",
         "", 3000, 0, 3, 6},
        {"00004", "PR", "PRIVE", "Masters de la ligue Azur", "LR06", "LR06", "", "", "", 0, 0, 4,
         3},
        {"00005", "PR", "PRIVE", "Tournoi sans organisateur", "CL99999", "CL99999", "", "", "",
         2000, 10, 2, 20},
    };
    for (const auto& d : demo) {
        const bool championship = QString::fromUtf8(d.type) == QStringLiteral("FD");
        const QDate date(d.month >= 9 ? season - 1 : season, d.month, d.day);
        const QString organiser = QString::fromUtf8(d.organiser);
        // A private competition's organiser kind: a club, a committee, a league.
        const QString kind = organiser.startsWith(QStringLiteral("CL"))   ? QStringLiteral("C")
                             : organiser.startsWith(QStringLiteral("CD")) ? QStringLiteral("D")
                             : organiser.startsWith(QStringLiteral("LR")) ? QStringLiteral("R")
                                                                          : QStringLiteral(" ");
        s.insert("strcompetition",
                 {{"c_index", digit + QString::fromUtf8(championship ? "FD" : "PR") +
                                  QString::fromUtf8(d.number)},
                  {"index_reference", competitions::kMasterReference},
                  {"c_saison", QString::number(season)},
                  {"c_type", QString::fromUtf8(d.type)},
                  {"c_intitule", QString::fromUtf8(d.title)},
                  {"c_formule", "00"},
                  {"c_nature", QString::fromUtf8(d.nature)},
                  {"c_codification", QString::fromUtf8(d.codification)},
                  {"c_cod1", championship ? QString() : QStringLiteral("NATDM")},
                  {"c_cod2", championship ? QString() : QString::fromUtf8(d.number)},
                  {"c_cod3", QString::fromUtf8(d.n1)},
                  {"c_cod4", QString::fromUtf8(d.n2)},
                  {"c_cod5", QString::fromUtf8(d.n3)},
                  {"c_date_finale", format::displayDate(date)},
                  {"c_tri_finale", format::sortDate(date)},
                  {"c_dept", "00"},
                  {"c_num_bowling", "000"},
                  {"c_organisateur", championship ? QStringLiteral("C") : kind},
                  {"c_nom_organisateur", championship ? organiser : QString()},
                  {"c_arbitre", "NC"},
                  {"c_nb_equipe_eliminatoire", d.fixedPartCents},
                  {"c_nb_equipe_finale", d.players},
                  {"c_date_enreg", format::displayDate(QDate(season - 1, 9, 1))},
                  {"c_date_modif", format::displayDate(QDate(season - 1, 9, 1))},
                  {"c_facture", competitions::kOpenState},
                  {"c_nat_fact", "C"},
                  {"c_fact_ligne", "N"},
                  {"c_fact_engagement", "N"},
                  {"c_envoi_mail", invoicing::kNo},
                  {"c_add_tiers", "N"}});
    }
}

}  // namespace orve::shell
