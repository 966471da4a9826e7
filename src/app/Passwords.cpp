#include "app/Passwords.h"

#include <sodium.h>

#include "store/Refusal.h"

namespace orve::app {

namespace {
void ensureSodium() {
    static const bool ready = sodium_init() >= 0;
    if (!ready) throw StoreError(QStringLiteral("La bibliothèque de chiffrement ne démarre pas."));
}
}  // namespace

QString hashPassword(const QString& password) {
    ensureSodium();
    const QByteArray bytes = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(out, bytes.constData(), static_cast<unsigned long long>(bytes.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
        throw StoreError(QStringLiteral("Mémoire insuffisante pour chiffrer le mot de passe."));
    }
    return QString::fromLatin1(out);
}

bool isPasswordHash(const QString& stored) { return stored.startsWith(QStringLiteral("$argon2")); }

bool passwordMatches(const QString& stored, const QString& typed) {
    // A row typed by hand without a password must not open with an empty one.
    if (stored.isEmpty()) return false;
    if (!isPasswordHash(stored)) return stored == typed;
    ensureSodium();
    const QByteArray hash = stored.toLatin1();
    const QByteArray bytes = typed.toUtf8();
    return crypto_pwhash_str_verify(hash.constData(), bytes.constData(),
                                    static_cast<unsigned long long>(bytes.size())) == 0;
}

}  // namespace orve::app
