#pragma once

#include <QDate>
#include <QString>

namespace orve::app {

struct NewInstallation {
    QString code;
    QString name;
    QString district;
};

// The financial year that holds a date: 1 September to 31 August.
QPair<QString, QString> financialYearOf(const QDate& day);

// An empty installation in dir: the two path files (naming dir/donnees and
// dir/factures), both folders, the five data files and the strspecif row.
// Refuses a folder that already holds an installation.
void createInstallation(const QString& dir, const NewInstallation& values, const QDate& today);

}  // namespace orve::app
