#include "store/Refusal.h"

namespace orve {

QString describeError(const std::exception& e) {
    if (auto* m = dynamic_cast<const OperatorMessage*>(&e)) return m->message();
    return QStringLiteral("Erreur inattendue : %1").arg(QString::fromUtf8(e.what()));
}

}  // namespace orve
