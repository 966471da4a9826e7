#pragma once

#include <QByteArray>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <memory>

#include "store/Store.h"

struct sqlite3_stmt;

namespace orve::store {

// One statement prepared once and run again and again with new values: the
// thousands of rows of an import go through a single preparation instead of
// one each. Made and used inside one Transaction of the store it belongs to;
// values are bound, never spliced in.
class PreparedStatement {
  public:
    PreparedStatement(const Store& store, const QString& sql);
    // INSERT INTO table (columns) VALUES (?, ...): values in the same order.
    static PreparedStatement insertInto(const Store& store, const QString& table,
                                        const QStringList& columns);
    PreparedStatement(PreparedStatement&& other) noexcept;
    PreparedStatement(const PreparedStatement&) = delete;
    PreparedStatement& operator=(const PreparedStatement&) = delete;
    ~PreparedStatement();

    // Runs it with one value per "?", in order; returns the rows affected.
    // A failure throws the store's StoreError, naming table and operation.
    int exec(const Params& params);

  private:
    int execNative(const Params& params);

    const Store& m_store;
    QString m_sql;
    QSqlQuery m_query;
    // SQLite's own statement on the store's connection, when Qt's driver
    // uses the very SQLite library ORVE links: binding through it costs a
    // fraction of Qt's generic binding, which shows on an import's rows.
    sqlite3_stmt* m_native = nullptr;
    int m_parameters = 0;
    // The texts of one run, in SQLite's own encoding, end to end: bound in
    // place rather than copied and converted by SQLite value by value.
    QByteArray m_texts;
};

}  // namespace orve::store
