#pragma once

#include <QString>

#include "store/Store.h"

namespace orve::app {

inline constexpr int kMinPasswordLength = 8;
// Refuses an empty password or one shorter than kMinPasswordLength.
void checkPasswordStrength(const QString& password);

// Adds an operator with a hashed password. Refuses an existing login.
void addUser(store::Store& store, const QString& login, const QString& league, const QString& mail,
             const QString& password);
// Replaces an operator's password. Refuses an unknown login.
void changePassword(store::Store& store, const QString& login, const QString& password);

}  // namespace orve::app
