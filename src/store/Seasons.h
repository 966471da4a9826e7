#pragma once

#include <QDate>
#include <QStringList>

// Seasons are named by the year in which they end: season S runs from
// 1 September of S − 1 to 31 August of S.
namespace orve::store {

// The first season the federation's data knows; season choosers start here.
inline constexpr int kFirstSeason = 2013;

// The season a day falls in.
int seasonOf(const QDate& day);

// First and last day of a season.
QDate seasonStart(int season);
QDate seasonEnd(int season);

// From the first season up to the one after the working season, as a season
// chooser lists them.
QStringList seasonChoices(int workingSeason);

}  // namespace orve::store
