#pragma once

#include <QDate>

#include "store/Store.h"

namespace orve::shell {

// Competitions of the working season, registered as their operators would,
// with the team counts typed: a newcomer calculates and invoices at once.
// Three were played a few days ago and are invoiced already, and each
// carries its organiser's codifications, so the statistics by league,
// department and inter-region have figures from the first day.
void fillCompetitions(store::Store& s, int season, const QDate& today);

// Competitions of the working season as the national championship and
// private imports write them, ready for the two national batch windows.
void fillImportedCompetitions(store::Store& s, int season);

}  // namespace orve::shell
