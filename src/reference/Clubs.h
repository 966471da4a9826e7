#pragma once

#include <QDate>
#include <optional>

#include "reference/ReferenceCodes.h"
#include "reference/Visibility.h"

namespace orve::reference {

// Clubs: created and edited here. A club's key is made of its department and
// its number, so those never change once the club exists.
namespace clubs {

const VisibilityColumns& visibility();
// The text columns written back from the card as typed, on add and on edit.
const QStringList& cardColumns();

// The district a new club starts in.
inline const QString kNewClubDistrict = QStringLiteral("D1");

store::Query listing(const Viewer& viewer);
store::Rows list(store::Store& store, const Viewer& viewer);
std::optional<store::Row> find(const store::Store& store, const QString& code);

// "CL" + last two characters of the department ("000") + club number ("000"):
// department 98 and club 12 give "CL98012".
QString clubKey(const QString& department, const QString& number);

// The leagues a user may pick: every league for a national user, the league
// of its committee for a committee user, its own league otherwise.
ListItems leagueItems(store::Store& store, const Viewer& viewer);
// The departments: every one for a national user, its own for a committee
// user, those of its league otherwise.
ListItems departmentItems(store::Store& store, const Viewer& viewer);
// The item of one league ("00") or department ("000"), when it exists.
std::optional<ListItem> leagueItem(store::Store& store, const QString& code);
std::optional<ListItem> departmentItem(store::Store& store, const QString& number);

struct ClubEdit {
    Card card;         // the columns of cardColumns()
    QString district;  // required
    QString account;   // stored as its numeric value, "000000"
    // Used only when the club is created:
    QString league;
    QString department;
    QString number;
};

// Creates a club and returns its key; refuses a missing district, league,
// department or number, and a key already taken.
QString add(store::Store& store, const ClubEdit& edit, const QDate& today);
// Writes an existing club's card; its key, number, league and department stay.
void save(store::Store& store, const QString& code, const ClubEdit& edit, const QDate& today);

}  // namespace clubs
}  // namespace orve::reference
