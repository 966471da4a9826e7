#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>

#include "store/Condition.h"
#include "store/Store.h"

// The filter panel shared by the invoice, journal, transfer and statistics
// screens: its lists, and the condition on strcompetition its state makes.
namespace orve::invoicing {

inline const QString kAll = QStringLiteral("Tous");
inline const QString kEmptyMonthMask = QStringLiteral("__/____");
inline const QString kNoMonth = QStringLiteral("000000");
inline const QString kNoCompetition = QStringLiteral("00000000");

// The panel's state, as its controls hold it. Combo texts are kept whole
// ("LR06 # Provence", "Tous"); the rule takes the key itself.
struct SelectionState {
    QString season;                                              // Combo1
    QString type = kAll;                                         // Combo2
    QString nature = kAll;                                       // Combo3
    QString league = kAll;                                       // Combo4
    QString department = kAll;                                   // Combo5
    QString organiserName;                                       // txtnom_organisateur
    std::array<QString, 5> codes{kAll, kAll, kAll, kAll, kAll};  // Combo6..Combo10
    QString month = kEmptyMonthMask;                             // mskmois
    QString invoiceNumber;                                       // txtnofac
    QString competitionIndex = kNoCompetition;                   // txtcnum
    QString sortField;  // a column head clicked, "" for none
    bool sortDescending = false;
};

// What the panel chooses, as bound conditions.
struct SelectionCondition {
    // On strcompetition: "c_saison = ? AND upper(trim(c_type)) = upper(?)"...
    store::Condition competitions;
    QString orderBy;  // " ORDER BY c_intitule ASC", or empty
    // The two filters that apply to invoices rather than competitions.
    QString monthKey = kNoMonth;  // "yyyymm", or "000000" for every month
    QString invoiceNumber;        // as stored in ent_fact_no, or empty for all
    // The same two as a condition on invoice lines (f_tri_date, f_num_facture),
    // for the screens that read the lines: empty when neither is set.
    store::Condition lines;
};

// "LR06 # Provence" gives "LR06"; "Provence # LR06" gives "LR06" with
// labelFirst; "Tous" gives "".
QString comboKey(const QString& item, bool labelFirst = false);

// The nature type of a screen mode: "LIC" → "LI", "DIV" → "DV", ... ; "" when unknown.
QString natureTypeOfMode(const QString& mode);

// "11/26" and "11/2026" give "202611"; the empty mask gives "000000";
// anything else is refused with nothing.
std::optional<QString> monthKeyOfMask(const QString& mask);

// The columns a list may be sorted by; any other name is ignored.
bool isSortableColumn(const QString& field);

// The panel's state as a condition. Throws Refusal for a month that is not one.
SelectionCondition buildSelectionCondition(const SelectionState& state);

// A sort column clicked: same column flips ASC/DESC, a new column starts ASC.
void toggleSort(SelectionState& state, const QString& field);

// The lists the panel shows, read from the store for a screen mode.
struct SelectionLists {
    QStringList seasons;
    QStringList types;                 // "Tous", t_code...
    QStringList natures;               // "Tous", "n_code # n_libelle"...
    QStringList leagues;               // "Tous", "o_code # o_libelle"...
    QStringList departments;           // "Tous", "o_code # o_libelle"...
    std::array<QStringList, 5> codes;  // "Tous", " ", p_valeur...
    QString defaultSeason;             // the season in progress
};
// A mode without a nature type ("" or a statistics mode) lists every nature.
SelectionLists loadSelectionLists(const store::Store& store, const QString& mode,
                                  int workingSeason);
// The departments offered once a league organiser is chosen ("Tous" for all).
QStringList loadDepartments(const store::Store& store, const QString& leagueItem);

}  // namespace orve::invoicing
