#pragma once

#include <QString>

namespace orve::tools {

// "1 facture effacée", "3 factures effacées": French takes the singular for
// one (and none, which callers word on their own).
inline QString counted(qint64 n, const QString& one, const QString& many) {
    return QStringLiteral("%1 %2").arg(n).arg(n > 1 || n < -1 ? many : one);
}

}  // namespace orve::tools
