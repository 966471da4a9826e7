#pragma once

#include <QString>
#include <QStringList>

#include "store/Store.h"

namespace orve::test {

// The demo installation's invoices: club (licences), committee (cancelled by
// the credit note after it), league, the credit note, and a long regional day;
// the renumbering marker stands below them.
inline const QString kClubInvoice = QStringLiteral("2027000001");
inline const QString kCommitteeInvoice = QStringLiteral("2027000002");
inline const QString kLeagueInvoice = QStringLiteral("2027000003");
inline const QString kDemoCreditNote = QStringLiteral("2027000004");
inline const QString kLongInvoice = QStringLiteral("2027000005");
inline const QString kMarker = QStringLiteral("2027000000");
// Then the invoices of the three competitions played already (mailed): the
// last number taken before a test makes its own.
inline const QString kLastDemoNumber = QStringLiteral("2027000011");
inline const QStringList kPlayedInvoices{"2027000006", "2027000007", "2027000008",
                                         "2027000009", "2027000010", "2027000011"};

// One column of an invoice header, as text.
inline QString headerValue(const store::Store& store, const QString& number, const char* column) {
    return store
        .scalar(QStringLiteral("SELECT %1 FROM strentete WHERE ent_fact_no = ?")
                    .arg(QLatin1String(column)),
                {number})
        .toString();
}

}  // namespace orve::test
