#pragma once

#include <QString>

#include "store/Store.h"

namespace orve::store {

// SQL text with its values bound to "?" in order. Every filter of the program
// (who may see a party, the selection panel, a report's choices) is one of
// these, so filters combine with && and always reach the store bound.
class Condition {
  public:
    Condition() = default;
    Condition(QString sql, Params params = {});  // NOLINT: a plain condition reads naturally

    bool isEmpty() const { return m_sql.isEmpty(); }
    const QString& sql() const { return m_sql; }
    const Params& params() const { return m_params; }

    // Both conditions; an empty side is no restriction.
    Condition operator&&(const Condition& other) const;
    Condition& operator&=(const Condition& other);

    // " WHERE <sql>", or nothing when empty; ready to follow "SELECT ... FROM t".
    QString where() const;
    // The same, with the leading keyword of the caller's choice (" AND ", say).
    QString after(const QString& keyword) const;

  private:
    QString m_sql;
    Params m_params;
};

// A listing: what it selects, which rows, in which order. Grids keep the query
// and run it again, re-sorted or further on, rather than a copy of its rows.
struct Query {
    QString selectFrom;  // "SELECT * FROM strclub"
    Condition condition;
    QString orderBy;  // "cl_code ASC", or empty
    QString sql() const;
    // The same rows in another order (a column head clicked).
    Query sortedBy(const QString& column, bool descending) const;
};

// Texts compared without regard to case, accented letters included, alike on
// both engines: SQL's upper() folds only A to Z on SQLite, and on PostgreSQL
// under the C locale. `caselessSql` wraps a column or expression in the
// store's orve_pli(), and `caselessText` folds the value bound against it
// the same way.
QString caselessSql(const QString& expression);
QString caselessText(const QString& text);

}  // namespace orve::store
