#include "competitions/RowInvoicing.h"

#include <QStringList>
#include <algorithm>

#include "competitions/CompetitionRegister.h"
#include "competitions/InvoicingRuns.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceParties.h"
#include "invoicing/RecordStates.h"
#include "reference/PartyRecords.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

using store::trimmedText;

using invoicing::InvoiceLine;
using invoicing::InvoiceParty;
using store::Store;

namespace {

QString joined(const QString& a, const QString& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return a + QChar(' ') + b;
}

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

store::Fields headerFields(const QString& number, const PreparedInvoice& inv, const QDate& today,
                           const QDate& due) {
    const InvoiceParty& p = inv.party;
    Money total;
    for (const auto& l : inv.lines) total += l.amount();
    return {{"ent_fact_no", number},
            {"ent_fact_type",
             total.isNegative() ? invoicing::kCreditNoteType : invoicing::kInvoiceType},
            {"ent_nature", inv.nature},
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
            {"ent_fact_edt", invoicing::kNo},  // printed once its document is on disk
            {"ent_envoi_mail", invoicing::kNo},
            {"ent_compta", invoicing::kNo}};
}

// The invoice and its lines, under the numbering lock, in one transaction
// of the invoice file alone; then the row "A" that points at it, in one of
// the competition file. The two files commit one after the other even inside
// one transaction (SQLite commits attached files in turn), so a kill between
// two commits could leave a row pointing at a number never written, taken
// again by the next invoice. Written in this order, a kill leaves at worst a
// whole invoice that no row points at yet, which the next run or opening
// gives back to its row (finishInterruptedRows) instead of writing it twice.
// Empty when the row is no longer "C".
QString writeInvoice(Store& store, const PreparedInvoice& inv, const QDate& today,
                     const QDate& due) {
    store::Transaction tx(store);
    store.lockSeries(invoicing::kInvoiceSeries);
    // Another workstation may have opened the window and reset the row
    // meanwhile: it is then no longer this run's to invoice.
    if (!store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ? AND "
                                     "c_facture = ?"),
                      {inv.rowIndex, kCalculatedState}))
        return {};
    const QString number = invoicing::nextInvoiceNumber(store);
    store::Fields header = headerFields(number, inv, today, due);
    // The competition's owner issues its invoices.
    header.push_back({"ent_niveau", competitionOwner(store, inv.rowIndex)});
    store.insert(QStringLiteral("strentete"), header);
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
                      {"f_nature", inv.nature},
                      {"f_index_compet", inv.rowIndex},
                      {"f_tiers_fact", inv.party.account},
                      {"f_fact_entite", " "},
                      {"f_tiers_clt", inv.party.account},
                      {"f_clt_entite", " "}});
    tx.commit();
    return number;
}

// The row follows its invoice: "A", its number and date. Only a row still
// in one of `from` (and without an invoice) is changed. Returns whether it was.
bool markRowWritten(Store& store, const QString& rowIndex, const QString& number,
                    const QString& date, const QStringList& from = {kCalculatedState}) {
    store::Transaction tx(store);
    const auto day = format::parseDisplayDate(date);
    QStringList marks;
    store::Params params{rowIndex};
    for (const QString& state : from) {
        marks << QStringLiteral("?");
        params.push_back(state);
    }
    const int changed = store.update(
        QStringLiteral("strcompetition"),
        {{"c_facture", kWrittenState},
         {"c_num_facture", number},
         {"c_date_facture", date},
         {"c_tri_facture", day ? format::sortDate(*day) : QStringLiteral(" ")}},
        QStringLiteral("c_index = ? AND COALESCE(c_facture, ' ') IN (%1)").arg(marks.join(',')),
        params);
    tx.commit();
    return changed > 0;
}

// The account an invoice of a row is made out to: the party code of a party
// row, the codification of a national row ("CD13" is "CD013").
QString expectedAccount(const store::Row& row) {
    if (trimmedText(row, "index_reference") != kMasterReference)
        return partyCodeOf(trimmedText(row, "c_nom_organisateur"));
    const QString code = trimmedText(row, "c_codification").toUpper();
    if (code.startsWith(QStringLiteral("CD")))
        return QStringLiteral("CD") + format::padCode(code.mid(2), 3);
    return code;
}

// Invoices a run wrote for rows it never reached, given back to their rows.
int attachOrphanInvoices(Store& store, const store::Condition& outside) {
    const store::Condition rows =
        store::Condition(
            QStringLiteral("e.ent_fact_type = ? AND COALESCE(TRIM(c.c_facture), '') IN ('', ?) "
                           "AND COALESCE(TRIM(c.c_num_facture), '') = '' "
                           "AND NOT EXISTS (SELECT 1 FROM strcompetition o WHERE "
                           "o.c_num_facture = e.ent_fact_no) AND NOT EXISTS (SELECT 1 FROM "
                           "strentete a WHERE a.ent_fact_origine = e.ent_fact_no)"),
            {invoicing::kInvoiceType, kCalculatedState}) &&
        outside;
    const auto orphans = store.select(
        QStringLiteral("SELECT e.ent_fact_no, e.ent_fact_date, e.ent_tiers_fact, c.c_index, "
                       "c.index_reference, c.c_nom_organisateur, c.c_codification FROM strentete "
                       "e JOIN strcompetition c ON c.c_index = e.ent_c_index") +
            rows.where() + QStringLiteral(" ORDER BY CAST(e.ent_fact_no AS INTEGER)"),
        rows.params());
    int attached = 0;
    for (const auto& o : orphans) {
        if (trimmedText(o, "ent_tiers_fact").compare(expectedAccount(o), Qt::CaseInsensitive) != 0)
            continue;
        if (markRowWritten(store, trimmedText(o, "c_index"), trimmedText(o, "ent_fact_no"),
                           trimmedText(o, "ent_fact_date"), {kOpenState, kCalculatedState, ""}))
            ++attached;
    }
    return attached;
}

QString numbersText(const std::vector<QString>& numbers) {
    if (numbers.empty()) return {};
    if (numbers.size() == 1) return QStringLiteral("N° ") + numbers.front();
    return QStringLiteral("N° %1 à %2").arg(numbers.front(), numbers.back());
}

// What the operator reads when a run stops on a failure.
QString interruptedText(const QString& cause, const InvoicingOutcome& done, int documented,
                        int notInvoiced) {
    QStringList t;
    t << QStringLiteral("La génération des factures s'est arrêtée : %1").arg(cause);
    if (done.numbers.empty())
        t << QStringLiteral("Aucune facture n'a été enregistrée par cette génération.");
    else
        t << QStringLiteral(
                 "%1 facture(s) enregistrée(s) avant l'arrêt (%2), dont %3 avec leur "
                 "document.")
                 .arg(done.numbers.size())
                 .arg(numbersText(done.numbers))
                 .arg(documented);
    if (notInvoiced > 0)
        t << QStringLiteral("%1 ligne(s) n'ont pas été facturées : elles restent à facturer.")
                 .arg(notInvoiced);
    if (const QString notes = outcomeNotes(done); !notes.isEmpty()) t << notes;
    const int missing = static_cast<int>(done.numbers.size()) - documented;
    if (missing > 0)
        t << QStringLiteral(
                 "Les %1 document(s) manquant(s) seront faits par la prochaine "
                 "génération ou à l'ouverture de la fenêtre, sans facturer deux fois.")
                 .arg(missing);
    return t.join(QChar('\n'));
}

}  // namespace

QString partyCodeOf(const QString& partyName) {
    const QString t = partyName.trimmed();
    const int dash = t.indexOf(QStringLiteral(" - "));
    return (dash < 0 ? t.section(QChar(' '), 0, 0) : t.left(dash)).trimmed();
}

QString outcomeNotes(const InvoicingOutcome& outcome) {
    QStringList t;
    if (!outcome.finished.empty())
        t << QStringLiteral(
                 "%1 facture(s) laissée(s) sans document par une génération "
                 "interrompue ont d'abord été terminées (%2).")
                 .arg(outcome.finished.size())
                 .arg(numbersText(outcome.finished));
    if (!outcome.lost.empty())
        t << QStringLiteral(
                 "%1 ligne(s) reprises entre-temps par un autre poste n'ont pas été "
                 "facturées : %2. Calculez à nouveau la compétition pour les "
                 "facturer.")
                 .arg(outcome.lost.size())
                 .arg(QStringList(outcome.lost.begin(), outcome.lost.end())
                          .join(QStringLiteral(", ")));
    return t.join(QChar('\n'));
}

QString FinishedRows::report() const {
    if (empty()) return {};
    QStringList t;
    if (attached > 0)
        t << QStringLiteral(
                 "%1 facture(s) écrite(s) par une génération interrompue ont été "
                 "rattachées à leur ligne de compétition.")
                 .arg(attached);
    if (!numbers.empty())
        t << QStringLiteral(
                 "%1 facture(s) laissée(s) sans document par une génération "
                 "interrompue ont été terminées (%2).")
                 .arg(numbers.size())
                 .arg(numbersText(numbers));
    return t.join(QChar('\n'));
}

void closeCompetitionWhenInvoiced(Store& store, const QString& index) {
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

FinishedRows finishInterruptedRows(Store& store, const invoicing::DocumentSettings& settings,
                                   const QString& ownToken) {
    FinishedRows finished;
    const store::Condition outside = rowsOutsideLiveRuns(store, ownToken);
    finished.attached = attachOrphanInvoices(store, outside);
    const store::Condition written =
        store::Condition(QStringLiteral("c_facture = ? AND EXISTS (SELECT 1 FROM strentete e "
                                        "WHERE e.ent_fact_no = c_num_facture)"),
                         {kWrittenState}) &&
        outside;
    const auto rows = store.select(
        QStringLiteral("SELECT c_num_facture, index_reference FROM strcompetition") +
            written.where() + QStringLiteral(" ORDER BY CAST(c_num_facture AS INTEGER)"),
        written.params());
    if (rows.empty()) return finished;
    QStringList competitions;
    {
        invoicing::DocumentRun run(store, settings);
        for (const auto& r : rows) {
            const QString number = trimmedText(r, "c_num_facture");
            if (std::find(finished.numbers.begin(), finished.numbers.end(), number) !=
                finished.numbers.end())
                continue;
            finished.numbers.push_back(number);
            run.add(number);
            const QString reference = trimmedText(r, "index_reference");
            if (reference != kMasterReference && !competitions.contains(reference))
                competitions << reference;
        }
        finished.files = run.finish();
    }
    for (const QString& index : competitions) closeCompetitionWhenInvoiced(store, index);
    return finished;
}

QDate endOfMonthDueDate(const QDate& today) {
    if (today.day() < 16) return QDate(today.year(), today.month(), today.daysInMonth());
    const QDate next = QDate(today.year(), today.month(), 1).addMonths(1);
    return QDate(next.year(), next.month(), 15);
}

Money seasonTariff(const Store& store, const QString& article, const QString& season,
                   const QString& nature) {
    return Money::fromVariant(store.scalar(
        QStringLiteral("SELECT t_tarif FROM strtarifsaison WHERE t_article = ? AND t_saison = ? "
                       "ORDER BY CASE WHEN t_nature = ? THEN 0 ELSE 1 END, t_nature LIMIT 1"),
        {article, season.trimmed(), nature.trimmed()}));
}

// The batch runs write "postcode town".
const QString kRunSeparator = QStringLiteral(" ");

InvoiceParty leagueInvoiceParty(const Store& store, const QString& code, const QString& rowName) {
    const auto l = reference::leagueRecord(store, code);
    if (!l) throw Refusal(QStringLiteral("%1 : la ligue %2 n'existe pas.").arg(rowName, code));
    InvoiceParty p = invoicing::partyFromBlock(l->block, code, kRunSeparator);
    const bool csr = l->billedAs.compare(QStringLiteral("CSR"), Qt::CaseInsensitive) == 0;
    p.president = csr ? joined(l->csrTitle, l->csrName) : joined(l->presidentTitle, l->president);
    return p;
}

InvoiceParty committeeInvoiceParty(const Store& store, const QString& code,
                                   const QString& rowName) {
    const QString number = code.mid(2);
    const auto c = reference::committeeRecord(store, number);
    if (!c)
        throw Refusal(
            QStringLiteral("%1 : le comité départemental %2 n'existe pas.").arg(rowName, number));
    InvoiceParty p = invoicing::partyFromBlock(c->block, code, kRunSeparator);
    p.president = c->president;
    return p;
}

InvoiceParty clubInvoiceParty(const Store& store, const QString& code, const QString& rowName) {
    const auto c = reference::clubRecord(store, code);
    if (!c) throw Refusal(QStringLiteral("%1 : le club %2 n'existe pas.").arg(rowName, code));
    InvoiceParty p = invoicing::partyFromBlock(c->block, code, kRunSeparator);
    p.president = c->president;
    return p;
}

InvoiceParty centreInvoiceParty(const Store& store, const QString& account,
                                const QString& rowName) {
    const auto c = reference::centreRecord(store, account);
    if (!c)
        throw Refusal(
            QStringLiteral("%1 : le centre de bowling %2 n'existe pas.").arg(rowName, account));
    InvoiceParty p = invoicing::partyFromBlock(c->invoicing, c->account, kRunSeparator);
    // A centre whose invoicing address was never filled in is invoiced at
    // its own, rather than on an invoice with no address at all.
    if (p.name.isEmpty() && p.address1.isEmpty() && p.postcodeTown.isEmpty()) {
        p = invoicing::partyFromBlock(c->own, c->account, kRunSeparator);
    }
    return p;
}

InvoicingOutcome writeRowInvoices(Store& store, const invoicing::DocumentSettings& settings,
                                  const std::vector<PreparedInvoice>& invoices, const QDate& today,
                                  const QDate& due, const InvoicingProgress& progress,
                                  RunLease& lease) {
    InvoicingOutcome outcome;
    const int total = static_cast<int>(invoices.size());
    // Records are written here, each invoice in one transaction and its row
    // in the next, while the workers draw the documents of those already
    // written.
    invoicing::DocumentRun run(store, settings);
    try {
        for (const PreparedInvoice& inv : invoices) {
            if (progress && !progress(run.marked(), total)) {
                outcome.cancelled = true;
                break;
            }
            lease.keepAlive();
            const QString number = writeInvoice(store, inv, today, due);
            if (number.isEmpty()) {
                outcome.lost.push_back(inv.rowIndex);
                continue;
            }
            markRowWritten(store, inv.rowIndex, number, format::displayDate(today));
            outcome.numbers.push_back(number);
            run.add(documentOf(number, inv, today, due));
        }
        outcome.files = run.finish([&](int done, int) {
            lease.keepAlive();
            if (progress) progress(done, total);
            return true;
        });
    } catch (const std::exception& e) {
        // The invoice under way when it failed was rolled back whole: it is
        // among the rows still to invoice.
        const int remaining = total - static_cast<int>(outcome.numbers.size()) -
                              static_cast<int>(outcome.lost.size());
        throw InterruptedRun(interruptedText(describeError(e), outcome, run.marked(), remaining),
                             outcome);
    }
    return outcome;
}

}  // namespace orve::competitions
