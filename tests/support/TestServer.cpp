#include "support/TestServer.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <atomic>
#include <stdexcept>

namespace orve::test {

namespace {

QString socketFolder() { return qEnvironmentVariable("ORVE_TEST_PG_SOCKET"); }

QString hostPart() { return QString::fromUtf8(QUrl::toPercentEncoding(socketFolder())); }

}  // namespace

bool onServer() { return qEnvironmentVariable("ORVE_TEST_STORE") == QStringLiteral("postgres"); }

void adminExec(const QString& sql) {
    static std::atomic<int> counter{0};
    const QString name = QStringLiteral("test-admin-%1").arg(++counter);
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(socketFolder());
        db.setUserName(QStringLiteral("postgres"));
        db.setDatabaseName(QStringLiteral("postgres"));
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            if (!q.exec(sql)) error = q.lastError().text();
            q.finish();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!error.isEmpty())
        throw std::runtime_error(("test server: " + sql + ": " + error).toStdString());
}

QString createDatabase() {
    static std::atomic<int> counter{0};
    const QString database =
        QStringLiteral("orve_t%1_%2").arg(QCoreApplication::applicationPid()).arg(++counter);
    adminExec(QStringLiteral("CREATE DATABASE %1").arg(database));
    return QStringLiteral("postgresql://postgres@%1/%2").arg(hostPart(), database);
}

void dropDatabase(const QString& address) {
    const QString database = address.section('/', -1).section('?', 0, 0);
    try {
        adminExec(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(database));
    } catch (const std::exception&) {
        // A database left behind goes with the server at the end of the run.
    }
}

}  // namespace orve::test
