#include "store/Refusal.h"

namespace orve {

QString describeError(const std::exception& e) {
    if (auto* r = dynamic_cast<const Refusal*>(&e)) return r->message();
    if (auto* s = dynamic_cast<const StoreError*>(&e)) return s->message();
    return QStringLiteral("Erreur inattendue : %1").arg(QString::fromUtf8(e.what()));
}

}  // namespace orve
