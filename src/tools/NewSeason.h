#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include "store/Store.h"

// Opening a season: the standing pseudo-competitions (index "?FA?????") are
// copied into it, so that licence, miscellaneous, league and regional-day
// invoices of the new season have their competition to be filed under.
namespace orve::tools {

// Seasons before this one are refused, deliberately fixed.
inline constexpr int kFirstSeasonToSetUp = 2019;
inline const QString kSeasonRefused = QStringLiteral("année incorrecte !!!");
inline const QString kProcessingDone = QStringLiteral("Traitement termine");

struct NewSeasonResult {
    int season = 0;
    QStringList created;   // indexes written
    QStringList existing;  // indexes the season already had, left alone
    // "Traitement termine" and how many were created and already there.
    QString message() const;
};

// The year the window proposes: the season after the working one.
int proposedSeason(int workingSeason);

// Copies one row per pseudo-competition number (the latest season's row of
// that number) into the typed season: index = last digit of the year + the
// source's last seven characters, final date 31/08 of the year, title
// "Licences" for the licences, every other column as in the source. A copy
// whose index the season already holds is not made again. One transaction;
// a year below 2019 is refused ("année incorrecte !!!") with nothing written.
NewSeasonResult setUpSeason(store::Store& store, const QString& typedYear, const QDate& today);

}  // namespace orve::tools
