#pragma once

#include <QDate>
#include <QString>
#include <vector>

namespace orve::shell {

struct DemoUser {
    QString login;
    QString password;
    QString league;
    QString role;
};

// The operators of the demo installation, with their passwords (printed by
// init-demo and written in the README).
const std::vector<DemoUser>& demoUsers();

// A complete, coherent installation to try every screen on: leagues,
// committees, centres, clubs, licensees, articles and tariffs, natures,
// types, organisers, codification lists, mail texts and three operators.
// The names and addresses are invented.
// With `base`, the data go to that PostgreSQL database (empty) instead of dir/donnees.
void createDemoInstallation(const QString& dir, const QDate& today, const QString& base = {});

}  // namespace orve::shell
