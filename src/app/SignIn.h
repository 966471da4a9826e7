#pragma once

#include <QDate>
#include <QString>
#include <optional>

#include "app/Session.h"

namespace orve::app {

inline const QString kInvalidLogin = QStringLiteral("Login-Mot de passe invalide");

// Checks a login and password against strparam. A match records the operator in
// the session, hashes a plain-text password left in the table, and makes sure
// the four pseudo-competitions exist. Returns false on a wrong pair.
bool signIn(Session& session, const QString& login, const QString& password);

// The sign-in values of a user without a password: what orve-batch --as uses.
// Refuses an unknown login.
void actAs(Session& session, const QString& login);

// The rows under which invoices that belong to no competition are filed.
// Missing ones are added with the fixed values; existing ones are left alone.
void ensurePseudoCompetitions(store::Store& store, const QDate& today);

}  // namespace orve::app
