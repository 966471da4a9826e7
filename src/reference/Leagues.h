#pragma once

#include <QDate>
#include <optional>

#include "reference/ReferenceCodes.h"
#include "store/Condition.h"

namespace orve::reference {

// Regional leagues: edited only; they come from the federation's own files.
namespace leagues {

// The columns of the league card, written back on every save.
const QStringList& cardColumns();

// Every league, in the order the table holds them.
store::Query listing();
store::Rows list(store::Store& store);
std::optional<store::Row> find(const store::Store& store, const QString& code);
// The league's name; empty when no league has that code.
QString name(store::Store& store, const QString& code);

// Invoices meant for a league go to the league itself ("LR") or to its CSR.
enum class Invoicing { League, Csr };
Invoicing invoicingOf(const QString& reFact);

// Writes the card back with today's stamp. Invoicing the CSR needs its
// president's name and mail.
void save(store::Store& store, const QString& code, const Card& card, Invoicing invoicing,
          const QDate& today);

}  // namespace leagues
}  // namespace orve::reference
