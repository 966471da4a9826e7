#pragma once

#include <QDate>
#include <QSet>
#include <QString>
#include <vector>

#include "imports/ImportFile.h"
#include "imports/ImportReport.h"
#include "imports/ImportedCompetitions.h"
#include "store/Store.h"

namespace orve::imports {

// The season and the final of a national club championship import.
struct ChampionshipSettings {
    int season = 0;
    QDate finalDate;
    QDate today;  // the registration date of the rows
    // From the window's or the command line's texts; Refusal when the season
    // is not a year or the date not a date.
    static ChampionshipSettings fromTexts(const QString& season, const QString& finalDate,
                                          const QDate& today);
};

// "27/05/" + season: the usual day of the final.
QString defaultFinalDate(int season);

// The clubs entered in the national club championship, one per line in
// seven fields: the club ("CL13001 Bowling Club Phocéen": its code, then
// its name), then the women's numbers of lines at levels N1, N2, N3 and the
// men's (empty is 0). Each club gives two competitions of the season, the
// women's "CDCND" (c_cod3..c_cod5 from fields 2 to 4) and the men's "CDCNH"
// (from fields 5 to 7), numbered one after the other. A line repeating the
// line before it creates nothing.
class ChampionshipImport {
  public:
    ChampionshipImport(store::Store& store, ChampionshipSettings settings);

    // Reads and checks every line and counts the competitions of the file
    // that already exist for the season; writes nothing.
    // Told of the lines checked; cancelling throws before anything is written.
    void check(const ImportFile& file, const ImportProgress& progress = {});
    const ImportReport& report() const { return m_report; }
    // Competitions of the file already in the store (same club and nature, same season).
    int duplicates() const { return m_duplicates; }
    int toWrite() const { return static_cast<int>(m_entries.size()) * 2; }

    // Writes in one transaction; with `again` false, only the competitions
    // not yet in the store. All or nothing.
    ImportReport write(bool again, const ImportProgress& progress = {});

  private:
    struct Entry {
        QString code;
        QString name;
        QString women[3];
        QString men[3];
    };
    QSet<QString> existing() const;
    store::Store& m_store;
    ChampionshipSettings m_settings;
    ImportReport m_report;
    std::vector<Entry> m_entries;
    int m_duplicates = 0;
};

}  // namespace orve::imports
