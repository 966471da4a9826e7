#pragma once

#include <QDate>
#include <optional>

#include "reference/ReferenceCodes.h"
#include "reference/Visibility.h"

namespace orve::reference {

// Departmental committees: edited only; they come from the federation's files.
namespace committees {

const VisibilityColumns& visibility();
// The columns written back from the card as typed.
const QStringList& cardColumns();

store::Query listing(const Viewer& viewer);
store::Rows list(store::Store& store, const Viewer& viewer);
// By number as typed ("5" finds "005").
std::optional<store::Row> find(const store::Store& store, const QString& number);
// The committee's name; empty when unknown.
QString name(store::Store& store, const QString& number);

// Invoices of a committee go to a league (its code) or to a committee ("CD" +
// two digits).
struct InvoicingEntity {
    bool committee = false;
    QString code;  // the league code, or the committee number without "CD"
};
InvoicingEntity splitEntity(const QString& deFacturation);
QString joinEntity(const InvoicingEntity& entity);
// The name of the league or committee invoiced; empty when there is none.
QString entityName(store::Store& store, const InvoicingEntity& entity);

// A code looked up as it is typed: the name found, or the message saying it
// does not exist.
struct Lookup {
    QString name;
    QString message;  // empty when found
};
Lookup lookUpLeague(store::Store& store, const QString& code);
Lookup lookUpEntity(store::Store& store, const InvoicingEntity& entity);
// The card's caption while a committee is shown.
QString cardCaption(const store::Row& committee);

// What the card holds beyond the plain text columns.
struct CommitteeEdit {
    Card card;         // the columns of cardColumns()
    QString league;    // de_region as typed
    QString district;  // stored upper case
    QString account;   // stored as its numeric value, "000000"
    InvoicingEntity entity;
};

// Refuses a save without a known invoicing entity.
void save(store::Store& store, const QString& number, const CommitteeEdit& edit,
          const QDate& today);

}  // namespace committees
}  // namespace orve::reference
