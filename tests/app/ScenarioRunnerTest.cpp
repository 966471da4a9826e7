#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/ui/ScenarioRunner.h"
#include "support/TestInstall.h"

using orve::test::runProgram;

// The scenarios are the screens' tests: a runner that let a wrong statement pass
// would make all of them worthless, so each kind of mistake must fail the run
// and say where.
namespace {

class ScenarioRunnerTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        s_dir = new QTemporaryDir;
        QString out, err;
        ASSERT_EQ(runProgram(ORVE_BATCH, {"init-demo", s_dir->filePath("inst")}, "", &out, &err,
                             {"ORVE_TODAY=21/11/2026"}),
                  0);
    }
    static void TearDownTestSuite() { delete s_dir; }

    // Runs a scenario; returns the exit code and leaves the report in m_err.
    int run(const QString& script) {
        const QString path = s_dir->filePath("s.scn");
        QFile f(path);
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(script.toUtf8());
        f.close();
        QString out;
        return runProgram(ORVE_BIN, {"--home", s_dir->filePath("inst"), "--scenario", path}, "",
                          &out, &m_err, {"ORVE_TODAY=21/11/2026"});
    }
    QString m_err;
    static QTemporaryDir* s_dir;
};
QTemporaryDir* ScenarioRunnerTest::s_dir = nullptr;

}  // namespace

TEST(ScenarioWords, QuotesKeepBlanksAndEscapes) {
    using orve::app::scenarioWords;
    EXPECT_EQ(scenarioWords("set txt_lib \"Ligue d'Azur  \""),
              (QStringList{"set", "txt_lib", "Ligue d'Azur  "}));
    EXPECT_EQ(scenarioWords("expect x \"a \\\"b\\\" \\\\\" \"\""),
              (QStringList{"expect", "x", "a \"b\" \\", ""}));
    EXPECT_EQ(scenarioWords("  click   Cmdok_login "), (QStringList{"click", "Cmdok_login"}));
}

TEST_F(ScenarioRunnerTest, PassesWhatIsTrue) {
    EXPECT_EQ(run("login gestu kvarn-2026\n"
                  "# a comment\n"
                  "expect-visible ORVE_menu.Frame1 no\n"
                  "sql tiers select count(*) from strregion => 6\n"),
              0)
        << m_err.toStdString();
}

TEST_F(ScenarioRunnerTest, GridsAreReadAsShownAndChosenLikeAnOperator) {
    EXPECT_EQ(run("login gestu kvarn-2026\n"
                  "menu mnu_fic_tiers_lr\n"
                  "expect-rows DBGrid1 6\n"
                  "expect-cell DBGrid1 4 re_code LR44\n"
                  "expect-cell DBGrid1 4 0 LR44\n"
                  "pick DBGrid1 4\n"
                  "expect-visible Frame1 yes\n"
                  "expect txt_re_ad1 \"9 quai des Chantiers\"\n"
                  "edit DBGrid1 4 Intitulé \"Ligue des Pays de la Loire\"\n"
                  "expect-cell DBGrid1 4 Intitulé \"Ligue des Pays de la Loire\"\n"),
              0)
        << m_err.toStdString();
}

TEST_F(ScenarioRunnerTest, EachKindOfMistakeFailsAtItsLine) {
    struct Case {
        const char* script;
        const char* report;
    };
    const Case cases[] = {
        {"expect Label1 Identifiant\n", "line 1: expect Label1 Identifiant: text is \"Login\""},
        {"login gestu faux\nexpect-enabled mnu_fic no\n",
         "line 2: expect-enabled mnu_fic no: unexpected message: Login-Mot de passe invalide"},
        {"login gestu faux\n", "end: unexpected message: Login-Mot de passe invalide"},
        {"menu mnu_fic_usb\n", "line 1: menu mnu_fic_usb: mnu_fic_usb is greyed"},
        {"click cmd_inexistant\n", "no control named cmd_inexistant"},
        {"login ligue06 azur-2026\nmenu mnu_facturation_li\n", "mnu_facturation_li is greyed"},
        {"sql jkv select count(*) from strparam => 4\n", "got \"3\""},
        {"expect-message \"Aucune lettre\"\n", "no message was shown"},
        {"answer yes\n", "end: an answer was never asked for"},
        {"frobnicate\n", "unknown statement"},
        {"pick DBGrid1\n", "line 1: pick DBGrid1: pick needs 2 argument(s)"},
        {"login gestu kvarn-2026\nmenu mnu_fic_tiers_lr\nexpect-cell DBGrid1 5 \"N° Ligue\" LR06\n",
         "line 3: expect-cell DBGrid1 5 \"N° Ligue\" LR06: cell is \"LR69\""},
        {"login gestu kvarn-2026\nmenu mnu_fic_tiers_lr\npick DBGrid1 6\n",
         "DBGrid1 has no row 6 (6 rows)"},
        {"login gestu kvarn-2026\nmenu mnu_fic_tiers_lr\nexpect-rows DBGrid1 7\n",
         "expect-rows DBGrid1 7: 6 rows"},
        // The card's own fields are in the grid's model but are no grid column.
        {"login gestu kvarn-2026\nmenu mnu_fic_tiers_lr\nexpect-cell DBGrid1 0 re_ad1 x\n",
         "DBGrid1 has no column re_ad1"},
        {"login gestu kvarn-2026\nmenu mnu_fic_tiers_lr\nexpect-cell DBGrid1 0 5 x\n",
         "DBGrid1 has no column 5"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(run(QString::fromUtf8(c.script)), 1) << c.script;
        EXPECT_TRUE(m_err.contains(QString::fromUtf8(c.report)))
            << c.script << " -> " << m_err.toStdString();
    }
}

TEST_F(ScenarioRunnerTest, StartUpFailureIsAMessageTheScenarioCanRead) {
    QTemporaryDir empty;
    QFile f(empty.filePath("s.scn"));
    f.open(QIODevice::WriteOnly);
    f.write("expect-message \"x\"\n");
    f.close();
    QString out;
    EXPECT_EQ(runProgram(ORVE_BIN, {"--home", empty.path(), "--scenario", f.fileName()}, "", &out,
                         &m_err),
              1);
    EXPECT_TRUE(m_err.contains("chemin_base.txt est introuvable")) << m_err.toStdString();
}
