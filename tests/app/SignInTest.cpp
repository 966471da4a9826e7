#include <gtest/gtest.h>

#include "app/MenuTree.h"
#include "app/Passwords.h"
#include "app/SignIn.h"
#include "app/Users.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::app;

TEST(SignIn, GoodWrongAndHostileInput) {
    test::TestInstall inst;
    auto s = inst.start();
    EXPECT_FALSE(signIn(*s, "gestu", "mauvais"));
    EXPECT_FALSE(s->signedIn());
    EXPECT_FALSE(signIn(*s, "gestu' --", "x"));
    EXPECT_FALSE(signIn(*s, "' or '1'='1", "' or '1'='1"));
    EXPECT_FALSE(signIn(*s, "", ""));
    EXPECT_FALSE(signIn(*s, QString(100000, 'x'), QString(100000, 'y')));
    EXPECT_TRUE(signIn(*s, "ligue06", "azur-2026"));
    EXPECT_EQ(s->user().login, "ligue06");
    EXPECT_EQ(s->user().league, "LR06");
    EXPECT_EQ(s->user().mail, "ligue06@kvarn-bowling.example");
}

TEST(SignIn, OnlyTheExactLoginGestuIsAdministrator) {
    test::TestInstall inst;
    auto s = inst.start();
    // The table compares logins without case, rights compare them exactly.
    ASSERT_TRUE(signIn(*s, "GESTU", "kvarn-2026"));
    EXPECT_FALSE(s->isAdministrator());
    EXPECT_FALSE(entryAllowed("mnu_facturation_li", true, s->user().login, false));
    EXPECT_TRUE(entryAllowed("mnu_outils", true, s->user().login, false));
    EXPECT_TRUE(entryAllowed("mnu_fic_mnu_fic_naturec_gestion", true, s->user().login, false));
    ASSERT_TRUE(signIn(*s, "gestu", "kvarn-2026"));
    EXPECT_TRUE(s->isAdministrator());
    EXPECT_TRUE(entryAllowed("mnu_facturation_li", true, "gestu", true));
    EXPECT_FALSE(entryAllowed("mnu_fic", false, "", false));
    EXPECT_TRUE(entryAllowed("mnu_quitter", false, "", false));
    // An import lies under a submenu reserved to the administrator; the
    // numbered tools, the season and the renumbering to the national level.
    EXPECT_FALSE(entryAllowed("mnu_fic_club_integration", true, "GESTU", true));
    EXPECT_TRUE(entryAllowed("mnu_fic_club_integration", true, "gestu", true));
    for (const char* entry : {"mnu_outils_2", "mnu_out_newsaison", "mnu_out_newnumero"}) {
        EXPECT_FALSE(entryAllowed(entry, true, "ligue06", false)) << entry;
        EXPECT_TRUE(entryAllowed(entry, true, "GESTU", true)) << entry;
    }
    EXPECT_TRUE(entryAllowed("mnu_outils_verif", true, "ligue06", false));
}

TEST(SignIn, PlainTextPasswordIsAcceptedOnceThenHashed) {
    test::TestInstall inst;
    auto s = inst.start();
    s->store().insert("strparam", {{"par_login", "ancien"},
                                   {"par_pwd", "secret'1"},
                                   {"par_region", "LR11"},
                                   {"par_mail", "a@b.example"}});
    EXPECT_FALSE(signIn(*s, "ancien", "secret"));
    ASSERT_TRUE(signIn(*s, "ancien", "secret'1"));
    const QString stored =
        s->store().scalar("SELECT par_pwd FROM strparam WHERE par_login='ancien'").toString();
    EXPECT_TRUE(isPasswordHash(stored));
    EXPECT_NE(stored, "secret'1");
    // The hash is not a password: typing it back is refused.
    EXPECT_FALSE(signIn(*s, "ancien", stored));
    EXPECT_TRUE(signIn(*s, "ancien", "secret'1"));
}

TEST(SignIn, PseudoCompetitionsAreMadeOnceWithTheirValues) {
    test::TestInstall inst(test::TestInstall::Kind::Empty, QDate(2026, 11, 21));
    auto s = inst.start();
    addUser(s->store(), "gestu", "JKV", "", "pw-456789");
    // An existing row with another season is left untouched.
    s->store().insert("strcompetition",
                      {{"c_index", "8FA00000"}, {"c_saison", "2025"}, {"c_intitule", "à garder"}});
    ASSERT_TRUE(signIn(*s, "gestu", "pw-456789"));
    const auto rows = s->store().select("SELECT * FROM strcompetition ORDER BY rowid");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].value("c_saison").toString(), "2025");
    EXPECT_EQ(rows[0].value("c_intitule").toString(), "à garder");
    const char* keys[] = {"8FA00000", "8FA00001", "8FA00005", "8FA00006"};
    const char* titles[] = {"", "Facture Divers", "Facture Ligues", "Facture Journées LR CD"};
    const char* natures[] = {"", "DIV", "LI", "JORE"};
    for (int i = 1; i < 4; ++i) {
        const auto& r = rows[i];
        EXPECT_EQ(r.value("c_index").toString(), keys[i]);
        EXPECT_EQ(r.value("c_intitule").toString(), QString::fromUtf8(titles[i]));
        EXPECT_EQ(r.value("c_nature").toString(), natures[i]);
        EXPECT_EQ(r.value("c_saison").toString(), "2018");
        EXPECT_EQ(r.value("c_type").toString(), "FD");
        EXPECT_EQ(r.value("c_codification").toString(), " ");
        EXPECT_EQ(r.value("c_nb_lignes").toInt(), 0);
        EXPECT_EQ(r.value("c_numero").toString(), "");
        EXPECT_EQ(r.value("c_date_finale").toString(), "31/08/2018");
        EXPECT_EQ(r.value("c_tri_finale").toString(), "20180831");
        EXPECT_EQ(r.value("c_formule").toString(), "1");
        EXPECT_EQ(r.value("c_dept").toString(), "00");
        EXPECT_EQ(r.value("c_num_bowling").toString(), "000");
        EXPECT_EQ(r.value("c_organisateur").toString(), "R");
        EXPECT_EQ(r.value("c_nom_organisateur").toString(), QString::fromUtf8("Ligue Régionale"));
        EXPECT_EQ(r.value("c_inscription").toString(), "0");
        EXPECT_EQ(r.value("c_arbitre").toString(), "NC");
        EXPECT_EQ(r.value("c_date_enreg").toString(), "21/11/2026");
        EXPECT_EQ(r.value("c_date_modif").toString(), "21/11/2026");
        EXPECT_EQ(r.value("c_facture").toString(), "X");
        EXPECT_EQ(r.value("c_num_facture").toString(), " ");
        EXPECT_EQ(r.value("c_tri_facture").toString(), " ");
        EXPECT_EQ(r.value("c_edt_fact").toString(), "OUI");
        EXPECT_EQ(r.value("c_nat_fact").toString(), "R");
        EXPECT_EQ(r.value("c_fact_ligne").toString(), "N");
        EXPECT_EQ(r.value("c_fact_engagement").toString(), "O");
        EXPECT_EQ(r.value("c_envoi_mail").toString(), "N");
        EXPECT_EQ(r.value("c_add_tiers").toString(), "N");
        EXPECT_EQ(r.value("index_reference").toString(), "00000000");
    }
    ASSERT_TRUE(signIn(*s, "gestu", "pw-456789"));
    EXPECT_EQ(s->store().scalar("SELECT count(*) FROM strcompetition").toInt(), 4);
}

TEST(Users, AddAndChangePasswordRefuseWhatMakesNoSense) {
    test::TestInstall inst;
    auto s = inst.start();
    EXPECT_THROW(addUser(s->store(), "GESTU", "JKV", "", "x-long-enough"), Refusal);
    EXPECT_THROW(addUser(s->store(), "nouveau", "LR11", "", ""), Refusal);
    EXPECT_THROW(changePassword(s->store(), "personne", "x-long-enough"), Refusal);
    // Seven characters are too few, eight are enough.
    EXPECT_THROW(addUser(s->store(), "nouveau", "LR11", "", "1234567"), Refusal);
    addUser(s->store(), "nouveau", "LR11", "n@x.example", "premier1");
    EXPECT_THROW(changePassword(s->store(), "nouveau", "court"), Refusal);
    changePassword(s->store(), "nouveau", "second-2");
    EXPECT_FALSE(signIn(*s, "nouveau", "premier1"));
    EXPECT_TRUE(signIn(*s, "nouveau", "second-2"));
}

TEST(SignIn, AnEmptyStoredPasswordNeverOpens) {
    test::TestInstall inst;
    auto s = inst.start();
    // Rows typed by hand, one with NULL and one with an empty password.
    s->store().insert("strparam", {{"par_login", "vide"}, {"par_pwd", ""}, {"par_region", "LR11"}});
    s->store().insert("strparam",
                      {{"par_login", "nul"}, {"par_pwd", QVariant()}, {"par_region", "LR11"}});
    for (const char* login : {"vide", "nul"}) {
        for (const char* typed : {"", "quelconque"}) {
            try {
                signIn(*s, login, typed);
                ADD_FAILURE() << login << " opened with \"" << typed << "\"";
            } catch (const Refusal& r) {
                EXPECT_EQ(r.message(), kNoPasswordSet);
            }
        }
    }
    EXPECT_FALSE(s->signedIn());
}
