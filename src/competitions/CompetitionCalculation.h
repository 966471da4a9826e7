#pragma once

#include <QString>

#include "reference/Visibility.h"
#include "store/Store.h"

// Which party rows of a competition are to be invoiced: " " rows become "C"
// from the billing flags, the nature and the three counts; counts that must
// not be billed are cleared on the way.
namespace orve::competitions {

// Natures with rules of their own at the national level.
inline const QString kChafNature = QStringLiteral("CHAF");
inline const QString kDbexcNature = QStringLiteral("DBEXC");
inline const QString kDbhonNature = QStringLiteral("DBHON");

// One party row as the calculation sees it.
struct CalculationInput {
    bool billLines = false;
    bool billEntry = false;
    qint64 teams = 0, eliminatory = 0, finals = 0;
};
struct CalculationDecision {
    bool marked = false;
    qint64 teams = 0, eliminatory = 0, finals = 0;  // the counts as kept
};
// The decision for one row (pure, so each branch can be checked alone).
CalculationDecision decideRow(const CalculationInput& row, const QString& nature, bool national);

// Calculates the competition `index` with its nature `nature` (the card's).
// `stillOpen` is true while the card may still be validated (its validate
// button enabled: chosen and not validated since, or changed): Refusal
// "Vous devez d'abord valider cette compétition". Resets every unfinished
// row first (all competitions), then marks; returns how many rows are "C".
int calculateCompetition(store::Store& store, const reference::Viewer& viewer, const QString& index,
                         const QString& nature, bool stillOpen);

}  // namespace orve::competitions
