#pragma once

#include <QDate>
#include <QString>
#include <QtGlobal>

namespace orve::app {

struct NewInstallation {
    QString code;
    QString name;
    QString district;
};

// The financial year that holds a date: 1 September to 31 August.
QPair<QString, QString> financialYearOf(const QDate& day);

// An empty installation in dir: the two path files (naming dir/donnees, or
// the shared database `base` when given, and dir/factures), both folders, the
// data stores and the strspecif row. Refuses a folder that already holds an
// installation, and a database that already holds one.
void createInstallation(const QString& dir, const NewInstallation& values, const QDate& today,
                        const QString& base = {});

// Copies the installation's data into another store — a PostgreSQL database
// (empty, its schemas made here) or a new SQLite data folder — checks the
// copy, and points chemin_base.txt at it. Returns what was copied.
struct Migration {
    int tables = 0;
    qint64 rows = 0;
    QString target;  // as written in chemin_base.txt
};
Migration migrateInstallation(const QString& dir, const QString& target);

}  // namespace orve::app
