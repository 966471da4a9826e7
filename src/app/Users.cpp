#include "app/Users.h"

#include "app/Passwords.h"
#include "store/Refusal.h"

namespace orve::app {

void checkPasswordStrength(const QString& password) {
    if (password.isEmpty()) throw Refusal(QStringLiteral("Le mot de passe est obligatoire."));
    if (password.size() < kMinPasswordLength)
        throw Refusal(QStringLiteral("Le mot de passe doit compter au moins %1 caractères.")
                          .arg(kMinPasswordLength));
}

void addUser(store::Store& store, const QString& login, const QString& league, const QString& mail,
             const QString& password) {
    if (login.trimmed().isEmpty()) throw Refusal(QStringLiteral("Le login est obligatoire."));
    checkPasswordStrength(password);
    store::Transaction tx(store);
    if (store.exists(QStringLiteral("SELECT 1 FROM strparam WHERE par_login = ?"), {login}))
        throw Refusal(QStringLiteral("L'utilisateur « %1 » existe déjà.").arg(login));
    store.insert(QStringLiteral("strparam"), {{"par_login", login},
                                              {"par_pwd", hashPassword(password)},
                                              {"par_region", league},
                                              {"par_mail", mail}});
    tx.commit();
}

void changePassword(store::Store& store, const QString& login, const QString& password) {
    checkPasswordStrength(password);
    store::Transaction tx(store);
    if (store.update(QStringLiteral("strparam"), {{"par_pwd", hashPassword(password)}},
                     QStringLiteral("par_login = ?"), {login}) == 0)
        throw Refusal(QStringLiteral("L'utilisateur « %1 » n'existe pas.").arg(login));
    tx.commit();
}

}  // namespace orve::app
