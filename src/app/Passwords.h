#pragma once

#include <QString>

namespace orve::app {

QString hashPassword(const QString& password);
// A stored value is a hash when libsodium wrote it; anything else is a
// plain-text password typed into the table by hand.
bool isPasswordHash(const QString& stored);
// True when the typed password matches the stored one, hashed or plain.
bool passwordMatches(const QString& stored, const QString& typed);

}  // namespace orve::app
