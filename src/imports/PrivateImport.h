#pragma once

#include <QSet>
#include <QString>
#include <vector>

#include "imports/ImportFile.h"
#include "imports/ImportReport.h"
#include "imports/ImportedCompetitions.h"
#include "store/Store.h"

namespace orve::imports {

// The federation's calendar of private tournaments: one tournament per line,
// no header. Fields: 1 season (a year), 2 and 3 two codes joined into
// c_cod1, 4 the tournament's number (c_cod2, "00000"), 5 the bowling centre
// (not used), 6 the final date (dd/mm/yy or dd/mm/yyyy: only the last two
// digits of the year count, completed with "20"), 7 the title, 8 the number
// of players, 9 the fixed part in euros, 10 and 11 not used, and the rest of
// the line the organiser ("CL13001 Bowling Club Phocéen", "CD13 …", "LR06 …"),
// whose code is the invoiced party. Each line gives one competition of
// nature "PRIVE", keyed after the highest key of its season's prefix ("7PR").
class PrivateImport {
  public:
    explicit PrivateImport(store::Store& store);

    // Reads and checks every line and counts the tournaments already in the
    // store (same c_cod1, c_cod2 and season); writes nothing.
    // Told of the lines checked; cancelling throws before anything is written.
    void check(const ImportFile& file, const ImportProgress& progress = {});
    const ImportReport& report() const { return m_report; }
    int duplicates() const { return m_duplicates; }
    int toWrite() const { return static_cast<int>(m_rows.size()); }

    // Writes in one transaction; with `again` false, only the tournaments
    // not yet in the store. All or nothing.
    ImportReport write(bool again, const ImportProgress& progress = {});

    // "05/03/27" and "05/03/2027" are both 5 March 2027; nothing for a text
    // that is not a date.
    static std::optional<QDate> finalDate(const QString& text);

  private:
    struct Row {
        QString prefix;
        ImportedCompetition competition;
    };
    QSet<QString> existing() const;
    store::Store& m_store;
    ImportReport m_report;
    std::vector<Row> m_rows;
    int m_duplicates = 0;
};

}  // namespace orve::imports
