#pragma once

#include <QString>

// Every invoice header names a row of strcompetition. Invoices that belong to
// no competition are filed under one of these fixed rows, one per kind of
// hand-made invoicing; the rows themselves are written at sign-in.
namespace orve::invoicing {

inline const QString kLicenceIndex = QStringLiteral("8FA00000");
inline const QString kMiscIndex = QStringLiteral("8FA00001");
inline const QString kLeagueIndex = QStringLiteral("8FA00005");
inline const QString kRegionalDayIndex = QStringLiteral("8FA00006");

}  // namespace orve::invoicing
