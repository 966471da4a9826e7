#pragma once

#include <QString>

#include "store/Condition.h"
#include "store/Store.h"

namespace orve::reference {

// Natures of competition and how competitions of each nature are invoiced.
namespace natures {

store::Query listing();
store::Rows list(store::Store& store);

struct Nature {
    QString code;
    QString label;
    bool onEntries = false;        // n_fact "E" (entries) or "R" (results)
    bool invoiceLines = true;      // n_fact_ligne "O"/"N"
    bool invoiceEntryFees = true;  // n_fact_engagement "O"/"N"
};
Nature fromRow(const store::Row& row);

// Adds (refused when the code is taken) or changes a nature, and pushes its
// invoicing options into every competition of that nature, invoiced or not,
// all in one transaction. Returns the number of competitions rewritten.
int save(store::Store& store, const Nature& nature, bool adding);
// Competitions of the nature are left as they are.
void remove(store::Store& store, const QString& code);

}  // namespace natures
}  // namespace orve::reference
