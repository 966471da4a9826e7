#pragma once

#include <QDate>
#include <optional>

#include "reference/ReferenceCodes.h"
#include "reference/Visibility.h"

namespace orve::reference {

// Bowling centres: edited only. Their key, number, league, department and
// district belong to the federation's files and are never rewritten here.
namespace centres {

const VisibilityColumns& visibility();
// The text columns written back from the card as typed.
const QStringList& cardColumns();

inline const QString kSynthetic = QStringLiteral("Synthétique");
inline const QString kWood = QStringLiteral("Bois");

store::Query listing(const Viewer& viewer);
store::Rows list(store::Store& store, const Viewer& viewer);
std::optional<store::Row> find(const store::Store& store, const QString& key);

// The leagues a user may pick from, and the departments of a league (every
// department for a national user).
ListItems leagueItems(store::Store& store, const Viewer& viewer);
ListItems departmentItems(store::Store& store, const Viewer& viewer);

struct CentreEdit {
    Card card;      // the columns of cardColumns()
    QString lanes;  // as typed: a whole number, empty for none
    bool synthetic = false;
    QString approvalDate;  // the masked text, "__/__/____" when left empty
};

// Refuses a lane count or an approval date that cannot be read.
void save(store::Store& store, const QString& key, const CentreEdit& edit, const QDate& today);

}  // namespace centres
}  // namespace orve::reference
