// The shared installation on a PostgreSQL server: connecting (and asking
// for a password the password file lacks), the server's dialect, and telling
// a lost connection from a refused statement.
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreInternals.h"

namespace orve::store {

using namespace internal;

namespace {

// SQLite's CAST(x AS INTEGER) takes the leading number of any text; the
// server's would refuse a text that is not one. orve_int() does what SQLite does.
QString serverDialect(const QString& sql) {
    static const QRegularExpression cast(
        QStringLiteral("CAST\\(\\s*([^()]*(?:\\([^()]*\\)[^()]*)*?)\\s+AS\\s+INTEGER\\s*\\)"),
        QRegularExpression::CaseInsensitiveOption);
    if (!sql.contains(QStringLiteral("AS INTEGER"), Qt::CaseInsensitive)) return sql;
    QString out = sql;
    out.replace(cast, QStringLiteral("orve_int(\\1)"));
    return out;
}

}  // namespace

// The schema of a shared store on the server ("jkv" rather than SQLite's "main").
QString internal::serverSchema(File f) {
    return f == File::Jkv ? QStringLiteral("jkv") : schemaName(f);
}

const QString internal::kSearchPath =
    QStringLiteral("SET search_path TO jkv, facture, tiers, mail, public");
const QString internal::kQuietNotices = QStringLiteral("SET client_min_messages TO warning");

bool internal::lostConnectionText(const QString& text) {
    return text.contains(QStringLiteral("server closed the connection"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("no connection to the server"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("terminating connection"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("connection to server"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("could not send data"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("could not receive data"), Qt::CaseInsensitive);
}

void Store::connect(const PasswordPrompt& askPassword) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_connection);
    if (!db.isValid())
        throw StoreError(
            QStringLiteral("Le pilote PostgreSQL de Qt n'est pas installé sur ce "
                           "poste (paquet libqt6sql6-psql)."));
    db.setHostName(m_address.host);
    db.setPort(m_address.port);
    db.setDatabaseName(m_address.database);
    db.setUserName(m_address.user);
    QString options = QStringLiteral("connect_timeout=10");
    if (!m_address.sslmode.isEmpty()) options += QStringLiteral(";sslmode=") + m_address.sslmode;
    db.setConnectOptions(options);
    for (;;) {
        if (!m_password.isEmpty()) db.setPassword(m_password);
        if (db.open()) break;
        const QSqlError error = db.lastError();
        // The password file (~/.pgpass) had none: ask once, keep it in memory only.
        if (askPassword && m_password.isEmpty() &&
            error.text().contains(QStringLiteral("password"), Qt::CaseInsensitive)) {
            m_password =
                askPassword(QStringLiteral("Mot de passe de %1 sur le serveur %2 :")
                                .arg(m_address.user.isEmpty() ? QStringLiteral("l'utilisateur")
                                                              : m_address.user,
                                     m_address.display()));
            if (!m_password.isEmpty()) continue;
        }
        throw StoreError(QStringLiteral("Impossible de joindre la base partagée %1 : %2")
                             .arg(m_address.display(), describeEngineError(error, true)));
    }
    QSqlQuery q(db);
    // The server's notices ("already exists, skipping") are not for the operator.
    if (!q.exec(kQuietNotices)) fail(kQuietNotices, q.lastError());
    if (!q.exec(kSearchPath)) fail(kSearchPath, q.lastError());
}

bool Store::connectionLost() const {
    if (!postgres()) return false;
    QSqlDatabase db = database();
    if (!db.isOpen()) return true;
    // A failed statement leaves the server's transaction aborted, and then any
    // ping fails too: only a connection-level failure means the server is gone.
    QSqlQuery ping(db);
    return !ping.exec(QStringLiteral("SELECT 1")) && lostConnectionText(ping.lastError().text());
}

QString Store::dialect(const QString& sql) const { return postgres() ? serverDialect(sql) : sql; }

}  // namespace orve::store
