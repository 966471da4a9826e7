#include "store/Seasons.h"

namespace orve::store {

int seasonOf(const QDate& day) { return day.month() >= 9 ? day.year() + 1 : day.year(); }

QDate seasonStart(int season) { return QDate(season - 1, 9, 1); }

QDate seasonEnd(int season) { return QDate(season, 8, 31); }

QStringList seasonChoices(int workingSeason) {
    QStringList out;
    for (int s = kFirstSeason; s <= workingSeason + 1; ++s) out << QString::number(s);
    return out;
}

}  // namespace orve::store
