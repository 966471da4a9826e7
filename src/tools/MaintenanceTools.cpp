#include "tools/MaintenanceTools.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include "invoicing/InvoiceRecords.h"
#include "store/Condition.h"
#include "store/Formats.h"

namespace orve::tools {

using store::Condition;
using store::Store;

namespace {

const QString kCompetitions = QStringLiteral("strcompetition");

// The invoice columns of a competition row put back to "not invoiced".
const store::Fields& notInvoiced() {
    static const store::Fields fields{
        {"c_num_facture", " "}, {"c_tri_facture", " "}, {"c_date_facture", format::kEmptyDateMask},
        {"c_facture", " "},     {"c_edt", " "},         {"c_edt_fact", "NON"},
        {"c_envoi_mail", "N"}};
    return fields;
}

int countWhere(const Store& s, const QString& table, const Condition& c) {
    return s.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + table + c.where(), c.params())
        .toInt();
}

int resetCompetitions(Store& s, const Condition& c) {
    return s.update(kCompetitions, notInvoiced(), c.sql(), c.params());
}

Condition competitionsOfSeason(const QString& season, const QString& state = {}) {
    Condition c(QStringLiteral("c_saison = ?"), {season});
    if (!state.isEmpty()) c &= Condition(QStringLiteral("c_facture = ?"), {state});
    return c;
}

const Condition kUnprinted(QStringLiteral("c_facture = 'F' AND c_edt_fact = 'NON'"));

// The invoice numbers the competitions of a condition carry.
QStringList invoicesOf(const Store& s, const Condition& competitions) {
    QStringList numbers;
    for (const auto& r :
         s.select(QStringLiteral("SELECT c_num_facture FROM strcompetition") + competitions.where(),
                  competitions.params())) {
        const QString n = r.value(0).toString().trimmed();
        if (!n.isEmpty()) numbers << n;
    }
    numbers.removeDuplicates();
    return numbers;
}

void countInvoices(const Store& s, const QStringList& numbers, Changes& c) {
    for (const QString& n : numbers) {
        c.headers += countWhere(s, QStringLiteral("strentete"),
                                Condition(QStringLiteral("ent_fact_no = ?"), {n}));
        c.lines += countWhere(
            s, QStringLiteral("strfacture"),
            Condition(QStringLiteral("f_num_facture = ?"), {invoicing::paddedInvoiceNumber(n)}));
    }
}

void deleteInvoices(Store& s, const QStringList& numbers, Changes& c) {
    for (const QString& n : numbers) {
        c.lines += s.exec(QStringLiteral("DELETE FROM strfacture WHERE f_num_facture = ?"),
                          {invoicing::paddedInvoiceNumber(n)});
        c.headers += s.exec(QStringLiteral("DELETE FROM strentete WHERE ent_fact_no = ?"), {n});
    }
}

// Competitions whose invoices are deleted and whose invoice columns are reset.
Changes countInvoicedCompetitions(const Store& s, const Condition& competitions) {
    Changes c;
    c.competitions = countWhere(s, kCompetitions, competitions);
    countInvoices(s, invoicesOf(s, competitions), c);
    return c;
}

Changes resetInvoicedCompetitions(Store& s, const Condition& competitions) {
    store::Transaction tx(s);
    Changes c;
    deleteInvoices(s, invoicesOf(s, competitions), c);
    c.competitions = resetCompetitions(s, competitions);
    tx.commit();
    return c;
}

// Fixed invoices deleted, and a competition reset when one is named.
Changes countFixedInvoices(const Store& s, const QStringList& numbers,
                           const QString& competition = {}) {
    Changes c;
    countInvoices(s, numbers, c);
    if (!competition.isEmpty())
        c.competitions =
            countWhere(s, kCompetitions, Condition(QStringLiteral("c_index = ?"), {competition}));
    return c;
}

Changes deleteFixedInvoices(Store& s, const QStringList& numbers, const QString& competition = {}) {
    store::Transaction tx(s);
    Changes c;
    deleteInvoices(s, numbers, c);
    if (!competition.isEmpty())
        c.competitions =
            resetCompetitions(s, Condition(QStringLiteral("c_index = ?"), {competition}));
    tx.commit();
    return c;
}

QStringList documents2013(const QString& invoiceFolder) {
    if (invoiceFolder.isEmpty()) return {};
    // Matched without regard to case, as the folder of the office's system did.
    return QDir(invoiceFolder).entryList({kResetDocuments}, QDir::Files, QDir::Name);
}

// Takes a document out of the invoice folder into the kept copy.
bool moveDocument(const QString& from, const QString& keepFolder) {
    if (keepFolder.isEmpty()) return QFile::remove(from);
    const QString target = QDir(keepFolder).filePath(QFileInfo(from).fileName());
    QFile::remove(target);
    if (QFile::rename(from, target)) return true;
    return QFile::copy(from, target) && QFile::remove(from);
}

// The header values each line repeats, by the eight-digit number lines carry.
struct HeaderValues {
    QVariant billed, client, nature;
};

QString textOf(const QVariant& v) { return v.isNull() ? QString() : v.toString(); }

struct LineToAlign {
    QVariant rowid;
    HeaderValues header;
};

std::vector<LineToAlign> linesToAlign(const Store& s) {
    QHash<QString, HeaderValues> headers;
    // In number order: a later header of the same number is the one kept.
    for (const auto& r :
         s.select(QStringLiteral("SELECT ent_fact_no, ent_tiers_fact, ent_tiers_clt, ent_nature "
                                 "FROM strentete ORDER BY ent_fact_no")))
        headers.insert(invoicing::paddedInvoiceNumber(r.value(0).toString()),
                       {r.value(1), r.value(2), r.value(3)});
    std::vector<LineToAlign> out;
    for (const auto& r :
         s.select(QStringLiteral("SELECT rowid, f_num_facture, f_tiers_fact, f_tiers_clt, f_nature "
                                 "FROM strfacture ORDER BY rowid"))) {
        const auto h = headers.constFind(invoicing::paddedInvoiceNumber(r.value(1).toString()));
        if (h == headers.constEnd()) continue;
        if (textOf(r.value(2)) != textOf(h->billed) || textOf(r.value(3)) != textOf(h->client) ||
            textOf(r.value(4)) != textOf(h->nature))
            out.push_back({r.value(0), *h});
    }
    return out;
}

// Competitions invoiced whose mailed flag differs from their invoice's.
struct MailFlag {
    QVariant rowid;
    QVariant sent;
};

std::vector<MailFlag> mailFlagsToCopy(const Store& s) {
    QHash<QString, QVariant> sent;
    for (const auto& r :
         s.select(QStringLiteral("SELECT ent_fact_no, ent_envoi_mail FROM strentete")))
        sent.insert(r.value(0).toString().trimmed(), r.value(1));
    std::vector<MailFlag> out;
    for (const auto& r :
         s.select(QStringLiteral("SELECT rowid, c_num_facture, c_envoi_mail FROM strcompetition "
                                 "WHERE c_facture = 'F' ORDER BY c_num_facture"))) {
        const auto h = sent.constFind(r.value(1).toString().trimmed());
        if (h == sent.constEnd() || textOf(*h) == textOf(r.value(2))) continue;
        out.push_back({r.value(0), *h});
    }
    return out;
}

// Every header of the challenge, whatever its transfer mark, its title
// written in any case.
Condition challengeHeaders() {
    return Condition(
        store::caselessSql(QStringLiteral("trim(ent_fact_competition)")) + QStringLiteral(" = ?"),
        {store::caselessText(kChallengeTitle)});
}

}  // namespace

Changes countLinesToAlign(const Store& store) {
    Changes c;
    c.lines = static_cast<int>(linesToAlign(store).size());
    return c;
}

Changes alignLinesWithHeaders(Store& store) {
    store::Transaction tx(store);
    Changes c;
    for (const auto& line : linesToAlign(store))
        c.lines += store.update(QStringLiteral("strfacture"),
                                {{"f_tiers_fact", line.header.billed},
                                 {"f_tiers_clt", line.header.client},
                                 {"f_nature", line.header.nature}},
                                QStringLiteral("rowid = ?"), {line.rowid});
    tx.commit();
    return c;
}

Changes countUnprintedInvoices(const Store& store) {
    return countInvoicedCompetitions(store, kUnprinted);
}

Changes resetUnprintedInvoices(Store& store) {
    return resetInvoicedCompetitions(store, kUnprinted);
}

Changes countCompetitions2014(const Store& store) {
    Changes c;
    c.competitions = countWhere(store, kCompetitions, competitionsOfSeason(kDeletedSeason));
    return c;
}

Changes deleteCompetitions2014(Store& store) {
    store::Transaction tx(store);
    Changes c;
    c.competitions = store.exec(QStringLiteral("DELETE FROM strcompetition WHERE c_saison = ?"),
                                {kDeletedSeason});
    tx.commit();
    return c;
}

Changes count2013Invoices(const Store& store, const QString& invoiceFolder) {
    Changes c = countInvoicedCompetitions(store, competitionsOfSeason(kResetSeason, "F"));
    c.documents = static_cast<int>(documents2013(invoiceFolder).size());
    return c;
}

Changes reset2013Invoices(Store& store, const QString& invoiceFolder, const QString& keepFolder) {
    Changes c = resetInvoicedCompetitions(store, competitionsOfSeason(kResetSeason, "F"));
    // The data are written: only now do their documents go.
    const QString kept =
        keepFolder.isEmpty() ? QString() : QDir(keepFolder).filePath(QStringLiteral("factures"));
    if (!kept.isEmpty()) QDir().mkpath(kept);
    for (const QString& name : documents2013(invoiceFolder))
        if (moveDocument(QDir(invoiceFolder).filePath(name), kept)) ++c.documents;
    return c;
}

Changes countMerignacInvoice(const Store& store) {
    Changes c;
    c.competitions =
        countWhere(store, kCompetitions,
                   competitionsOfSeason(kResetSeason) &&
                       Condition(QStringLiteral("c_index = ?"), {kMerignacCompetition}));
    return c;
}

Changes resetMerignacInvoice(Store& store) {
    store::Transaction tx(store);
    Changes c;
    c.competitions = resetCompetitions(
        store, competitionsOfSeason(kResetSeason) &&
                   Condition(QStringLiteral("c_index = ?"), {kMerignacCompetition}));
    tx.commit();
    return c;
}

Changes countLeagueCompetitions2013(const Store& store) {
    Changes c;
    c.competitions = countWhere(store, kCompetitions,
                                competitionsOfSeason(kResetSeason) &&
                                    Condition(QStringLiteral("c_type = ?"), {kLeagueType}));
    return c;
}

Changes setLeagueNature2013(Store& store) {
    store::Transaction tx(store);
    const Condition c = competitionsOfSeason(kResetSeason) &&
                        Condition(QStringLiteral("c_type = ?"), {kLeagueType});
    Changes changes;
    changes.competitions =
        store.update(kCompetitions, {{"c_nature", kLeagueNature}}, c.sql(), c.params());
    tx.commit();
    return changes;
}

Changes countLicensees(const Store& store) {
    Changes c;
    c.others = countWhere(store, QStringLiteral("strlicence"), {});
    return c;
}

Changes deleteLicensees(Store& store) {
    store::Transaction tx(store);
    Changes c;
    c.others = store.exec(QStringLiteral("DELETE FROM strlicence"));
    tx.commit();
    return c;
}

Changes countCommitteeToAdd(const Store& store) {
    Changes c;
    c.others =
        store.exists(QStringLiteral("SELECT 1 FROM strdept WHERE de_no = ?"), {kMonacoCommittee})
            ? 0
            : 1;
    return c;
}

Changes addMonacoCommittee(Store& store, const QDate& today) {
    store::Transaction tx(store);
    Changes c;
    if (!store.exists(QStringLiteral("SELECT 1 FROM strdept WHERE de_no = ?"),
                      {kMonacoCommittee})) {
        // Invoiced to the league it belongs to.
        store.insert(QStringLiteral("strdept"), {{"de_no", kMonacoCommittee},
                                                 {"de_lib", "MONACO"},
                                                 {"de_cp", "98000"},
                                                 {"de_region", "LR21"},
                                                 {"de_lr", "LR21"},
                                                 {"de_facturation", "LR21"},
                                                 {"de_date_enreg", format::displayDate(today)}});
        c.others = 1;
    }
    tx.commit();
    return c;
}

Changes countInvoices121(const Store& store) { return countFixedInvoices(store, kInvoices121); }

Changes deleteInvoices121(Store& store) { return deleteFixedInvoices(store, kInvoices121); }

Changes countInvoices123(const Store& store) {
    return countFixedInvoices(store, kInvoices123, kCompetition123);
}

Changes deleteInvoices123(Store& store) {
    return deleteFixedInvoices(store, kInvoices123, kCompetition123);
}

Changes countInvoice260(const Store& store) {
    return countFixedInvoices(store, kInvoices260, kCompetition260);
}

Changes deleteInvoice260(Store& store) {
    return deleteFixedInvoices(store, kInvoices260, kCompetition260);
}

Changes countMailFlagsToCopy(const Store& store) {
    Changes c;
    c.competitions = static_cast<int>(mailFlagsToCopy(store).size());
    return c;
}

Changes copyMailFlagsToCompetitions(Store& store) {
    store::Transaction tx(store);
    Changes c;
    for (const auto& flag : mailFlagsToCopy(store))
        c.competitions += store.update(kCompetitions, {{"c_envoi_mail", flag.sent}},
                                       QStringLiteral("rowid = ?"), {flag.rowid});
    tx.commit();
    return c;
}

QStringList spyInvoiceLines(const Store& store) {
    // A pseudo-competition carries no invoice number, so each of its lines is
    // reported too: the rule is the federation's, its lines included.
    struct Competition {
        QString invoice;
    };
    QHash<QString, Competition> competitions;
    for (const auto& r : store.select(
             QStringLiteral("SELECT c_index, c_num_facture FROM strcompetition ORDER BY rowid"))) {
        const QString key = r.value(0).toString().trimmed().toUpper();
        auto& c = competitions[key];
        if (c.invoice.isEmpty()) c.invoice = r.value(1).toString().trimmed();
    }
    QStringList report;
    for (const auto& r : store.select(
             QStringLiteral("SELECT f_num_facture, f_num_lig, f_index_compet FROM strfacture "
                            "ORDER BY f_num_facture, f_num_lig, rowid"))) {
        const QString invoice = r.value(0).toString().trimmed();
        const QString index = r.value(2).toString().trimmed();
        const auto c = competitions.constFind(index.toUpper());
        if (c == competitions.constEnd()) {
            report << QStringLiteral("index inconnu : %1 (facture %2, ligne %3)")
                          .arg(index, invoice, r.value(1).toString().trimmed());
        } else if (c->invoice.isEmpty() ||
                   format::leadingNumber(c->invoice) != format::leadingNumber(invoice)) {
            report << QStringLiteral("ligne mal affectée : ") + invoice +
                          QStringLiteral(" au lieu de ") + c->invoice;
        }
    }
    return report;
}

Changes countStrayLines(const Store& store) {
    Changes c;
    c.lines = countWhere(store, QStringLiteral("strfacture"),
                         Condition(QStringLiteral("f_index_compet = ?"), {kStrayCompetition}));
    return c;
}

Changes deleteStrayLines(Store& store) {
    store::Transaction tx(store);
    Changes c;
    c.lines = store.exec(QStringLiteral("DELETE FROM strfacture WHERE f_index_compet = ?"),
                         {kStrayCompetition});
    tx.commit();
    return c;
}

QStringList duplicateInvoiceNumbers(const Store& store) {
    QStringList report;
    bool first = true;
    qint64 previous = 0;
    for (const auto& r : store.select(QStringLiteral(
             "SELECT ent_fact_no FROM strentete ORDER BY CAST(ent_fact_no AS INTEGER), "
             "ent_fact_no"))) {
        const QString number = r.value(0).toString().trimmed();
        const qint64 value = format::leadingNumber(number);
        // "58" and "058" are one number: the store keeps texts apart, the numbering does not.
        if (!first && value == previous) report << QStringLiteral("doublon ") + number;
        first = false;
        previous = value;
    }
    return report;
}

Changes countChallengeInvoices(const Store& store) {
    Changes c;
    c.headers = countWhere(store, QStringLiteral("strentete"), challengeHeaders());
    return c;
}

Changes retransferChallengeInvoices(Store& store) {
    store::Transaction tx(store);
    Changes c;
    const Condition challenge = challengeHeaders();
    c.headers = store.update(QStringLiteral("strentete"), {{"ent_compta", "N"}}, challenge.sql(),
                             challenge.params());
    tx.commit();
    return c;
}

}  // namespace orve::tools
