#include "app/SignIn.h"

#include "app/Passwords.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::app {

namespace {

struct PseudoCompetition {
    const char* index;
    const char* title;
    const char* nature;
};

// Fixed in the program on purpose: these rows are not derived from the date.
constexpr PseudoCompetition kPseudoCompetitions[] = {
    {"8FA00000", "Licence Saison 2018-2019", "LIC"},
    {"8FA00001", "Facture Divers", "DIV"},
    {"8FA00005", "Facture Ligues", "LI"},
    {"8FA00006", "Facture Journées LR CD", "JORE"},
};

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

void ensurePseudoCompetitions(store::Store& store, const QDate& today) {
    const QString todayText = format::displayDate(today);
    store::Transaction tx(store);
    for (const auto& p : kPseudoCompetitions) {
        const QString index = QString::fromLatin1(p.index);
        if (store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ?"), {index}))
            continue;
        store.insert(QStringLiteral("strcompetition"),
                     {{"c_index", index},
                      {"c_intitule", QString::fromUtf8(p.title)},
                      {"c_nature", QString::fromLatin1(p.nature)},
                      {"c_saison", "2018"},
                      {"c_type", "FD"},
                      {"c_codification", " "},
                      {"c_nb_lignes", 0},
                      {"c_nb_joueur_prevu", 0},
                      {"c_nb_joueur_reel", 0},
                      {"c_nb_equipe", 0},
                      {"c_ligne_eliminatoire", 0},
                      {"c_ligne_finale", 0},
                      {"c_nb_equipe_eliminatoire", 0},
                      {"c_nb_equipe_finale", 0},
                      {"c_numero", ""},
                      {"c_cod1", ""},
                      {"c_cod2", ""},
                      {"c_cod3", ""},
                      {"c_cod4", ""},
                      {"c_cod5", ""},
                      {"c_date_facture", ""},
                      {"c_phase", ""},
                      {"c_date_finale", "31/08/2018"},
                      {"c_tri_finale", "20180831"},
                      {"c_formule", "1"},
                      {"c_dept", "00"},
                      {"c_num_bowling", "000"},
                      {"c_organisateur", "R"},
                      {"c_nom_organisateur", QStringLiteral("Ligue Régionale")},
                      {"c_inscription", 0},
                      {"c_caution", 0},
                      {"c_arbitre", "NC"},
                      {"c_date_enreg", todayText},
                      {"c_date_modif", todayText},
                      {"c_facture", "X"},
                      {"c_tri_facture", " "},
                      {"c_num_facture", " "},
                      {"c_edt_fact", "OUI"},
                      {"c_nat_fact", "R"},
                      {"c_fact_ligne", "N"},
                      {"c_fact_engagement", "O"},
                      {"c_envoi_mail", "N"},
                      {"c_add_tiers", "N"},
                      {"index_reference", "00000000"}});
    }
    tx.commit();
}

bool signIn(Session& session, const QString& login, const QString& password) {
    auto& store = session.store();
    const auto row = findUser(store, login, password);
    if (!row) return false;
    const QString stored = row->value("par_pwd").toString();
    store::Transaction tx(store);
    if (!isPasswordHash(stored)) {
        store.update(QStringLiteral("strparam"), {{"par_pwd", hashPassword(password)}},
                     QStringLiteral("rowid = ?"), {row->value("rowid")});
    }
    ensurePseudoCompetitions(store, session.today());
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
    ensurePseudoCompetitions(session.store(), session.today());
    session.setUser({login, row->value(1).toString(), row->value(2).toString()});
}

}  // namespace orve::app
