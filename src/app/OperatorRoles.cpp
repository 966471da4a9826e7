#include "app/OperatorRoles.h"

namespace orve::app {

bool isNationalCode(const QString& leagueOrLevel) {
    return leagueOrLevel.trimmed().compare(kNationalCode, Qt::CaseInsensitive) == 0;
}

bool isCommitteeCode(const QString& loginOrCode) {
    return loginOrCode.trimmed().startsWith(kCommitteePrefix, Qt::CaseInsensitive);
}

}  // namespace orve::app
