#include "competitions/CompetitionInvoicing.h"

#include <QHash>

#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionRegister.h"
#include "invoicing/InvoiceFiles.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

using invoicing::InvoiceLine;
using invoicing::InvoiceParty;
using store::Store;

namespace {

// Per-player prices of the national natures, fixed in the program: they
// replace the confirmed entry price for those natures.
constexpr Money kQualifiedRegional = Money::fromCents(770);
constexpr Money kUnqualifiedRegional = Money::fromCents(1210);
constexpr Money kQualifiedFinal = Money::fromCents(330);

// Operators whose invoices are due the day they are made.
const QStringList kDueAtOnce{QStringLiteral("BFC"), QStringLiteral("PDL")};

QString text(const store::Row& r, const char* column) {
    return r.value(QLatin1String(column)).toString().trimmed();
}

bool isNature(const QString& nature, const QString& code) {
    return nature.trimmed().compare(code, Qt::CaseInsensitive) == 0;
}

// The season's price of a fee article; the competition's own nature first,
// as tariffs are kept by nature.
Money seasonTariff(const Store& store, const QString& article, const QString& season,
                   const QString& nature) {
    return Money::fromVariant(store.scalar(
        QStringLiteral("SELECT t_tarif FROM strtarifsaison WHERE t_article = ? AND t_saison = ? "
                       "ORDER BY CASE WHEN t_nature = ? THEN 0 ELSE 1 END, t_nature LIMIT 1"),
        {article, season.trimmed(), nature.trimmed()}));
}

// "CL13001 - Bowling Club Phocéen" gives "CL13001".
QString partyCode(const QString& partyName) {
    const QString t = partyName.trimmed();
    const int dash = t.indexOf(QStringLiteral(" - "));
    return (dash < 0 ? t.section(QChar(' '), 0, 0) : t.left(dash)).trimmed();
}

QString joined(const QString& a, const QString& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return a + QChar(' ') + b;
}

// The invoiced party of a row, read from its own table: a league at its
// president's or its CSR's as it asked, a club, a committee.
InvoiceParty partyOf(const Store& store, const QString& kind, const QString& code,
                     const QString& rowName) {
    InvoiceParty p;
    p.account = code;
    if (kind.compare(kLeagues, Qt::CaseInsensitive) == 0) {
        const auto r =
            store.selectOne(QStringLiteral("SELECT * FROM strregion WHERE re_code = ?"), {code});
        if (!r) throw Refusal(QStringLiteral("%1 : la ligue %2 n'existe pas.").arg(rowName, code));
        const bool csr =
            text(*r, "re_fact").compare(QStringLiteral("CSR"), Qt::CaseInsensitive) == 0;
        p.name = text(*r, "re_lib");
        p.president = csr ? joined(text(*r, "re_csr_int"), text(*r, "re_csr_nom"))
                          : joined(text(*r, "re_president_int"), text(*r, "re_president"));
        p.address1 = text(*r, "re_ad1");
        p.address2 = text(*r, "re_ad2");
        p.address3 = text(*r, "re_ad3");
        p.address4 = text(*r, "re_ad4");
        p.postcodeTown = joined(text(*r, "re_cp"), text(*r, "re_ville"));
        p.mail1 = text(*r, "re_mail1");
        p.mail2 = text(*r, "re_mail2");
        return p;
    }
    if (kind.compare(kCommittees, Qt::CaseInsensitive) == 0) {
        const QString number = code.mid(2);
        const auto r =
            store.selectOne(QStringLiteral("SELECT * FROM strdept WHERE de_no = ?"), {number});
        if (!r)
            throw Refusal(QStringLiteral("%1 : le comité départemental %2 n'existe pas.")
                              .arg(rowName, number));
        p.name = text(*r, "de_lib");
        p.president = text(*r, "de_president");
        p.address1 = text(*r, "de_ad1");
        p.address2 = text(*r, "de_ad2");
        p.address3 = text(*r, "de_ad3");
        p.address4 = text(*r, "de_ad4");
        p.postcodeTown = joined(text(*r, "de_cp"), text(*r, "de_ville"));
        p.mail1 = text(*r, "de_mail1");
        p.mail2 = text(*r, "de_mail2");
        return p;
    }
    const auto r =
        store.selectOne(QStringLiteral("SELECT * FROM strclub WHERE club_code = ?"), {code});
    if (!r) throw Refusal(QStringLiteral("%1 : le club %2 n'existe pas.").arg(rowName, code));
    p.name = text(*r, "club_nom");
    p.president = text(*r, "club_president");
    p.address1 = text(*r, "club_ad1");
    p.address2 = text(*r, "club_ad2");
    p.address3 = text(*r, "club_ad3");
    p.address4 = text(*r, "club_ad4");
    p.postcodeTown = joined(text(*r, "club_cp"), text(*r, "club_ville"));
    p.mail1 = text(*r, "club_mail1");
    p.mail2 = text(*r, "club_mail2");
    return p;
}

// One invoice to write, prepared before anything is written so that a row
// whose party is missing refuses the run with nothing half done.
struct PreparedInvoice {
    QString rowIndex;
    QString title;
    QString codification;
    InvoiceParty party;
    std::vector<InvoiceLine> lines;
    // What the document prints of the row itself.
    QString competitionDate, season, code1, code2;
};

// The address block as the document prints it: its blank lines left out.
QStringList addressLines(const InvoiceParty& p) {
    QStringList out;
    for (const QString& l :
         {p.name, p.president, p.address1, p.address2, p.address3, p.address4, p.postcodeTown})
        if (!l.trimmed().isEmpty()) out << l.trimmed();
    return out;
}

// The document of an invoice just written, from the values written: what
// reading it back would give, without the reading.
invoicing::InvoiceDocumentData documentOf(const QString& number, const PreparedInvoice& inv,
                                          const QDate& today, const QDate& due) {
    invoicing::InvoiceDocumentData d;
    d.number = number;
    d.date = format::displayDate(today);
    d.dueDate = format::displayDate(due);
    d.account = inv.party.account.trimmed();
    d.billed = addressLines(inv.party);
    d.billedName = inv.party.name.trimmed();
    d.clientAccount = d.account;
    d.client = d.billed;
    d.competitionTitle = inv.title.trimmed();
    d.competitionDate = inv.competitionDate;
    d.season = inv.season;
    d.code1 = inv.code1;
    d.code2 = inv.code2;
    int lineNumber = 0;
    for (const InvoiceLine& l : inv.lines)
        d.lines.push_back({format::zeroPad(++lineNumber, 2), l.article, l.text, l.quantity,
                           l.unitPrice, l.amount()});
    return d;
}

store::Fields headerFields(const QString& number, const PreparedInvoice& inv, const QString& nature,
                           const QDate& today, const QDate& due) {
    const InvoiceParty& p = inv.party;
    Money total;
    for (const auto& l : inv.lines) total += l.amount();
    return {{"ent_fact_no", number},
            {"ent_fact_type",
             total.isNegative() ? invoicing::kCreditNoteType : invoicing::kInvoiceType},
            {"ent_nature", nature},
            {"ent_fact_date", format::displayDate(today)},
            {"ent_fact_tri", format::sortDate(today)},
            {"ent_fact_echeance", format::displayDate(due)},
            {"ent_fact_competition", inv.title},
            {"ent_c_index", inv.rowIndex},
            {"ent_c_codification", inv.codification},
            {"ent_tiers_fact", p.account},
            {"ent_fact_entite", " "},
            {"ent_fact_lib", p.name},
            {"ent_fact_president", p.president},
            {"ent_fact_ad1", p.address1},
            {"ent_fact_ad2", p.address2},
            {"ent_fact_ad3", p.address3},
            {"ent_fact_ad4", p.address4},
            {"ent_fact_cp_ville", p.postcodeTown},
            {"ent_fact_mail1", p.mail1},
            {"ent_fact_mail2", p.mail2},
            {"ent_tiers_clt", p.account},
            {"ent_clt_entite", " "},
            {"ent_clt_lib", p.name},
            {"ent_clt_president", p.president},
            {"ent_clt_ad1", p.address1},
            {"ent_clt_ad2", p.address2},
            {"ent_clt_ad3", p.address3},
            {"ent_clt_ad4", p.address4},
            {"ent_clt_cp_ville", p.postcodeTown},
            {"ent_acompte", 0},
            {"ent_montant", QVariant::fromValue<qint64>(total.cents())},
            {"ent_fact_edt", "O"},
            {"ent_envoi_mail", "N"},
            {"ent_compta", "N"}};
}

// The invoice and its lines, under the numbering lock, in one transaction
// of the invoice file alone; then the row "A" that points at it, in one of
// the competition file. The two files commit one after the other even inside
// one transaction (SQLite commits attached files in turn), so a kill between
// two commits could leave a row pointing at a number never written, taken
// again by the next invoice. Written in this order, a kill leaves at worst a
// whole invoice that no row points at yet, which the next run takes over
// (adoptedInvoice) instead of writing it twice.
// Empty when the row is no longer "C".
QString writeInvoice(Store& store, const PreparedInvoice& inv, const QString& nature,
                     const QDate& today, const QDate& due) {
    store::Transaction tx(store);
    store.lockSeries(invoicing::kInvoiceSeries);
    // Another workstation may have opened the window and reset the row
    // meanwhile: it is then no longer this run's to invoice.
    if (!store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ? AND "
                                     "c_facture = ?"),
                      {inv.rowIndex, kCalculatedState}))
        return {};
    const QString number = invoicing::nextInvoiceNumber(store);
    store.insert(QStringLiteral("strentete"), headerFields(number, inv, nature, today, due));
    const QString padded = invoicing::paddedInvoiceNumber(number);
    int lineNumber = 0;
    for (const InvoiceLine& l : inv.lines)
        store.insert(QStringLiteral("strfacture"),
                     {{"f_num_facture", padded},
                      {"f_date_fact", format::displayDate(today)},
                      {"f_tri_date", format::sortDate(today)},
                      {"f_num_lig", format::zeroPad(++lineNumber, 2)},
                      {"f_article", l.article},
                      {"f_libelle", l.text},
                      {"f_qte", l.quantity},
                      {"f_pu", QVariant::fromValue<qint64>(l.unitPrice.cents())},
                      {"f_montant", QVariant::fromValue<qint64>(l.amount().cents())},
                      {"f_nature", nature},
                      {"f_index_compet", inv.rowIndex},
                      {"f_tiers_fact", inv.party.account},
                      {"f_fact_entite", " "},
                      {"f_tiers_clt", inv.party.account},
                      {"f_clt_entite", " "}});
    tx.commit();
    return number;
}

// The row follows its invoice: "A", its number and date.
void markRowWritten(Store& store, const QString& rowIndex, const QString& number,
                    const QString& date) {
    store::Transaction tx(store);
    const auto day = format::parseDisplayDate(date);
    store.update(QStringLiteral("strcompetition"),
                 {{"c_facture", kWrittenState},
                  {"c_num_facture", number},
                  {"c_date_facture", date},
                  {"c_tri_facture", day ? format::sortDate(*day) : QStringLiteral(" ")}},
                 QStringLiteral("c_index = ? AND c_facture = ?"), {rowIndex, kCalculatedState});
    tx.commit();
}

// An invoice a killed run wrote for a row of the competition without
// reaching the row: filed under the row, pointed at by no row, cancelled by
// no credit note, made out to the same party with the very lines the row
// now owes. Taking it over is the same as writing it again, without the
// second invoice. Returns its number and date by row.
QHash<QString, std::pair<QString, QString>> adoptedInvoices(
    const Store& store, const QString& index, const std::vector<PreparedInvoice>& invoices) {
    QHash<QString, std::pair<QString, QString>> adopted;
    const auto orphans = store.select(
        QStringLiteral(
            "SELECT e.ent_fact_no, e.ent_c_index, e.ent_tiers_fact, e.ent_fact_date "
            "FROM strentete e WHERE e.ent_c_index IN (SELECT c_index FROM strcompetition "
            "WHERE index_reference = ? AND c_facture = ?) AND e.ent_fact_type = ? "
            "AND NOT EXISTS (SELECT 1 FROM strcompetition c WHERE c.c_num_facture = "
            "e.ent_fact_no) AND NOT EXISTS (SELECT 1 FROM strentete o WHERE o.ent_fact_origine "
            "= e.ent_fact_no) ORDER BY CAST(e.ent_fact_no AS INTEGER)"),
        {index, kCalculatedState, invoicing::kInvoiceType});
    if (orphans.empty()) return adopted;
    QHash<QString, const PreparedInvoice*> byRow;
    for (const auto& inv : invoices) byRow.insert(inv.rowIndex.toUpper(), &inv);
    for (const auto& o : orphans) {
        const PreparedInvoice* inv = byRow.value(text(o, "ent_c_index").toUpper());
        if (!inv || adopted.contains(inv->rowIndex)) continue;
        if (text(o, "ent_tiers_fact").compare(inv->party.account, Qt::CaseInsensitive) != 0)
            continue;
        const QString number = text(o, "ent_fact_no");
        const auto stored = invoicing::readLines(store, number);
        bool same = stored.size() == inv->lines.size();
        for (size_t i = 0; same && i < stored.size(); ++i)
            same = stored[i].article == inv->lines[i].article &&
                   stored[i].text == inv->lines[i].text &&
                   stored[i].quantity == inv->lines[i].quantity &&
                   stored[i].unitPrice == inv->lines[i].unitPrice;
        if (same) adopted.insert(inv->rowIndex, {number, text(o, "ent_fact_date")});
    }
    return adopted;
}

// "N joueurs)" for a competition of individuals, "N équipes)" otherwise.
QString teamsText(qint64 count, int playersPerTeam) {
    return QString::number(count) +
           (playersPerTeam == 1 ? QStringLiteral(" joueurs)") : QStringLiteral(" équipes)"));
}

// The competition closes once every party row is printed.
void closeWhenAllInvoiced(Store& store, const QString& index) {
    store::Transaction tx(store);
    const bool open =
        store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE index_reference = ? AND "
                                    "(c_facture IS NULL OR c_facture <> ?)"),
                     {index, kInvoicedState});
    if (!open)
        store.update(QStringLiteral("strcompetition"), {{"c_facture", kInvoicedState}},
                     QStringLiteral("c_index = ? AND index_reference = ?"),
                     {index, kMasterReference});
    tx.commit();
}

}  // namespace

InvoicingPlan planInvoicing(const Store& store, const QString& index) {
    const CompetitionRecord c = loadCompetition(store, index);
    InvoicingPlan plan;
    plan.index = c.index;
    plan.season = c.season;
    plan.rows = store
                    .scalar(QStringLiteral("SELECT COUNT(*) FROM strcompetition WHERE "
                                           "index_reference = ? AND c_facture = ?"),
                            {c.index, kCalculatedState})
                    .toInt();
    if (plan.rows == 0) throw Refusal(QStringLiteral("Aucune facture à émettre."));
    plan.asksEntryPrice = c.billEntry;
    plan.asksLinePrice = c.billLines;
    plan.entryTariff = seasonTariff(store, kEntryFeeArticle, c.season, c.nature);
    plan.lineTariff = seasonTariff(store, kLineFeeArticle, c.season, c.nature);
    return plan;
}

Money confirmPrice(const QString& typed) {
    const auto price = Money::parse(typed.trimmed());
    if (!price || *price <= Money()) throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    return *price;
}

QDate competitionDueDate(const QDate& today, const QString& league) {
    if (kDueAtOnce.contains(league.trimmed(), Qt::CaseInsensitive)) return today;
    if (today.day() < 16) return QDate(today.year(), today.month(), today.daysInMonth());
    const QDate next = QDate(today.year(), today.month(), 1).addMonths(1);
    return QDate(next.year(), next.month(), 15);
}

std::vector<InvoiceLine> competitionInvoiceLines(const PartyRowCounts& row, const QString& nature,
                                                 int playersPerTeam, bool billEntry, bool billLines,
                                                 bool national, const QString& competitionTitle,
                                                 const InvoicingPrices& prices) {
    std::vector<InvoiceLine> lines;
    const qint64 p = playersPerTeam;
    if (national && (isNature(nature, kDbexcNature) || isNature(nature, kDbhonNature))) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe Qualifiée phase régionale"),
                         row.eliminatory, kQualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe Non Qualifiée phase régionale"),
                         row.finals, kUnqualifiedRegional * p});
    } else if (national && isNature(nature, kChafNature)) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe non qualifiée phase district"),
                         row.teams, kUnqualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe non qualifiée phase régionale"),
                         row.eliminatory, kQualifiedRegional * p});
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement : Equipe qualifiée phase régionale"),
                         row.finals, kQualifiedFinal * p});
    } else if (billEntry && row.teams != 0) {
        lines.push_back({kEntryFeeArticle,
                         QStringLiteral("Frais Engagement ") + competitionTitle.trimmed(),
                         row.teams, prices.entry * p});
    }
    if (billLines && row.eliminatory != 0)
        lines.push_back(
            {kLineFeeArticle,
             QStringLiteral("Lignage Eliminatoires (") + teamsText(row.eliminatory, playersPerTeam),
             row.eliminatory * p * row.eliminatoryLines, prices.line});
    if (billLines && row.finals != 0)
        lines.push_back({kLineFeeArticle,
                         QStringLiteral("Lignage Finale (") + teamsText(row.finals, playersPerTeam),
                         row.finals * p * row.finalLines, prices.line});
    return lines;
}

InvoicingOutcome invoiceCompetition(Store& store, const reference::Viewer& viewer,
                                    const invoicing::DocumentSettings& settings,
                                    const QString& index, const InvoicingPrices& prices,
                                    const QDate& today, const InvoicingProgress& progress) {
    const CompetitionRecord c = loadCompetition(store, index);
    if (c.billEntry && prices.entry <= Money())
        throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    if (c.billLines && prices.line <= Money())
        throw Refusal(QStringLiteral("Veuillez saisir un tarif"));
    const int players = static_cast<int>(format::leadingNumber(c.composition));
    const bool national = viewer.isNational();
    const QDate due = competitionDueDate(today, viewer.league);

    // Everything is read and checked first: a missing party refuses the run
    // before any invoice is written.
    std::vector<PreparedInvoice> invoices;
    QHash<QString, InvoiceParty> parties;
    for (const auto& r : store.select(rowsToInvoiceQuery(c.index))) {
        const QString rowName = text(r, "c_nom_organisateur");
        const QString kind = text(r, "c_organisateur");
        const QString code = partyCode(rowName);
        const QString partyKey = kind.toUpper() + QChar('|') + code.toUpper();
        auto found = parties.constFind(partyKey);
        if (found == parties.cend())
            found = parties.insert(partyKey, partyOf(store, kind, code, rowName));
        const PartyRowCounts counts{r.value("c_nb_equipe").toLongLong(),
                                    r.value("c_nb_equipe_eliminatoire").toLongLong(),
                                    r.value("c_nb_equipe_finale").toLongLong(),
                                    c.eliminatoryLines.toLongLong(), c.finalLines.toLongLong()};
        PreparedInvoice inv{text(r, "c_index"),
                            r.value("c_intitule").toString(),
                            r.value("c_codification").toString(),
                            *found,
                            competitionInvoiceLines(counts, c.nature, players, c.billEntry,
                                                    c.billLines, national, c.title, prices),
                            text(r, "c_date_finale"),
                            text(r, "c_saison"),
                            text(r, "c_cod1"),
                            text(r, "c_cod2")};
        if (inv.lines.empty()) continue;  // nothing owed: no invoice without lines
        if (inv.codification.isEmpty()) inv.codification = QStringLiteral(" ");
        invoices.push_back(std::move(inv));
    }
    if (invoices.empty()) throw Refusal(QStringLiteral("Aucune facture à émettre."));

    const auto adopted = adoptedInvoices(store, c.index, invoices);

    InvoicingOutcome outcome;
    const int total = static_cast<int>(invoices.size());
    {
        // Records are written here, each invoice in one transaction and its
        // row in the next, while the workers draw the documents of those
        // already written.
        invoicing::DocumentRun run(store, settings);
        for (const PreparedInvoice& inv : invoices) {
            if (progress && !progress(run.marked(), total)) {
                outcome.cancelled = true;
                break;
            }
            if (const auto it = adopted.constFind(inv.rowIndex); it != adopted.cend()) {
                markRowWritten(store, inv.rowIndex, it->first, it->second);
                outcome.numbers.push_back(it->first);
                run.add(it->first);
                continue;
            }
            const QString number = writeInvoice(store, inv, c.nature, today, due);
            if (number.isEmpty()) continue;
            markRowWritten(store, inv.rowIndex, number, format::displayDate(today));
            outcome.numbers.push_back(number);
            run.add(documentOf(number, inv, today, due));
        }
        outcome.files = run.finish([&](int done, int) {
            if (progress) progress(done, total);
            return true;
        });
    }
    if (!outcome.cancelled) closeWhenAllInvoiced(store, c.index);
    return outcome;
}

}  // namespace orve::competitions
