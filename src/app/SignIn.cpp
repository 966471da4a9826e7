#include "app/SignIn.h"

#include "app/Passwords.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::app {

namespace {

std::optional<store::Row> findUser(const store::Store& store, const QString& login,
                                   const QString& password) {
    // Several rows may differ only by case; the password decides which one it is.
    for (const auto& row : store.select(
             QStringLiteral("SELECT rowid, par_login, par_pwd, par_region, par_mail FROM strparam "
                            "WHERE par_login = ?"),
             {login})) {
        if (passwordMatches(row.value("par_pwd").toString(), password)) return row;
    }
    return std::nullopt;
}

}  // namespace

bool signIn(Session& session, const QString& login, const QString& password) {
    auto& store = session.store();
    const auto row = findUser(store, login, password);
    if (!row) {
        // Say why rather than "invalid": no password typed can ever open such a row.
        if (store.exists(QStringLiteral("SELECT 1 FROM strparam WHERE par_login = ? AND "
                                        "COALESCE(par_pwd, '') = ''"),
                         {login}))
            throw Refusal(kNoPasswordSet);
        return false;
    }
    const QString stored = row->value("par_pwd").toString();
    store::Transaction tx(store);
    if (!isPasswordHash(stored)) {
        store.update(QStringLiteral("strparam"), {{"par_pwd", hashPassword(password)}},
                     QStringLiteral("rowid = ?"), {row->value("rowid")});
    }
    session.runSignInSteps();
    tx.commit();
    // The login is kept as typed: rights compare it exactly.
    session.setUser(
        {login, row->value("par_region").toString(), row->value("par_mail").toString()});
    return true;
}

void actAs(Session& session, const QString& login) {
    const auto row = session.store().selectOne(
        QStringLiteral("SELECT par_login, par_region, par_mail FROM strparam WHERE par_login = ?"),
        {login});
    if (!row) throw Refusal(QStringLiteral("L'utilisateur « %1 » n'existe pas.").arg(login));
    session.runSignInSteps();
    session.setUser({login, row->value(1).toString(), row->value(2).toString()});
}

}  // namespace orve::app
