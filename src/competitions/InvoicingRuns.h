#pragma once

#include <QString>

#include "competitions/NationalInvoicing.h"
#include "store/Condition.h"
#include "store/Store.h"

// Invoicing runs under way, seen from every workstation. Opening a window or
// calculating sends the "C" rows of every competition back to " "; on a
// shared installation that would take the rows from under another clerk's
// run. Each run therefore holds a lease on the rows it invoices (a row of
// strtraitement), refreshed while it works and removed at its end; whatever
// resets rows leaves the leased ones alone. A run killed without removing its
// lease loses it once stale, or at once when its process is seen gone on the
// same workstation.
namespace orve::competitions {

// A run without sign of life for this long is taken for dead.
inline constexpr qint64 kRunStaleSeconds = 120;
// A run refreshes its lease at most this often.
inline constexpr qint64 kRunHeartbeatSeconds = 10;

// What a run invoices: one competition's party rows, or one season's
// championship or private master rows.
struct RunScope {
    QString key;            // "competition:FD700012", "cdc:2027", "prive:2027"
    QString label;          // "la compétition FD700012", "le championnat 2027", ...
    store::Condition rows;  // its rows of strcompetition
    static RunScope competition(const QString& index);
    static RunScope batch(BatchKind kind, const QString& season);
    // The scope a lease names; an unknown key gives an empty condition.
    static RunScope fromKey(const QString& key);
};

// The lease of one run. Taking it refuses, naming the clerk and the
// workstation, when a live run holds the same scope; the destructor gives it
// back (a failure to do so only leaves it to go stale).
class RunLease {
  public:
    RunLease(store::Store& store, const RunScope& scope, const QString& login);
    ~RunLease();
    RunLease(const RunLease&) = delete;
    RunLease& operator=(const RunLease&) = delete;

    const RunScope& scope() const { return m_scope; }
    const QString& token() const { return m_token; }
    // Refreshes the lease when the last refresh is old enough; cheap to call often.
    void keepAlive();

  private:
    store::Store& m_store;
    RunScope m_scope;
    QString m_token;
    qint64 m_lastSign = 0;
};

// The rows of strcompetition that no live run holds, but those of the run
// whose token is `own` (empty: every live run counts).
store::Condition rowsOutsideLiveRuns(const store::Store& store, const QString& own = {});

// Refusal when a live run holds `scope`: "… est en cours de facturation par …".
void requireNoLiveRun(const store::Store& store, const RunScope& scope);

// Rows calculated ("C") but not invoiced go back to " ", everywhere but in the
// rows of live runs, as the windows do when they open and cancel. A row that
// has an invoice ("A") is never sent back: it is finished instead
// (finishInterruptedRows). Returns how many rows changed.
int releaseCalculatedRows(store::Store& store);

}  // namespace orve::competitions
