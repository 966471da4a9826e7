#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <map>

#include "imports/ImportFile.h"
#include "imports/ImportReport.h"
#include "store/PreparedStatement.h"
#include "store/Store.h"

namespace orve::imports {

// Values of strcompetition that imported rows share with the competition
// register: an imported competition is a master row, not yet invoiced.
inline const QString kMasterReference = QStringLiteral("00000000");
inline const QString kNotInvoiced = QStringLiteral(" ");
// The party code that names no party: never invoiced.
inline const QString kNoParty = QStringLiteral("CL99999");

// The national club championship, as its import writes it.
inline const QString kChampionshipType = QStringLiteral("FD");
inline const QString kChampionshipTitle = QStringLiteral("CHAMPIONNAT DES CLUBS-NATIONAL");
inline const QString kWomenNature = QStringLiteral("CDCND");
inline const QString kMenNature = QStringLiteral("CDCNH");
// The final is on 27 May of its season unless the operator says otherwise.
inline const QString kChampionshipFinalDayMonth = QStringLiteral("27/05/");
// The championship's entries have always been registered on this day,
// whatever the day of the import.
inline const QString kChampionshipRegistrationDate = QStringLiteral("01/12/2017");

// Private tournaments.
inline const QString kPrivateType = QStringLiteral("PR");
inline const QString kPrivateNature = QStringLiteral("PRIVE");
// Kept as the federation has always registered its private calendar, rather
// than the day of the import.
inline const QString kPrivateRegistrationDate = QStringLiteral("27/11/2017");

// One competition of an imported file, before it has its key.
struct ImportedCompetition {
    QString season;
    QString type;
    QString title;
    QString nature;
    QString codification = QStringLiteral(" ");  // the invoiced party, " " when none
    QString cod1, cod2, cod3, cod4, cod5;
    QString finalDate;      // "dd/mm/yyyy"
    QString finalSortKey;   // "yyyymmdd"
    QString organiserKind;  // "C" club, "D" committee, "R" league, " " unknown
    QString organiserName;
    QString registered;         // c_date_enreg and c_date_modif, "dd/mm/yyyy"
    qint64 players = 0;         // c_nb_equipe_finale
    qint64 fixedPartCents = 0;  // c_nb_equipe_eliminatoire
};

// A day as "dd/mm/yyyy" and "yyyymmdd", made quickly: an import writes one
// per row.
void setFinalDate(ImportedCompetition& c, const QDate& day);

// The key prefix of a season's competitions of a kind: the season's last
// digit, then "FD" or "PR" ("7FD" for the championship of 2027).
QString indexPrefix(const QString& season, const QString& kind);

// Writes imported competitions inside the caller's transaction, each under
// the next key of its prefix: the highest number of that prefix in the
// store, plus one ("00001" for the first).
class CompetitionWriter {
  public:
    explicit CompetitionWriter(store::Store& store);
    // Returns the key given.
    QString add(const QString& prefix, const ImportedCompetition& c);

  private:
    int nextNumber(const QString& prefix);
    store::Store& m_store;
    store::PreparedStatement m_insert;
    // The row's values; the fixed ones are set once.
    store::Params m_values;
    std::map<QString, int> m_next;
};

// The competition imports' one sequence, for their windows and orve-batch
// alike: read and check the whole file (writing nothing), ask whether the
// competitions already there are imported a second time (only when there are
// some), then write everything in one transaction or nothing.
struct CompetitionImportSteps {
    // Given how many of the file's competitions exist already: import them again?
    std::function<bool(int existing)> importAgain;
    ImportProgress checking;
    // Called once the checking is done, before any question or writing.
    std::function<void()> writingStarts;
    ImportProgress writing;
};

template <class Import>
ImportReport importCompetitions(Import& import, const ImportFile& file,
                                const CompetitionImportSteps& steps) {
    import.check(file, steps.checking);
    if (steps.writingStarts) steps.writingStarts();
    const bool again =
        import.duplicates() == 0 || (steps.importAgain && steps.importAgain(import.duplicates()));
    return import.write(again, steps.writing);
}

}  // namespace orve::imports
