#pragma once

#include <QDate>

#include "shell/ScaleDemo.h"
#include "store/Store.h"

namespace orve::shell::scale {

// Adds the history of the seasons 2018 up to the working season to the open
// installation, counting what it adds in `report`.
void generateHistory(store::Store& store, const QDate& today, qint64 lines, ScaleReport& report);

}  // namespace orve::shell::scale
