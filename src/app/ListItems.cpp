#include "app/ListItems.h"

namespace orve::app {

QString itemCode(const QString& itemText) {
    if (itemText == kChoose) return {};
    const int hash = itemText.indexOf(QChar('#'));
    return (hash < 0 ? itemText : itemText.left(hash)).trimmed();
}

}  // namespace orve::app
