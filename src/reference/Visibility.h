#pragma once

#include <QString>

#include "app/OperatorRoles.h"
#include "store/Condition.h"

namespace orve::app {
class Session;
}

namespace orve::reference {

// Who looks at a list: what decides which parties a user may see.
struct Viewer {
    QString login;
    QString league;    // the user's league; a committee user's holds its committee number
    QString district;  // the installation's district
    bool isNational() const { return app::isNationalCode(league); }
    bool isCommitteeUser() const { return app::isCommitteeCode(login); }
    // The committee number of a committee user, as keyed ("13" gives "013").
    QString committeeNumber() const;
    // The level the user works for: "JKV", "CD" and the committee's number
    // ("CD013"), or the league's code. What the user creates belongs to it.
    QString level() const;
    // Whether the user may change what belongs to `owner`: its own level's,
    // and everything at the national level. An unknown owner is the national's.
    bool mayChange(const QString& owner) const;
    static Viewer of(const app::Session& session);
};

inline const QString& kNationalLevel = app::kNationalCode;

// Whether an operator of `operatorLevel` may change what belongs to `owner`:
// its own level's, and everything at the national level. An unknown owner is
// the national level's.
bool levelMayChange(const QString& operatorLevel, const QString& owner);

// A level as it follows "de" in a sentence: "du niveau national", "du comité
// départemental 013", "de la ligue LR06".
QString ofLevel(const QString& level);

// The columns of a table that carry a party's league, district and committee.
// A table without a district or committee column leaves it empty; the filter
// then stops at the league, so a committee user sees its league there.
struct VisibilityColumns {
    QString league;
    QString district;
    QString committee;
};

// National users see everything; a committee user sees its own committee; any
// other user sees its league and, unless the installation's district is "DD",
// only its district.
store::Condition visibilityFilter(const Viewer& viewer, const VisibilityColumns& columns);

}  // namespace orve::reference
