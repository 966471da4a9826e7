#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "support/DemoInvoices.h"
#include "support/TestInstall.h"

using orve::test::runProgram;

namespace {
const QString kBatch = QStringLiteral(ORVE_BATCH);
const QStringList kToday{"ORVE_TODAY=21/11/2026"};
}  // namespace

TEST(Batch, InitUserSigninAndBackupFromAShell) {
    QTemporaryDir dir;
    const QString home = dir.filePath("inst");
    QString out, err;
    ASSERT_EQ(runProgram(kBatch,
                         {"init", home, "--code", "LR44", "--name", "Ligue des Pays de la Loire",
                          "--district", "D1"},
                         "", &out, &err, kToday),
              0)
        << err.toStdString();
    EXPECT_TRUE(out.contains("installation créée")) << out.toStdString();
    // Addresses and amounts: the data files are for their owner only.
    for (const QString& name : QDir(home + "/donnees").entryList({"bow_*.db"}, QDir::Files))
        EXPECT_EQ(QFile::permissions(home + "/donnees/" + name) & 0x0077, 0) << name.toStdString();
    // A second init on the same folder is refused, not silently redone.
    EXPECT_EQ(
        runProgram(kBatch, {"init", home, "--code", "X", "--name", "Y"}, "", &out, &err, kToday),
        1);
    EXPECT_TRUE(err.contains("contient déjà une installation")) << err.toStdString();

    ASSERT_EQ(runProgram(kBatch,
                         {"--home", home, "user", "add", "nantes", "--league", "LR44", "--mail",
                          "compta@ligue44.example"},
                         "s'ecret-44\n", &out, &err, kToday),
              0)
        << err.toStdString();
    EXPECT_EQ(
        runProgram(kBatch, {"--home", home, "signin", "nantes"}, "faux\n", &out, &err, kToday), 1);
    EXPECT_EQ(err.trimmed(), "Login-Mot de passe invalide");
    ASSERT_EQ(runProgram(kBatch, {"--home", home, "signin", "nantes"}, "s'ecret-44\n", &out, &err,
                         kToday),
              0);
    EXPECT_TRUE(out.contains("login : nantes\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("ligue : LR44\n"));
    EXPECT_TRUE(out.contains("mail : compta@ligue44.example\n"));
    EXPECT_TRUE(out.contains("nom de l'installation : Ligue des Pays de la Loire\n"));
    EXPECT_TRUE(out.contains("début de l'exercice : 20260901\n"));

    ASSERT_EQ(runProgram(kBatch, {"--home", home, "user", "passwd", "nantes"}, "neuf-2027!\n", &out,
                         &err, kToday),
              0);
    EXPECT_EQ(runProgram(kBatch, {"--home", home, "signin", "nantes"}, "s'ecret-44\n", &out, &err,
                         kToday),
              1);
    EXPECT_EQ(runProgram(kBatch, {"--home", home, "signin", "nantes"}, "neuf-2027!\n", &out, &err,
                         kToday),
              0);

    const QString usb = dir.filePath("usb");
    QDir().mkpath(usb);
    ASSERT_EQ(runProgram(kBatch, {"backup", usb}, "", &out, &err,
                         kToday + QStringList{"ORVE_HOME=" + home}),
              0)
        << err.toStdString();
    EXPECT_EQ(QDir(usb).entryList({"*.db"}, QDir::Files).size(), 5);
    EXPECT_TRUE(out.trimmed().endsWith("sauvegarde terminée"));

    // Without path files the command says which file is missing.
    EXPECT_EQ(runProgram(kBatch, {"--home", dir.filePath("vide"), "signin", "x"}, "y\n", &out, &err,
                         kToday),
              1);
    EXPECT_TRUE(err.contains("chemin_base.txt")) << err.toStdString();

    // Passwords too short to mean anything are refused.
    EXPECT_EQ(runProgram(kBatch, {"--home", home, "user", "add", "court", "--league", "LR44"},
                         "1234567\n", &out, &err, kToday),
              1);
    EXPECT_TRUE(err.contains("au moins 8 caractères")) << err.toStdString();

    // A lost invoice file stops the command with one French line and nothing
    // else on the terminal; the file is not made again.
    const QString facture = QDir(home).filePath("donnees/bow_facture.db");
    ASSERT_TRUE(QFile::remove(facture));
    EXPECT_EQ(runProgram(kBatch, {"--home", home, "signin", "nantes"}, "neuf-2027!\n", &out, &err,
                         kToday),
              1);
    EXPECT_EQ(err.trimmed(), QString("Le fichier de données bow_facture.db est introuvable (ou "
                                     "vide) dans %1. Restaurez-le depuis une sauvegarde.")
                                 .arg(QDir(home).filePath("donnees")));
    EXPECT_FALSE(QFile::exists(facture));
}

TEST(Batch, DemoInstallationPrintsItsUsers) {
    QTemporaryDir dir;
    QString out, err;
    ASSERT_EQ(runProgram(kBatch, {"init-demo", dir.filePath("demo")}, "", &out, &err, kToday), 0)
        << err.toStdString();
    // Every word of it French: the operators' levels too.
    EXPECT_TRUE(out.contains("utilisateur gestu (national, ligue JKV)")) << out.toStdString();
    EXPECT_TRUE(out.contains("utilisateur ligue06 (ligue, ligue LR06)"));
    EXPECT_TRUE(out.contains("utilisateur CD13 (comité, ligue 13)"));
    EXPECT_FALSE(out.contains("league") || out.contains("committee"));
    EXPECT_EQ(runProgram(kBatch, {"--home", dir.filePath("demo"), "signin", "CD13"},
                         "provence-2026\n", &out, &err, kToday),
              0);
    EXPECT_TRUE(out.contains("ligue : 13\n"));
}

TEST(Batch, EachCommandHasTheOperatorsRightsAsTheMenuGivesThem) {
    orve::test::TestInstall inst;
    const QString home = inst.home();
    QString national;
    {
        auto s = inst.start();
        national = s->store()
                       .scalar(
                           "SELECT c_index FROM strcompetition WHERE c_intitule = 'Challenge "
                           "fédéral' AND index_reference = '00000000'")
                       .toString();
    }
    QString out, err;
    const auto run = [&](const QStringList& args, const QString& input = {}) {
        return runProgram(kBatch, QStringList{"--home", home} + args, input, &out, &err, kToday);
    };
    // Writing business data needs an operator.
    EXPECT_EQ(run({"competition", "calculate", national}), 1);
    EXPECT_TRUE(err.contains("indiquez l'opérateur avec --as LOGIN")) << err.toStdString();
    // What the menu refuses a committee or a league, the command refuses.
    const QString denied = "n'a pas accès à";
    for (const QStringList& args :
         {QStringList{"--as", "CD13", "cdc", "calculate"},
          QStringList{"--as", "CD13", "import", "clubs", "/nulle/part.csv"},
          QStringList{"--as", "ligue06", "outil", "2", "--oui"},
          QStringList{"--as", "ligue06", "outil", "2"},
          QStringList{"--as", "ligue06", "saison", "2028"},
          QStringList{"--as", "ligue06", "renumeroter", "2028000001"},
          QStringList{"--as", "CD13", "user", "add", "pirate", "--league", "JKV"}}) {
        EXPECT_EQ(run(args, "mot-de-passe-long\n"), 1) << args.join(' ').toStdString();
        EXPECT_TRUE(err.contains(denied)) << args.join(' ').toStdString() << err.toStdString();
    }
    // The windows' own rules: another level's competition, another level's invoice.
    EXPECT_EQ(run({"--as", "CD13", "competition", "calculate", national}), 1);
    EXPECT_TRUE(err.contains("est celle du niveau national")) << err.toStdString();
    EXPECT_EQ(run({"--as", "CD13", "avoir", orve::test::kLeagueInvoice}), 1);
    EXPECT_TRUE(err.contains("est une facture du niveau national")) << err.toStdString();
    // A read needs no operator; the national level may do all of it.
    EXPECT_EQ(run({"outil", "2"}), 0) << err.toStdString();
    EXPECT_EQ(run({"--as", "gestu", "competition", "calculate", national}), 0) << err.toStdString();
    EXPECT_EQ(run({"--as", "gestu", "avoir", orve::test::kLeagueInvoice}), 0) << err.toStdString();
    auto s = inst.start();
    EXPECT_FALSE(s->store().exists("SELECT 1 FROM strparam WHERE par_login = 'pirate'"));
}
