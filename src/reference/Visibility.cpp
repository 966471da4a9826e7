#include "reference/Visibility.h"

#include "app/Session.h"
#include "reference/ReferenceCodes.h"

namespace orve::reference {

QString Viewer::committeeNumber() const { return formatNumber(league, 3); }

Viewer Viewer::of(const app::Session& session) {
    return {session.user().login, session.user().league, session.installation().district};
}

store::Condition visibilityFilter(const Viewer& viewer, const VisibilityColumns& columns) {
    if (viewer.isNational()) return {};
    if (viewer.isCommitteeUser() && !columns.committee.isEmpty())
        return {columns.committee + QStringLiteral(" = ?"), {viewer.committeeNumber()}};
    store::Condition filter{columns.league + QStringLiteral(" = ?"), {viewer.league}};
    if (!columns.district.isEmpty() && viewer.district != QStringLiteral("DD"))
        filter &= {columns.district + QStringLiteral(" = ?"), {viewer.district}};
    return filter;
}

}  // namespace orve::reference
