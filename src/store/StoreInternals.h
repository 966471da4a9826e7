#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

#include "store/Store.h"

struct sqlite3;

// What the store's own files share among themselves (opening a SQLite file,
// reporting its errors, speaking to the server); nothing outside store/
// includes it.
namespace orve::store::internal {

QString nextConnectionName(const QString& prefix);
// A SQLite connection under `name`, with the program's own SQL functions.
QSqlDatabase openConnection(const QString& path, const QString& name);
// The SQLite connection behind `db`, when Qt's driver reached it through the
// same SQLite library as ours (Debian's Qt uses the system one; a Qt built
// with its own copy does not qualify, and its statements go through Qt).
sqlite3* sameLibraryConnection(const QSqlDatabase& db);
// Used where no Store exists yet: errors are those of the file at `path`.
QSqlQuery runIn(const QSqlDatabase& db, const QString& path, const QString& sql,
                const Params& params = {});
// What a statement does, as a message names it ("lecture", "ajout", …).
QString operationOf(const QString& sql);
// A statement run while preparing or opening one file, where that file is
// known whatever the statement says.
[[noreturn]] void failIn(const QString& path, const QString& sql, const QSqlError& error);

// The schema of a shared store on the server ("jkv" rather than SQLite's "main").
QString serverSchema(File f);
extern const QString kSearchPath;
extern const QString kQuietNotices;
bool lostConnectionText(const QString& text);

}  // namespace orve::store::internal
