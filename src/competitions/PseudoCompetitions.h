#pragma once

#include <QDate>
#include <QString>

#include "store/Store.h"

// The rows of strcompetition under which invoices that belong to no
// competition are filed, one per kind of invoicing.
namespace orve::competitions {

inline const QString kLicenceIndex = QStringLiteral("8FA00000");
inline const QString kMiscIndex = QStringLiteral("8FA00001");
inline const QString kLeagueIndex = QStringLiteral("8FA00005");
inline const QString kRegionalDayIndex = QStringLiteral("8FA00006");

// Missing rows are added with their fixed values; existing ones are left
// alone, so an edited title or season survives every sign-in.
void ensurePseudoCompetitions(store::Store& store, const QDate& today);

}  // namespace orve::competitions
