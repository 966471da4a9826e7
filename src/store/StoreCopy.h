#pragma once

#include <QString>
#include <QStringList>

#include "store/Store.h"

namespace orve::store {

// Moving the federation's data between stores of either engine: a migration
// to or from a shared server, and the backup, which always writes the five
// SQLite files whatever the installation runs on.
class StoreCopy {
  public:
    struct Report {
        int tables = 0;
        qint64 rows = 0;
    };

    // Copies every shared table of `from` into the empty store `to`, row for
    // row with their row keys, as of one moment of `from` and in one
    // transaction on `to`; then checks, table by table, the number of rows and
    // the sum of every whole-number column (amounts are cents). Refuses, with
    // nothing kept, when they differ or when `to` already holds data.
    static Report copy(const Store& from, Store& to);

    // Writes the five data files into `destination`, consistent as of one
    // moment even while other screens or workstations write. Each file is
    // written beside its final name and moved over it at the end, so an older
    // backup is never half overwritten. Returns the names written.
    static QStringList backup(const Store& store, const QString& destination);

    // Every row of every shared table as text, in row-key order: two stores
    // with the same dump hold the same data.
    static QStringList dump(const Store& store);

  private:
    static QStringList backupFiles(const Store& store, const QString& destination);
};

}  // namespace orve::store
