#include <gtest/gtest.h>

#include "ImportTestSupport.h"
#include "imports/PrivateImport.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::imports;

namespace {

QString line(const QString& season, const QString& number, const QString& date,
             const QString& organiser, const QString& players = "24",
             const QString& fixed = "80,00") {
    return QStringList{season,           "TP",    "13",  number,      "BOW0131", date,
                       "Open " + number, players, fixed, "Marseille", "",        organiser}
               .join(';') +
           '\n';
}

QString column(const store::Store& s, const QString& index, const QString& field) {
    return s
        .scalar(QStringLiteral("SELECT %1 FROM strcompetition WHERE c_index = ?").arg(field),
                {index})
        .toString();
}

}  // namespace

TEST(PrivateImport, NumberingContinuesAfterTheHighestIndexOfEachPrefix) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    s.insert("strcompetition", {{"c_index", "7PR00041"}, {"c_nature", "PRIVE"}});
    s.insert("strcompetition", {{"c_index", "7PR0009"}, {"c_nature", "PRIVE"}});
    s.insert("strcompetition", {{"c_index", "8FA00000"}, {"c_nature", "LIC"}});
    s.insert("strcompetition", {{"c_index", "7FD00300"}, {"c_nature", "CDCND"}});
    PrivateImport import(s);
    import.check(test::importText(line("2027", "1", "05/03/27", "CL13001 Bowling Club Phocéen") +
                                  line("2026", "2", "05/03/2026", "CD13 - Comité des Bouches") +
                                  line("2027", "3", "5/3/2027", "LR06 Ligue") +
                                  line("2027", "4", "05/03/27", "Mairie de Cassis", "", "") +
                                  line("2027", "5", "05/03/27", "en plus;CL13003 Strike")));
    const ImportReport r = import.write(false);
    EXPECT_EQ(r.created, 5);
    EXPECT_EQ(column(s, "7PR00042", "c_cod2"), "00001");
    EXPECT_EQ(column(s, "6PR00001", "c_cod2"), "00002");
    EXPECT_EQ(column(s, "7PR00043", "c_cod2"), "00003");
    EXPECT_EQ(column(s, "7PR00044", "c_cod2"), "00004");

    // dd/mm/yy and dd/mm/yyyy are the same day.
    EXPECT_EQ(column(s, "7PR00042", "c_date_finale"), "05/03/2027");
    EXPECT_EQ(column(s, "7PR00042", "c_tri_finale"), "20270305");
    EXPECT_EQ(column(s, "7PR00043", "c_date_finale"), "05/03/2027");
    EXPECT_EQ(PrivateImport::finalDate("05/03/27"), PrivateImport::finalDate("05/03/2027"));
    EXPECT_EQ(PrivateImport::finalDate("31/12/1999"), QDate(2099, 12, 31));

    EXPECT_EQ(column(s, "7PR00042", "c_saison"), "2027");
    EXPECT_EQ(column(s, "7PR00042", "c_type"), "PR");
    EXPECT_EQ(column(s, "7PR00042", "c_nature"), "PRIVE");
    EXPECT_EQ(column(s, "7PR00042", "c_cod1"), "TP13");
    EXPECT_EQ(column(s, "7PR00042", "c_intitule"), "Open 1");
    EXPECT_EQ(column(s, "7PR00042", "c_formule"), "00");
    EXPECT_EQ(column(s, "7PR00042", "c_date_enreg"), "27/11/2017");
    EXPECT_EQ(column(s, "7PR00042", "c_facture"), " ");
    EXPECT_EQ(column(s, "7PR00042", "index_reference"), "00000000");
    // The organiser: its kind, and its code as the party to invoice.
    EXPECT_EQ(column(s, "7PR00042", "c_organisateur"), "C");
    EXPECT_EQ(column(s, "7PR00042", "c_codification"), "CL13001");
    EXPECT_EQ(column(s, "7PR00042", "c_nom_organisateur"), "Bowling Club Phocéen");
    EXPECT_EQ(column(s, "6PR00001", "c_organisateur"), "D");
    EXPECT_EQ(column(s, "6PR00001", "c_codification"), "CD13");
    EXPECT_EQ(column(s, "6PR00001", "c_nom_organisateur"), "Comité des Bouches");
    EXPECT_EQ(column(s, "7PR00043", "c_organisateur"), "R");
    EXPECT_EQ(column(s, "7PR00044", "c_organisateur"), " ");
    EXPECT_EQ(column(s, "7PR00044", "c_codification"), " ");
    // A line with a field too many: the organiser is still after its last ";".
    EXPECT_EQ(column(s, "7PR00045", "c_organisateur"), "C");
    EXPECT_EQ(column(s, "7PR00045", "c_codification"), "CL13003");
    // Players and the fixed part (in cents) for the private invoicing.
    EXPECT_EQ(column(s, "7PR00042", "c_nb_equipe_finale"), "24");
    EXPECT_EQ(column(s, "7PR00042", "c_nb_equipe_eliminatoire"), "8000");
    EXPECT_EQ(column(s, "7PR00044", "c_nb_equipe_finale"), "0");

    // A later file goes on from there.
    PrivateImport later(s);
    later.check(test::importText(line("2027", "9", "01/06/27", "CL13002 Aix")));
    later.write(false);
    EXPECT_EQ(column(s, "7PR00046", "c_cod2"), "00009");
}

TEST(PrivateImport, BadLinesAreNamedAndDuplicatesAsked) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    const QString good = line("2027", "12", "14/02/27", "CL13001 Phocéen");
    PrivateImport first(s);
    first.check(test::importText(good));
    first.write(false);

    PrivateImport import(s);
    import.check(test::importText(
        good + line("27", "1", "14/02/27", "CL13001") + line("2027", "", "14/02/27", "CL13001") +
        line("2027", "1a", "14/02/27", "CL13001") + line("2027", "2", "31/02/27", "CL13001") +
        line("2027", "3", "2027-02-14", "CL13001") +
        line("2027", "4", "14/02/27", "CL13001", "vingt") +
        line("2027", "5", "14/02/27", "CL13001", "20", "-5,00") + "2027;TP;13;6\n" +
        line("2027", "7", "14/02/27", "CL13001")));
    QStringList reasons;
    for (const auto& l : import.report().lines())
        reasons << QString::number(l.number) + ' ' + l.reason;
    EXPECT_EQ(
        reasons,
        (QStringList{
            "2 saison « 27 » n'est pas une année", "3 numéro du tournoi absent",
            "4 numéro du tournoi « 1a » non numérique", "5 date de la finale « 31/02/27 » invalide",
            "6 date de la finale « 2027-02-14 » invalide",
            "7 nombre de joueurs « vingt » non numérique",
            "8 partie fixe « -5,00 » n'est pas un montant", "9 numéro du tournoi absent"}));
    EXPECT_EQ(import.duplicates(), 1);
    const int before = s.scalar("SELECT count(*) FROM strcompetition").toInt();
    EXPECT_EQ(import.write(false).created, 1);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strcompetition").toInt(), before + 1);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strcompetition WHERE c_cod2 = '00012'").toInt(), 1);
}

TEST(PrivateImport, ACancelledImportKeepsNoneOfTheRowsAlreadyWritten) {
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    QString file;
    for (int i = 1; i <= 1200; ++i) file += line("2027", QString::number(i), "14/02/27", "CL13001");
    const QStringList before = test::tableRows(s, "strcompetition", "c_index");
    PrivateImport import(s);
    import.check(test::importText(file));
    int furthest = 0;
    // Stopped once 1,000 rows are written.
    EXPECT_THROW(import.write(false,
                              [&](int done, int) {
                                  furthest = std::max(furthest, done);
                                  return done < 1000;
                              }),
                 Refusal);
    EXPECT_EQ(furthest, 1000);
    EXPECT_EQ(test::tableRows(s, "strcompetition", "c_index"), before);
    // Cancelled while the lines are checked, the same.
    PrivateImport checking(s);
    EXPECT_THROW(checking.check(test::importText(file), [](int, int) { return false; }), Refusal);
}
