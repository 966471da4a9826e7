#include <gtest/gtest.h>

#include <QDir>

#include "support/TestInstall.h"

using orve::test::runProgram;

namespace {
const QString kBatch = QStringLiteral(ORVE_BATCH);
const QStringList kToday{"ORVE_TODAY=21/11/2026"};
}  // namespace

TEST(ToolsBatch, SeasonRenumberingAndToolsFromAShell) {
    orve::test::TestInstall inst;
    const QString home = inst.home();
    QString out, err;
    auto batch = [&](const QStringList& args) {
        return runProgram(kBatch, QStringList{"--home", home, "--as", "gestu"} + args, "", &out,
                          &err, kToday);
    };
    auto count = [&](const QString& sql) {
        auto session = inst.start();
        return session->store().scalar(sql).toInt();
    };

    EXPECT_EQ(batch({"saison", "2018"}), 1);
    EXPECT_EQ(err.trimmed(), "année incorrecte !!!");
    ASSERT_EQ(batch({"saison", "2028"}), 0) << err.toStdString();
    EXPECT_EQ(out.trimmed(),
              "Traitement termine\nSaison 2028 : 4 pseudo-compétitions créées, aucune n'existait "
              "déjà.");

    EXPECT_EQ(batch({"renumeroter", "2027O00001"}), 1);
    EXPECT_TRUE(err.contains("chiffres seulement")) << err.toStdString();
    ASSERT_EQ(batch({"renumeroter", "2028000001"}), 0) << err.toStdString();
    EXPECT_TRUE(
        out.endsWith("Traitement termine\nLa prochaine facture portera le N° "
                     "2028000001.\n"))
        << out.toStdString();

    // Without --oui a tool only says what it would do.
    ASSERT_EQ(batch({"outil", "7"}), 0) << err.toStdString();
    EXPECT_EQ(out,
              "mnu_outils_7 « raz des licenciés »\nCet outil va effacer tous les licenciés "
              "(16 enregistrements).\nRien n'a été modifié : ajoutez --oui pour l'exécuter.\n");
    EXPECT_EQ(count("SELECT COUNT(*) FROM strlicence"), 16);
    EXPECT_FALSE(QFileInfo::exists(home + "/sauvegardes"));
    ASSERT_EQ(batch({"outil", "7", "--oui"}), 0) << err.toStdString();
    EXPECT_TRUE(
        out.contains("effacement des licences terminé\nDonnées sauvegardées avant l'outil "
                     "dans : "))
        << out.toStdString();
    EXPECT_EQ(count("SELECT COUNT(*) FROM strlicence"), 0);
    EXPECT_EQ(QDir(home + "/sauvegardes").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    ASSERT_EQ(batch({"outil", "7", "--oui"}), 0);
    EXPECT_TRUE(out.endsWith("Aucun licencié à effacer\n")) << out.toStdString();

    EXPECT_EQ(batch({"outil", "17"}), 1);
    EXPECT_TRUE(err.startsWith("Outil inconnu : 17.")) << err.toStdString();
    ASSERT_EQ(batch({"verifier"}), 0) << out.toStdString();
}
