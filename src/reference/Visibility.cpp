#include "reference/Visibility.h"

#include "app/Session.h"
#include "reference/ReferenceCodes.h"

namespace orve::reference {

QString Viewer::committeeNumber() const { return formatNumber(league, 3); }

Viewer Viewer::of(const app::Session& session) {
    return {session.user().login, session.user().league, session.installation().district};
}

QString SqlFilter::whereClause() const {
    return condition.isEmpty() ? QString() : QStringLiteral(" where ") + condition;
}

SqlFilter SqlFilter::and_(const QString& other, const store::Params& otherParams) const {
    SqlFilter joined = *this;
    joined.condition = condition.isEmpty() ? other : condition + QStringLiteral(" and ") + other;
    joined.params.insert(joined.params.end(), otherParams.begin(), otherParams.end());
    return joined;
}

SqlFilter visibilityFilter(const Viewer& viewer, const VisibilityColumns& columns) {
    if (viewer.isNational()) return {};
    if (viewer.isCommitteeUser() && !columns.committee.isEmpty())
        return {columns.committee + QStringLiteral(" = ?"), {viewer.committeeNumber()}};
    SqlFilter filter{columns.league + QStringLiteral(" = ?"), {viewer.league}};
    if (!columns.district.isEmpty() && viewer.district != QStringLiteral("DD"))
        filter = filter.and_(columns.district + QStringLiteral(" = ?"), {viewer.district});
    return filter;
}

}  // namespace orve::reference
