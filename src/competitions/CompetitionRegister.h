#pragma once

#include <QDate>
#include <QString>
#include <array>
#include <optional>

#include "invoicing/RecordStates.h"
#include "reference/Visibility.h"
#include "store/Condition.h"
#include "store/Store.h"

// The register of federal competitions to invoice: master rows and, under
// each, one row per invoiced party (strcompetition). Every function here is
// one transaction; a screen or orve-batch calls them the same way.
namespace orve::competitions {

inline const QString kMasterReference = QStringLiteral("00000000");
inline const QString kFederalType = QStringLiteral("FD");

// States of c_facture.
using invoicing::kCalculatedState;
using invoicing::kInvoicedState;
using invoicing::kMasterState;
using invoicing::kOpenState;
using invoicing::kWrittenState;

// Who the party rows are invoiced to (c_nat_fact, c_organisateur).
inline const QString kClubs = QStringLiteral("C");
inline const QString kCommittees = QStringLiteral("D");
inline const QString kLeagues = QStringLiteral("F");

// A competition as its card holds it.
struct CompetitionRecord {
    QString index;  // c_index; empty until the first validation numbers it
    QString season;
    QString type = kFederalType;
    QString title;
    QString composition;                             // c_formule, "1" to "5"
    QString nature;                                  // c_nature
    QString billedKind = kClubs;                     // c_nat_fact: kClubs or kCommittees
    bool billEntry = true;                           // c_fact_engagement "O"/"N"
    bool billLines = true;                           // c_fact_ligne "O"/"N"
    QString eliminatoryLines = QStringLiteral("0");  // c_ligne_eliminatoire
    QString finalLines = QStringLiteral("0");        // c_ligne_finale
    QString date;                                    // c_date_finale, "dd/mm/yyyy"
    // c_cod1 to c_cod5, values of the codification lists: the statistics
    // count a competition by them (c_cod3 the organiser's level, "DE" or
    // "IR"; c_cod4 the organiser's code, "R…" for a league).
    std::array<QString, 5> codes;
};

// "12/03/2027" gives "20270312"; an invalid date gives "".
QString competitionSortKey(const QString& date);
// A line count as shown once typed: its number ("007" is "7"), "0" when
// blank, anything else as typed (refused when the card is saved).
QString lineCountText(const QString& typed);

// The masters of a season, by key, as DBGrid1 lists them.
store::Query competitionsQuery(const QString& season);
// The party rows of a competition, by key (DBGrid10).
store::Query partyRowsQuery(const QString& index);
// The same rows by party name, as listed once the competition is validated.
store::Query partyRowsByNameQuery(const QString& index);
// The party rows the calculation marked for invoicing, by key.
store::Query rowsToInvoiceQuery(const QString& index);

// The master row; Refusal when there is none.
CompetitionRecord loadCompetition(const store::Store& store, const QString& index);

// How far a competition may still be changed.
enum class Openness {
    Open,    // no party row invoiced: the card can be changed
    Frozen,  // some party rows invoiced: only a complementary competition
    Closed,  // the master itself is invoiced ("F")
};
Openness competitionOpenness(const store::Store& store, const QString& index);

// What a validation built.
struct ValidationOutcome {
    QString index;      // the competition's key (new or kept)
    int partyRows = 0;  // party rows under it after the building
    // "aucun club à facturer" / "aucun département à facturer": the master is
    // saved but no party was found; the window then cancels the entry.
    std::optional<QString> emptyListMessage;
};

// Checks the card: "code nature obligatoire", "code formule obligatoire",
// "Date compétition obligatoire". Throws Refusal; writes nothing.
void checkCompetition(const CompetitionRecord& record);

// Creates (empty record.index) or saves a competition and builds its party
// rows for the viewer: leagues at the national level, else clubs or
// committees as record.billedKind says, narrowed to what the viewer may
// invoice. Saving an existing competition first deletes the rows of the other
// kind (at the national level every league row, rebuilt afresh); rows kept
// keep their counts, state and invoice number.
ValidationOutcome saveCompetition(store::Store& store, const reference::Viewer& viewer,
                                  const CompetitionRecord& record);

// A new master with the card's fields and its own party rows, for further
// invoices or credit notes of a frozen competition.
ValidationOutcome createComplementaryCompetition(store::Store& store,
                                                 const reference::Viewer& viewer,
                                                 const CompetitionRecord& record);

// The keys the next master or party row of a season takes.
QString nextMasterIndex(const store::Store& store, const QString& season);
QString nextPartyIndex(const store::Store& store, const QString& season);

// The three counts the operator types per party row.
struct TeamCounts {
    QString teams;        // c_nb_equipe
    QString eliminatory;  // c_nb_equipe_eliminatoire
    QString finals;       // c_nb_equipe_finale
};
// Writes the counts of one party row; each must be a whole number ≥ 0 (an
// empty box is 0), else a Refusal naming the row and nothing is written.
void setTeamCounts(store::Store& store, const reference::Viewer& viewer, const QString& partyIndex,
                   const TeamCounts& counts);

// The level that owns a competition, from its master (`index` may name the
// master or one of its party rows); the national level when none is recorded.
QString competitionOwner(const store::Store& store, const QString& index);
// Whether the viewer may change, calculate or invoice the competition: its
// owner level and the national level may.
bool mayChangeCompetition(const store::Store& store, const reference::Viewer& viewer,
                          const QString& index);
// A Refusal naming the owner when the viewer may not.
void requireCompetitionOwner(const store::Store& store, const reference::Viewer& viewer,
                             const QString& index);
// Gives each master stored without an owner the level its party rows show:
// league rows the national level; clubs or committees of one department the
// committee (unless the league has no other); of several, their league.
// Invoices stored without their issuing level get their competition's owner
// (the national level when none). One transaction; returns the masters given
// an owner.
int assignCompetitionOwners(store::Store& store);

}  // namespace orve::competitions
