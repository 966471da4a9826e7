#pragma once

#include <QString>

#include "store/Store.h"

namespace orve::test {

// The demo installation's invoices: club (licences), committee (cancelled by
// the credit note after it), league, the credit note, and a long regional day;
// the renumbering marker stands below them.
inline const QString kClubInvoice = QStringLiteral("2026000001");
inline const QString kCommitteeInvoice = QStringLiteral("2026000002");
inline const QString kLeagueInvoice = QStringLiteral("2026000003");
inline const QString kDemoCreditNote = QStringLiteral("2026000004");
inline const QString kLongInvoice = QStringLiteral("2026000005");
inline const QString kMarker = QStringLiteral("2026000000");

// One column of an invoice header, as text.
inline QString headerValue(const store::Store& store, const QString& number, const char* column) {
    return store
        .scalar(QStringLiteral("SELECT %1 FROM strentete WHERE ent_fact_no = ?")
                    .arg(QLatin1String(column)),
                {number})
        .toString();
}

}  // namespace orve::test
