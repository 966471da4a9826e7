#include "tools/InvoiceRenumbering.h"

#include "invoicing/InvoiceRecords.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "tools/NewSeason.h"

namespace orve::tools {

namespace {

// The highest number in use by value, as stored; nothing when there is none.
std::optional<QString> highestStored(const store::Store& store) {
    const auto row = store.selectOne(
        QStringLiteral("SELECT ent_fact_no FROM strentete "
                       "ORDER BY CAST(ent_fact_no AS INTEGER) DESC, ent_fact_no DESC LIMIT 1"));
    if (!row) return std::nullopt;
    return row->value(0).toString().trimmed();
}

}  // namespace

QString lastInvoiceNumber(const store::Store& store) {
    return highestStored(store).value_or(kNoInvoiceYet);
}

QString RenumberingResult::message() const {
    return kProcessingDone +
           QStringLiteral("\nLa prochaine facture portera le N° %1.").arg(nextNumber);
}

RenumberingResult renumberInvoices(store::Store& store, const QString& typedNext,
                                   const QDate& today) {
    const qint64 wanted = format::leadingNumber(typedNext);
    store::Transaction tx(store);
    // The same lock as every invoice: no number can be taken between the
    // check and the placeholder.
    store.lockSeries(invoicing::kInvoiceSeries);
    const auto highest = highestStored(store);
    const qint64 last = format::leadingNumber(highest.value_or(kNoInvoiceYet));
    if (wanted <= last) throw Refusal(kRenumberingRefused);

    RenumberingResult result;
    result.nextNumber = QString::number(wanted);
    // One above the last already comes next: a placeholder would repeat the
    // last number, which no two headers may share.
    const qint64 inUse = highest ? format::leadingNumber(*highest) : 0;
    if (wanted - 1 != inUse) {
        result.placeholder = QString::number(wanted - 1);
        store.insert(QStringLiteral("strentete"), {{"ent_fact_no", result.placeholder},
                                                   {"ent_fact_lib", kRenumberingLabel},
                                                   {"ent_fact_date", format::displayDate(today)},
                                                   {"ent_fact_tri", format::sortDate(today)},
                                                   {"ent_envoi_mail", "O"},
                                                   {"ent_compta", "O"}});
    }
    tx.commit();
    return result;
}

}  // namespace orve::tools
