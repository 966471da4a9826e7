#pragma once

#include <QString>
#include <vector>

namespace orve::app {

// An item of a drop-down list: a key and its label joined by " # ".
struct ListItem {
    QString code;
    QString label;
    QString text() const { return code + QStringLiteral(" # ") + label; }
};
using ListItems = std::vector<ListItem>;
// First item of every list in which nothing is chosen yet.
inline const QString kChoose = QStringLiteral("Choisir");
// The key part of an item: what comes before "#", trimmed; empty for "Choisir".
QString itemCode(const QString& itemText);

}  // namespace orve::app
