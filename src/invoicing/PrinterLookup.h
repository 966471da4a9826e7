#pragma once

#include <QString>
#include <QStringList>

// Finding the printer named in orve.ini among those the system offers.
namespace orve::invoicing {

// Position of the first printer whose name matches `name` without regard to
// case, "*" and "?" as wildcards; -1 when none.
int findPrinter(const QStringList& printerNames, const QString& name);
QString printerNotFoundMessage(const QString& name);

}  // namespace orve::invoicing
