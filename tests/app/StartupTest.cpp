#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/Startup.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"
#include "support/TestServer.h"

using namespace orve;
using namespace orve::app;

namespace {
void writeFile(const QString& path, const QByteArray& text) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(text);
}

QString refusalOf(const QString& home) {
    try {
        startSession(home, Clock::fixed(QDate(2026, 11, 21)));
    } catch (const std::exception& e) {
        return describeError(e);
    }
    return {};
}
}  // namespace

TEST(Startup, ReadsPathFilesAndInstallation) {
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto s = inst.start();
    if (test::onServer()) {
        // The workstation keeps its scratch file at home; the data are on the server.
        EXPECT_EQ(s->dataFolder(), inst.home());
        EXPECT_TRUE(storeCaption(s->store().address()).startsWith("Base partagée : "));
        EXPECT_TRUE(QFile::exists(QDir(inst.home()).filePath("bow_tri.db")));
    } else {
        EXPECT_EQ(s->dataFolder(), QDir(inst.home()).filePath("donnees"));
        EXPECT_EQ(storeCaption(s->store().address()), "");
    }
    EXPECT_EQ(s->invoiceFolder(), QDir(inst.home()).filePath("factures"));
    EXPECT_EQ(s->installation().code, "TST");
    EXPECT_EQ(s->installation().district, "D1");
    EXPECT_EQ(s->installation().financialYearStart, "20260901");
    EXPECT_EQ(s->installation().financialYearEnd, "20270831");
    EXPECT_EQ(windowTitle(s->installation()),
              "ORVE : Logiciel de facturation Bowling -----  Avec ORVE, plus de soucis  "
              "---Installation de test");
}

TEST(Startup, PathsAreJoinedWhateverTheirSeparators) {
    EXPECT_EQ(resolveFolder("/opt/orve", "donnees\\"), "/opt/orve/donnees");
    EXPECT_EQ(resolveFolder("/opt/orve", "  donnees/sous  "), "/opt/orve/donnees/sous");
    EXPECT_EQ(resolveFolder("/opt/orve", "/srv/data/"), "/srv/data");
    EXPECT_EQ(resolveFolder("/opt/orve", "\\srv\\data"), "/srv/data");
    EXPECT_EQ(resolveProgramFolder("/x/y/", "/usr/bin"), "/x/y");
    EXPECT_EQ(resolveProgramFolder("", "/usr/bin"),
              qEnvironmentVariableIsEmpty("ORVE_HOME")
                  ? "/usr/bin"
                  : QDir(qEnvironmentVariable("ORVE_HOME")).absolutePath());
}

TEST(Startup, BadPathFilesAndEmptySettingsAreClearMessages) {
    ORVE_SQLITE_FILES_ONLY();
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    const QString base = QDir(inst.home()).filePath("chemin_base.txt");
    const QString invoices = QDir(inst.home()).filePath("chemin_facture.txt");

    QFile::remove(base);
    QString m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("chemin_base.txt") && m.contains("introuvable")) << m.toStdString();

    writeFile(base, "   \n");
    m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("chemin_base.txt") && m.contains("vide")) << m.toStdString();

    writeFile(base, "ailleurs/\n");
    m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("n'existe pas") && m.contains("chemin_base.txt")) << m.toStdString();

    // A garbage line is echoed, not in full.
    writeFile(base, QByteArray(100000, 'x'));
    m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("n'existe pas")) << m.left(300).toStdString();
    EXPECT_LT(m.size(), 600);

    writeFile(base, "donnees\\\r\n");
    QFile::remove(invoices);
    m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("chemin_facture.txt")) << m.toStdString();

    writeFile(invoices, "factures");
    EXPECT_EQ(refusalOf(inst.home()), "");
    {
        auto s = inst.start();
        s->store().exec("DELETE FROM strspecif");
    }
    m = refusalOf(inst.home());
    EXPECT_TRUE(m.contains("strspecif") && m.contains("vide")) << m.toStdString();
}
