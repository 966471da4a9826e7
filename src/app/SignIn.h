#pragma once

#include <QDate>
#include <QString>
#include <optional>

#include "app/Session.h"

namespace orve::app {

inline const QString kInvalidLogin = QStringLiteral("Login-Mot de passe invalide");
inline const QString kNoPasswordSet = QStringLiteral(
    "Aucun mot de passe n'est défini pour ce login : utilisez orve-batch user passwd.");

// Checks a login and password against strparam. A match records the operator in
// the session, hashes a plain-text password left in the table, and runs the
// session's sign-in steps in the same transaction. Returns false on a wrong
// pair; refuses a login whose stored password is empty.
bool signIn(Session& session, const QString& login, const QString& password);

// The sign-in values of a user without a password: what orve-batch --as uses.
// Runs the sign-in steps; refuses an unknown login.
void actAs(Session& session, const QString& login);

}  // namespace orve::app
