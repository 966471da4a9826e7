#pragma once

#include <QString>

namespace orve::test {

// The whole suite runs twice: on SQLite files, and with ORVE_TEST_STORE=postgres
// on the throw-away PostgreSQL server that scripts/test.sh starts (its socket
// folder in ORVE_TEST_PG_SOCKET).
bool onServer();

// A new empty database on that server, as an address for chemin_base.txt;
// dropped again by dropDatabase.
QString createDatabase();
void dropDatabase(const QString& address);

// Runs SQL as the server's administrator (CREATE DATABASE and the like).
void adminExec(const QString& sql);

}  // namespace orve::test

// For tests about SQLite files themselves (damaged pages, file locks, WAL).
#define ORVE_SQLITE_FILES_ONLY()                                           \
    do {                                                                   \
        if (::orve::test::onServer()) GTEST_SKIP() << "SQLite files only"; \
    } while (0)
