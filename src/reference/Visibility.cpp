#include "reference/Visibility.h"

#include "app/Session.h"
#include "reference/ReferenceCodes.h"

namespace orve::reference {

QString Viewer::committeeNumber() const { return formatNumber(league, 3); }

QString Viewer::level() const {
    if (isNational()) return kNationalLevel;
    if (isCommitteeUser()) return app::kCommitteePrefix + committeeNumber();
    return league.trimmed();
}

bool Viewer::mayChange(const QString& owner) const { return levelMayChange(level(), owner); }

bool levelMayChange(const QString& operatorLevel, const QString& owner) {
    if (app::isNationalCode(operatorLevel)) return true;
    const QString o = owner.trimmed().isEmpty() ? kNationalLevel : owner.trimmed();
    return o.compare(operatorLevel.trimmed(), Qt::CaseInsensitive) == 0;
}

QString ofLevel(const QString& level) {
    const QString l = level.trimmed();
    if (l.isEmpty() || app::isNationalCode(l)) return QStringLiteral("du niveau national");
    if (app::isCommitteeCode(l)) return QStringLiteral("du comité départemental %1").arg(l.mid(2));
    return QStringLiteral("de la ligue %1").arg(l);
}

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
