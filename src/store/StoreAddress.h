#pragma once

#include <QString>

namespace orve::store {

// Where the federation's shared data lives, as chemin_base.txt says it: a
// folder of SQLite files, or a PostgreSQL database shared by workstations,
// "postgresql://USER@HOST[:PORT]/DATABASE[?sslmode=…]". HOST may be a socket
// folder, written with %2F for its slashes or as "?host=/folder".
struct StoreAddress {
    enum class Engine { Sqlite, Postgres };
    Engine engine = Engine::Sqlite;
    QString folder;  // the SQLite data folder
    QString user;
    QString host;
    int port = 5432;
    QString database;
    QString sslmode;

    static bool isServerAddress(const QString& text);
    // Reads a "postgresql://" address; refuses a malformed one, naming it.
    static StoreAddress parse(const QString& text);
    static StoreAddress ofFolder(const QString& folder);
    bool shared() const { return engine == Engine::Postgres; }
    // What the operator reads: "HOST/DATABASE", or the folder.
    QString display() const;
    // The address written back to chemin_base.txt.
    QString text() const;
};

}  // namespace orve::store
