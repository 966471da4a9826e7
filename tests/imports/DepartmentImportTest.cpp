#include <gtest/gtest.h>

#include "ImportTestSupport.h"
#include "imports/DepartmentImport.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::imports;

namespace {

QStringList committees(const store::Store& s) {
    QStringList out;
    for (const auto& r :
         s.select("SELECT de_no, de_region, de_district FROM strdept ORDER BY de_no"))
        out << r.value(0).toString() + ' ' + r.value(1).toString() + ' ' + r.value(2).toString();
    return out;
}

}  // namespace

TEST(DepartmentImport, LoadsThenAppliesAndNumbersMatchWhateverTheirZeros) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    DepartmentImport import(s, QDate(2027, 2, 3));
    const QString file = QStringLiteral(
        "Alpes-Maritimes;6;LR44;D7\n"
        "  Var ; 083 ; lr11 ; D8  \n"
        "Paris;075;LR11;D1;reste;de la ligne\n"
        "Inconnu;99;LR06;D1\n"
        "une ligne sans point-virgule\n"
        "Ligue fausse;13;LR99;D1\n"
        "\n"
        "Gironde;0033;LR33;\n");
    const QStringList before = committees(s);
    EXPECT_EQ(import.load(test::importText(file)).read, 8);
    // Step 1 writes the work table only.
    EXPECT_EQ(committees(s), before);
    EXPECT_EQ(s.scratch().scalar("SELECT x_texte FROM strtxt ORDER BY rowid LIMIT 1 OFFSET 1"),
              "Var ; 083 ; lr11 ; D8");
    EXPECT_EQ(import.loadedLines(), 8);

    const ImportReport r = import.apply();
    EXPECT_EQ(r.read, 8);
    EXPECT_EQ(r.updated, 5);
    EXPECT_EQ(r.created, 0);
    QStringList reasons;
    for (const auto& l : r.lines()) reasons << QString::number(l.number) + ' ' + l.reason;
    // A line without ";" names no department; a league the installation
    // does not know is written all the same, as the file spells it.
    EXPECT_EQ(reasons, (QStringList{"4 Dept 099 inconnu", "5 Dept  inconnu", "7 ligne vide"}));
    const QStringList after = committees(s);
    EXPECT_TRUE(after.contains("006 LR44 D7"));
    // The rest of the line is the district.
    EXPECT_TRUE(after.contains("083 lr11 D8"));
    EXPECT_TRUE(after.contains("075 LR11 D1;reste;de la ligne"));
    EXPECT_TRUE(after.contains("033 LR33 "));
    EXPECT_TRUE(after.contains("013 LR99 D1"));
    EXPECT_EQ(after.size(), before.size());
    EXPECT_EQ(s.scalar("SELECT de_date_enreg FROM strdept WHERE de_no = '006'"), "03/02/2027");

    // Applied again: the same committees.
    import.apply();
    EXPECT_EQ(committees(s), after);

    // A new file replaces the lines of the previous one.
    import.load(test::importText("Var;83;LR06;D1\n"));
    EXPECT_EQ(import.loadedLines(), 1);
}

TEST(DepartmentImport, NothingLoadedIsRefusedAndACancelledApplyWritesNothing) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    DepartmentImport import(s, inst.today());
    import.load(test::importText(""));
    try {
        import.apply();
        FAIL() << "an empty work table was applied";
    } catch (const Refusal& r) {
        EXPECT_TRUE(r.message().startsWith("Aucune ligne à valider")) << r.message().toStdString();
    }
    const QStringList before = committees(s);
    import.load(test::importText("Var;83;LR11;D9\nParis;75;LR06;D9\n"));
    EXPECT_THROW(import.apply([](int done, int) { return done == 0; }), Refusal);
    EXPECT_EQ(committees(s), before);
}
