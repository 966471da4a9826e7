#include "invoicing/CreditNotes.h"

#include <QStringList>
#include <algorithm>
#include <optional>

#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/RecordStates.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

using store::Store;

namespace {

// What the credit note takes over from the invoice it cancels: the parties,
// their addresses and mails, the competition it was filed under. The nature
// comes too, so that the mailing and the reports that choose by nature find
// the credit note beside its invoice.
const char* const kCopiedHeaderColumns[] = {
    "ent_fact_lib", "ent_fact_president", "ent_fact_ad1", "ent_fact_ad2", "ent_fact_ad3",
    "ent_fact_ad4", "ent_fact_cp_ville", "ent_clt_lib", "ent_clt_president", "ent_clt_ad1",
    "ent_clt_ad2", "ent_clt_ad3", "ent_clt_ad4", "ent_clt_cp_ville", "ent_fact_mail1",
    "ent_fact_mail2", "ent_fact_competition", "ent_fact_entite", "ent_clt_entite", "ent_tiers_fact",
    "ent_tiers_clt", "ent_c_codification", "ent_c_index", "ent_nature",
    // The credit note belongs to the books of the level that issued the invoice.
    "ent_niveau"};

// Headers are keyed by the number without leading zeros; the operator may
// type it padded, as the lines and the file names show it.
QString headerNumber(const QString& typed) {
    const QString t = typed.trimmed();
    bool digits = !t.isEmpty();
    for (const QChar c : t) digits = digits && c.isDigit();
    return digits ? QString::number(format::leadingNumber(t)) : t;
}

// Why `number` cannot be cancelled, or nothing when it can.
std::optional<QString> refusalFor(const Store& store, const QString& number,
                                  const QString& operatorLevel) {
    const auto header = store.selectOne(
        QStringLiteral("SELECT ent_fact_type, ent_fact_origine, ent_niveau FROM strentete "
                       "WHERE ent_fact_no = ?"),
        {number});
    if (!header) return QStringLiteral("La facture N° %1 n'existe pas.").arg(number);
    const QString issuer = header->value(2).toString();
    if (!reference::levelMayChange(operatorLevel, issuer))
        return QStringLiteral(
                   "La facture N° %1 est une facture %2 : seuls ce niveau et le niveau "
                   "national peuvent l'annuler.")
            .arg(number, reference::ofLevel(issuer));
    // A negative invoice counts as a credit note as much as one made here.
    if (header->value(0).toString().trimmed() == kCreditNoteType ||
        !header->value(1).toString().trimmed().isEmpty())
        return QStringLiteral("L'avoir N° %1 ne peut pas être annulé par un avoir").arg(number);
    const QVariant earlier = store.scalar(
        QStringLiteral("SELECT ent_fact_no FROM strentete WHERE ent_fact_origine = ?"), {number});
    if (!earlier.isNull())
        return QStringLiteral("La facture N° %1 a déjà été annulée par l'avoir N° %2")
            .arg(number, earlier.toString().trimmed());
    // The numbering marker, or a header whose lines were all removed.
    if (!store.exists(QStringLiteral("SELECT 1 FROM strfacture WHERE f_num_facture = ?"),
                      {paddedInvoiceNumber(number)}))
        return QStringLiteral("La facture N° %1 n'a aucune ligne : il n'y a rien à annuler.")
            .arg(number);
    return std::nullopt;
}

// One credit note, one transaction.
QString issueOne(Store& store, const QString& invoice, const QDate& today,
                 const QString& operatorLevel) {
    store::Transaction tx(store);
    // Checked again under the lock: another workstation may have cancelled it
    // since the list was checked.
    store.lockSeries(kInvoiceSeries);
    if (const auto why = refusalFor(store, invoice, operatorLevel)) throw Refusal(*why);
    const store::Row original = requireHeader(store, invoice);
    const QString number = nextInvoiceNumber(store);
    store::Fields fields{{"ent_fact_no", number}};
    for (const char* column : kCopiedHeaderColumns)
        fields.emplace_back(QLatin1String(column), original.value(QLatin1String(column)));
    fields.emplace_back("ent_fact_date", format::displayDate(today));
    fields.emplace_back("ent_fact_tri", format::sortDate(today));
    fields.emplace_back("ent_fact_echeance", format::displayDate(today));
    fields.emplace_back("ent_envoi_mail", kNo);
    fields.emplace_back("ent_fact_edt", kNo);
    fields.emplace_back("ent_fact_type", kCreditNoteType);
    fields.emplace_back("ent_compta", kNo);
    fields.emplace_back("ent_montant", 0);
    // The deposit was paid on the invoice; nothing of it is owed back here.
    fields.emplace_back("ent_acompte", 0);
    fields.emplace_back("ent_fact_origine", invoice);
    store.insert(QStringLiteral("strentete"), fields);
    copyLines(store, invoice, number, -1, today);
    // An invoice of 0,00 € gives a credit note of 0,00 €, which the sign of
    // its total would call an invoice: it stays a credit note.
    const QVariant total = store.scalar(
        QStringLiteral(
            "SELECT COALESCE(SUM(f_montant), 0) FROM strfacture WHERE f_num_facture = ?"),
        {paddedInvoiceNumber(number)});
    store.update(QStringLiteral("strentete"),
                 {{"ent_fact_type", kCreditNoteType}, {"ent_montant", total.toLongLong()}},
                 QStringLiteral("ent_fact_no = ?"), {number});
    tx.commit();
    return number;
}

}  // namespace

QString CreditNoteCheck::refusalText() const {
    QStringList lines;
    for (const auto& r : refused) lines << r.message;
    return lines.join(QChar('\n'));
}

CreditNoteCheck checkCreditNotes(const Store& store, const std::vector<QString>& invoices,
                                 const QString& operatorLevel) {
    std::vector<QString> numbers;
    for (const QString& typed : invoices) {
        const QString number = headerNumber(typed);
        if (!number.isEmpty() && std::find(numbers.begin(), numbers.end(), number) == numbers.end())
            numbers.push_back(number);
    }
    if (numbers.empty()) throw Refusal(QStringLiteral("Aucune facture de sélectionnée"));
    CreditNoteCheck check;
    for (const QString& number : numbers) {
        if (const auto why = refusalFor(store, number, operatorLevel))
            check.refused.push_back({number, *why});
        else
            check.accepted.push_back(number);
    }
    return check;
}

std::vector<IssuedCreditNote> issueCreditNotes(Store& store, const std::vector<QString>& invoices,
                                               const QDate& today,
                                               const CreditNoteProgress& progress,
                                               const QString& operatorLevel) {
    const CreditNoteCheck check = checkCreditNotes(store, invoices, operatorLevel);
    if (!check.refused.empty()) throw Refusal(check.refusalText());
    std::vector<IssuedCreditNote> issued;
    const int total = static_cast<int>(check.accepted.size());
    for (const QString& invoice : check.accepted) {
        issued.push_back({invoice, issueOne(store, invoice, today, operatorLevel)});
        // The rows of the workstation's invoice list that show the cancelled
        // invoice show the credit note's date from now on.
        store.scratch().update(QStringLiteral("strcompetition"),
                               {{"c_date_facture", format::displayDate(today)},
                                {"c_tri_facture", format::sortDate(today)}},
                               QStringLiteral("c_num_facture = ?"), {invoice});
        if (progress && !progress(issued.back(), static_cast<int>(issued.size()), total)) break;
    }
    return issued;
}

std::vector<IssuedCreditNote> issueCreditNotesWithDocuments(
    Store& store, const DocumentSettings& settings, const std::vector<QString>& invoices,
    const QDate& today, const CreditNoteDocumentProgress& progress, const QString& operatorLevel) {
    return issueCreditNotes(
        store, invoices, today,
        [&](const IssuedCreditNote& issued, int done, int total) {
            const QString file = generateInvoicePdf(store, settings, issued.creditNote);
            return !progress || progress(issued, file, done, total);
        },
        operatorLevel);
}

}  // namespace orve::invoicing
