#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "imports/ImportFile.h"
#include "imports/ImportReport.h"
#include "store/Store.h"

namespace orve::imports {

// The federation's club file: a header line, then one club per line in 25
// fields. Each club is created, or updated under its existing code and
// account, with the league and district of its departmental committee.
class ClubImport {
  public:
    ClubImport(store::Store& store, const QDate& today);

    // Reads and checks every line; writes nothing. Lines that cannot make a
    // club are in the report with their reason.
    // Told of the lines checked; cancelling throws before anything is written.
    void check(const ImportFile& file, const ImportProgress& progress = {});
    const ImportReport& report() const { return m_report; }
    // How many clubs the checked lines will write.
    int toWrite() const { return static_cast<int>(m_clubs.size()); }

    // Writes the checked clubs in one transaction: all of them, or nothing
    // when cancelled or failing. Returns the report with the counts.
    ImportReport write(const ImportProgress& progress = {});

    // "CL" + department + club number: "CL75012" for 75 and 12, "CL971004"
    // for 971 and 4; the department keeps three digits only when the file
    // gives three.
    static QString clubCode(const QString& departmentField, int department, int club);

  private:
    struct Club {
        QString code;
        QString account;
        QString department;    // "000"
        store::Params values;  // in the order of the written columns
    };
    store::Store& m_store;
    QString m_today;
    ImportReport m_report;
    std::vector<Club> m_clubs;
};

}  // namespace orve::imports
