#pragma once

#include <QString>
#include <vector>

#include "store/Condition.h"
#include "store/Store.h"

// Correcting by hand which invoices count as mailed (ent_envoi_mail). The
// ticks are the workstation's own (scratch strenvoi, list "pointage"), kept
// while the window is open and cleared when it opens and closes.
namespace orve::tools {

// The list shown: the unsent invoices ("N") or the sent ones ("O").
enum class DispatchList { Unsent, Sent };

// Fills the workstation's list with every invoice header as stored now,
// keeping the ticks already typed.
void loadDispatchList(store::Store& store);
// Drops the list and its ticks.
void clearDispatchList(store::Store& store);

// The headers of one list, by number.
store::Query dispatchQuery(DispatchList list);

// What was typed in "à modifier": any character but a blank is a tick.
void setDispatchTick(store::Store& store, const QString& invoice, const QString& typed);
std::vector<QString> tickedForDispatch(const store::Store& store);

// "Etes-vous certain que ces factures ont été envoyées par mail ?" for the
// unsent list, "Etes-vous certain de vouloir renvoyer ces factures par mail ?"
// for the sent one.
QString dispatchQuestion(DispatchList shown);

// The change the question asks about, for every ticked invoice: marked sent
// ("O") from the unsent list, to be sent again ("N") from the sent list. One
// transaction; the ticks are cleared and the list read again. Returns how
// many headers changed.
int applyDispatchChange(store::Store& store, DispatchList shown);

}  // namespace orve::tools
