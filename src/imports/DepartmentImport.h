#pragma once

#include <QDate>
#include <QString>

#include "imports/ImportFile.h"
#include "imports/ImportReport.h"
#include "store/Store.h"

namespace orve::imports {

// The federation's committee file, in two steps: its lines are first loaded
// into the workstation's work table strtxt, then applied to the committees
// already known (league and district); no committee is ever created.
// Each line: field 1 ignored, 2 department number, 3 league code, 4 district
// (the rest of the line). There is no header line.
class DepartmentImport {
  public:
    DepartmentImport(store::Store& store, const QDate& today);

    // Step 1: empties strtxt and fills it with the file's lines, trimmed, in
    // one transaction of the scratch store. Returns the report of the loading
    // (lines read).
    ImportReport load(const ImportFile& file);

    // Step 2: checks every loaded line, then updates the committees in one
    // transaction, or nothing when cancelled or failing. `progress` is told
    // of the lines checked, then of the committees written. A line whose
    // committee is not known is skipped as "Dept 0NN inconnu".
    ImportReport apply(const ImportProgress& progress = {});

    // Lines waiting in strtxt for step 2.
    int loadedLines() const;
    // Where the committees live, as the window names what it will rewrite.
    QString target() const;

  private:
    store::Store& m_store;
    QString m_today;
};

}  // namespace orve::imports
