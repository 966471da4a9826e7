#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUrl>
#include <map>

#include "app/Backup.h"
#include "app/InstallationSetup.h"
#include "app/SignIn.h"
#include "app/Startup.h"
#include "app/Users.h"
#include "invoicing/InvoiceRecords.h"
#include "reference/Clubs.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"
#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreCopy.h"
#include "support/TestInstall.h"
#include "support/TestServer.h"

using namespace orve;
using store::StoreCopy;

namespace {

const QDate kToday(2026, 11, 21);

QString basePathFile(const QString& home) {
    QFile f(QDir(home).filePath(app::kBasePathFile));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    return QString::fromUtf8(f.readLine()).trimmed();
}

void writeLine(const QString& path, const QString& line) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text));
    f.write((line + '\n').toUtf8());
}

// What the installation of a program folder holds, reached through its
// chemin_base.txt as the program reaches it.
QStringList dumpOf(const QString& home) {
    return StoreCopy::dump(shell::openSession(home, Clock::fixed(kToday))->store());
}

// Drops a database of the suite's server when the test ends, however it ends.
struct DatabaseGuard {
    QString address;
    ~DatabaseGuard() { test::dropDatabase(address); }
};

// A server of the test's own, to stop and start again under a connected store.
class PrivateServer {
  public:
    PrivateServer() {
        const QString out = script({QStringLiteral("start")});
        m_folder = out.trimmed().section('\n', -1);
    }
    ~PrivateServer() {
        if (!m_folder.isEmpty()) script({QStringLiteral("stop"), m_folder});
    }
    bool running() const { return !m_folder.isEmpty() && QDir(m_folder).exists(); }
    void halt() { script({QStringLiteral("halt"), m_folder}); }
    void resume() { script({QStringLiteral("resume"), m_folder}); }
    QString address(const QString& database) const {
        return QStringLiteral("postgresql://postgres@%1/%2")
            .arg(QString::fromUtf8(QUrl::toPercentEncoding(m_folder)), database);
    }
    QString createDatabase(const QString& database) const {
        const QString name = QStringLiteral("private-admin");
        QString error;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
            db.setHostName(m_folder);
            db.setUserName(QStringLiteral("postgres"));
            db.setDatabaseName(QStringLiteral("postgres"));
            if (!db.open()) {
                error = db.lastError().text();
            } else {
                QSqlQuery q(db);
                if (!q.exec(QStringLiteral("CREATE DATABASE ") + database))
                    error = q.lastError().text();
                q.finish();
                db.close();
            }
        }
        QSqlDatabase::removeDatabase(name);
        return error;
    }

  private:
    static QString script(const QStringList& args) {
        QProcess p;
        p.start(QStringLiteral("/bin/sh"),
                QStringList{QStringLiteral(ORVE_TESTS_DIR "/../scripts/pg-test-server.sh")} + args);
        p.waitForFinished(120000);
        return QString::fromUtf8(p.readAllStandardOutput());
    }
    QString m_folder;
};

}  // namespace

TEST(ServerStore, MigrationToTheServerAndBackKeepsEveryRow) {
    if (!test::onServer()) GTEST_SKIP();
    QTemporaryDir dir;
    const QString home = dir.filePath("inst");
    shell::createDemoInstallation(home, kToday);
    {
        // Values a copy could bend: nulls, empty and blank-padded texts, text
        // that looks like a number, quotes, line breaks, a large amount.
        auto session = shell::openSession(home, Clock::fixed(kToday));
        store::Store& s = session->store();
        s.insert("strcodification", {{"p_num", QVariant()}, {"p_valeur", ""}});
        s.insert("strcodification", {{"p_num", "  ZZ  "}, {"p_valeur", "007"}});
        s.insert(
            "strorganisateur",
            {{"o_genre", "C"}, {"o_code", "O'1"}, {"o_libelle", "Ligne 1\nLigne 2 ; « é » €"}});
        s.insert("strfacture", {{"f_num_facture", "99999999"}, {"f_montant", 900719925474099LL}});
    }
    const QStringList original = dumpOf(home);
    ASSERT_GT(original.size(), 100);

    const DatabaseGuard base{test::createDatabase()};
    const app::Migration there = app::migrateInstallation(home, base.address);
    EXPECT_EQ(there.target, base.address);
    EXPECT_EQ(basePathFile(home), base.address);
    EXPECT_EQ(there.rows, original.size());
    EXPECT_EQ(dumpOf(home), original);

    const QString back = dir.filePath("retour");
    const app::Migration again = app::migrateInstallation(home, back);
    EXPECT_EQ(basePathFile(home), back);
    EXPECT_EQ(again.rows, original.size());
    const QStringList final = dumpOf(home);
    EXPECT_EQ(final, original);
    EXPECT_TRUE(QFile::exists(QDir(back).filePath("bow_facture.db")));

    // Another installation cannot be poured into a database already in use.
    const QString other = dir.filePath("autre");
    shell::createDemoInstallation(other, kToday);
    const QStringList otherBefore = dumpOf(other);
    EXPECT_THROW(app::migrateInstallation(other, base.address), Refusal);
    EXPECT_EQ(basePathFile(other), "donnees/");
    EXPECT_EQ(dumpOf(other), otherBefore);
    // The server still holds the first installation's data, as they were.
    const QString reader = dir.filePath("lecteur");
    QDir().mkpath(QDir(reader).filePath("factures"));
    writeLine(QDir(reader).filePath(app::kBasePathFile), base.address);
    writeLine(QDir(reader).filePath(app::kInvoicePathFile), "factures/");
    EXPECT_EQ(dumpOf(reader), original);
}

TEST(ServerStore, BackupOfTheServerStartsAsAFolderInstallation) {
    if (!test::onServer()) GTEST_SKIP();
    test::TestInstall inst;
    auto session = inst.start();
    ASSERT_TRUE(session->store().address().shared());
    const QString made = invoicing::createInvoice(
        session->store(),
        [] {
            invoicing::InvoiceHeader h;
            h.dateText = "20/11/2026";
            h.nature = "DIV";
            h.competitionIndex = invoicing::kMiscIndex;
            h.billed.account = "CL13001";
            h.billed.name = "Bowling Club Phocéen";
            return h;
        }(),
        kToday);
    const QStringList onServer = StoreCopy::dump(session->store());

    QTemporaryDir usb;
    ASSERT_EQ(app::backupStore(session->store(), usb.path()).size(), 5);
    QTemporaryDir restored;
    writeLine(QDir(restored.path()).filePath(app::kBasePathFile), usb.path());
    writeLine(QDir(restored.path()).filePath(app::kInvoicePathFile), "factures/");
    QDir(restored.path()).mkpath("factures");

    auto copy = shell::openSession(restored.path(), Clock::fixed(kToday));
    EXPECT_FALSE(copy->store().address().shared());
    EXPECT_EQ(StoreCopy::dump(copy->store()), onServer);
    EXPECT_TRUE(app::signIn(*copy, "gestu", "kvarn-2026"));
    EXPECT_EQ(copy->user().league, "JKV");
    const auto invoices = [](store::Store& s) {
        QStringList out;
        for (const auto& r : s.select("SELECT ent_fact_no, ent_fact_lib FROM strentete "
                                      "ORDER BY CAST(ent_fact_no AS INTEGER)"))
            out << r.value(0).toString() + "|" + r.value(1).toString();
        return out;
    };
    EXPECT_EQ(invoices(copy->store()), invoices(session->store()));
    EXPECT_TRUE(invoices(copy->store()).join(',').contains(made + "|Bowling Club Phocéen"));
    // The copy numbers on from where the server was.
    EXPECT_EQ(invoicing::nextInvoiceNumber(copy->store()), QString::number(made.toLongLong() + 1));
}

TEST(ServerStore, AServerThatStopsMidInvoiceKeepsNothingOfItAndIsFoundAgain) {
    if (!test::onServer()) GTEST_SKIP();
    PrivateServer server;
    ASSERT_TRUE(server.running());
    ASSERT_EQ(server.createDatabase("orve_arret"), "");
    QTemporaryDir dir;
    const QString home = dir.filePath("inst");
    shell::createDemoInstallation(home, kToday, server.address("orve_arret"));
    auto session = shell::openSession(home, Clock::fixed(kToday));
    store::Store& s = session->store();
    const QString orphans =
        "SELECT count(*) FROM strentete WHERE NOT EXISTS (SELECT 1 FROM strfacture WHERE "
        "CAST(f_num_facture AS INTEGER) = CAST(ent_fact_no AS INTEGER))";
    const qint64 orphansBefore = s.scalar(orphans).toLongLong();
    const qint64 headersBefore = s.scalar("SELECT count(*) FROM strentete").toLongLong();
    const QString number = invoicing::nextInvoiceNumber(s);
    {
        store::Transaction tx(s);
        s.lockSeries(invoicing::kInvoiceSeries);
        s.insert("strentete", {{"ent_fact_no", number}, {"ent_fact_type", "F"}});
        server.halt();
        try {
            s.insert("strfacture", {{"f_num_facture", invoicing::paddedInvoiceNumber(number)},
                                    {"f_num_lig", "01"},
                                    {"f_libelle", "à définir"}});
            ADD_FAILURE() << "a line was written to a stopped server";
        } catch (const StoreError& e) {
            EXPECT_TRUE(e.message().contains(s.address().display())) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains("connexion")) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains("perdue")) << e.message().toStdString();
        }
        // While it is down, a statement says so instead of hanging or crashing.
        EXPECT_THROW(s.scalar("SELECT 1"), StoreError);
    }
    server.resume();
    EXPECT_FALSE(s.exists("SELECT 1 FROM strentete WHERE ent_fact_no = ?", {number}));
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strentete").toLongLong(), headersBefore);
    EXPECT_EQ(s.scalar(orphans).toLongLong(), orphansBefore);
    // The lost number is given again: the series has no hole.
    invoicing::InvoiceHeader h;
    h.dateText = "21/11/2026";
    h.billed.account = "CL13001";
    EXPECT_EQ(invoicing::createInvoice(s, h, kToday), number);

    // Restarted while nobody was working (overnight, say): the first action
    // after it finds the server again instead of failing once.
    server.halt();
    server.resume();
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strentete").toLongLong(), headersBefore + 1);
    EXPECT_EQ(invoicing::createInvoice(s, h, kToday), QString::number(number.toLongLong() + 1));

    // Reads of one moment (a backup, a copy) cannot go on from a new
    // connection, which would read another moment: they fail instead.
    {
        store::Snapshot moment(s);
        s.scalar("SELECT count(*) FROM strentete");
        server.halt();
        server.resume();
        EXPECT_THROW(s.scalar("SELECT count(*) FROM strfacture"), StoreError);
    }
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strentete").toLongLong(), headersBefore + 2);
}

TEST(ServerStore, QuotesAndSqlInTextAreKeptAsTyped) {
    if (!test::onServer()) GTEST_SKIP();
    test::TestInstall inst;
    auto session = inst.start();
    store::Store& s = session->store();
    std::map<store::File, QStringList> tables;
    for (store::File f : store::sharedFiles()) tables[f] = s.tables(f);
    const qint64 clubs = s.scalar("SELECT count(*) FROM strclub").toLongLong();
    const QStringList hostile{
        "'; drop table strclub; --", "L'Étoile d''Aix \"du Sud\" \\ ; $1 ? %s", "x' OR '1'='1",
        "$$; DROP TABLE strparam; $$", "Robert'); DROP SCHEMA tiers CASCADE;--"};

    for (const QString& text : hostile) {
        // A club's name, saved from its card.
        auto row = reference::clubs::find(s, "CL13001");
        ASSERT_TRUE(row);
        reference::clubs::ClubEdit edit;
        edit.card = reference::cardOf(*row);
        edit.card["club_nom"] = text;
        edit.district = row->value("club_district").toString();
        edit.account = row->value("club_compta").toString();
        reference::clubs::save(s, "CL13001", edit, kToday);
        EXPECT_EQ(reference::clubs::find(s, "CL13001")->value("club_nom").toString(), text);

        // A login, and signing in with it.
        const QString login = text.left(12) + QString::number(hostile.indexOf(text));
        app::addUser(s, login, "JKV", text, "assez-long-1");
        EXPECT_FALSE(app::signIn(*session, login, "faux-faux-faux"));
        EXPECT_TRUE(app::signIn(*session, login, "assez-long-1")) << login.toStdString();
        EXPECT_EQ(session->user().login, login);
        EXPECT_EQ(session->user().mail, text);

        // An invoice line's text.
        invoicing::InvoiceHeader h;
        h.dateText = "21/11/2026";
        h.billed.account = "CL13001";
        h.billed.name = text;
        const QString number = invoicing::createInvoice(s, h, kToday);
        invoicing::appendLine(s, number, {"99999999", text, 1, Money::fromCents(100)});
        const auto lines = invoicing::readLines(s, number);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[1].text, text);
        EXPECT_EQ(s.scalar("SELECT ent_fact_lib FROM strentete WHERE ent_fact_no = ?", {number})
                      .toString(),
                  text);
        EXPECT_EQ(s.scalar("SELECT count(*) FROM strfacture WHERE f_libelle = ?", {text}).toInt(),
                  1);
    }
    for (store::File f : store::sharedFiles())
        EXPECT_EQ(s.tables(f), tables[f]) << store::fileName(f).toStdString();
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strclub").toLongLong(), clubs);
    EXPECT_EQ(s.scalar("SELECT count(*) FROM strparam").toLongLong(), 3 + hostile.size());
}
