// The schema of each engine, from the versioned scripts compiled into the
// program: applied to a new installation, and upgraded at open.
#include <QDir>
#include <QFile>

#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreInternals.h"

// Resources compiled into a static library must be pulled in by name.
static void initSchemaResources() {
    Q_INIT_RESOURCE(schema);
    Q_INIT_RESOURCE(resources);
}

namespace orve::store {

using namespace internal;

namespace {

QStringList statementsOf(const QString& script) {
    QString body;
    for (const QString& line : script.split('\n')) {
        if (line.trimmed().startsWith(QStringLiteral("--"))) continue;
        body += line + '\n';
    }
    QStringList out;
    for (const QString& s : body.split(';')) {
        if (!s.trimmed().isEmpty()) out << s.trimmed();
    }
    return out;
}

// A schema script shipped in the program; `owner` names the file or schema
// it upgrades in the message.
QString scriptText(const QString& dir, const QString& script, const QString& owner) {
    QFile file(dir + '/' + script);
    if (!file.open(QIODevice::ReadOnly))
        throw StoreError(QStringLiteral("Le schéma %1 de %2 est illisible : %3")
                             .arg(script, owner, file.errorString()));
    return QString::fromUtf8(file.readAll());
}

}  // namespace

void prepareFile(const QString& dataFolder, File f) {
    initSchemaResources();
    const QString path = QDir(dataFolder).filePath(fileName(f));
    const QString name = nextConnectionName(QStringLiteral("schema"));
    try {
        QSqlDatabase db = openConnection(path, name);
        const QString dir = QStringLiteral(":/schema/sqlite/%1")
                                .arg(schemaName(f) == QStringLiteral("main") ? QStringLiteral("jkv")
                                                                             : schemaName(f));
        const QStringList scripts =
            QDir(dir).entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name);
        int version = 0;
        {
            QSqlQuery v = runIn(db, path, QStringLiteral("PRAGMA user_version"));
            if (v.next()) version = v.value(0).toInt();
            if (v.lastError().isValid()) failIn(path, QStringLiteral("PRAGMA"), v.lastError());
        }
        for (const QString& script : scripts) {
            const int number = script.section('_', 0, 0).toInt();
            if (number <= version) continue;
            const QString text = scriptText(dir, script, fileName(f));
            if (!db.transaction()) failIn(path, QStringLiteral("BEGIN"), db.lastError());
            try {
                for (const QString& statement : statementsOf(text)) runIn(db, path, statement);
                runIn(db, path, QStringLiteral("PRAGMA user_version = %1").arg(number));
            } catch (...) {
                db.rollback();
                throw;
            }
            if (!db.commit()) {
                const QSqlError error = db.lastError();
                db.rollback();
                failIn(path, QStringLiteral("COMMIT"), error);
            }
        }
        runIn(db, path, QStringLiteral("PRAGMA journal_mode=WAL"));
        db.close();
    } catch (...) {
        QSqlDatabase::removeDatabase(name);
        throw;
    }
    QSqlDatabase::removeDatabase(name);
}

void Store::prepareServer(bool creating) {
    initSchemaResources();
    const bool present = exists(
        QStringLiteral("SELECT 1 FROM information_schema.schemata WHERE schema_name = 'jkv'"));
    if (creating && present &&
        exists(QStringLiteral("SELECT 1 FROM information_schema.tables WHERE table_schema IN "
                              "('jkv', 'facture', 'tiers', 'mail')")))
        throw Refusal(QStringLiteral("La base partagée %1 contient déjà une installation ORVE : "
                                     "elle n'a pas été modifiée.")
                          .arg(m_address.display()));
    if (!creating && !present)
        throw StoreError(QStringLiteral("La base partagée %1 ne contient pas d'installation ORVE. "
                                        "Créez-la avec « orve-batch init DOSSIER --base %2 ».")
                             .arg(m_address.display(), m_address.text()));
    for (File f : sharedFiles()) {
        const QString schema = serverSchema(f);
        const QString dir = QStringLiteral(":/schema/postgres/%1").arg(schema);
        const QStringList scripts =
            QDir(dir).entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name);
        // Most starts find the schema up to date: no lock, no schema statement.
        if (!creating && !scripts.isEmpty() &&
            exists(QStringLiteral("SELECT 1 FROM %1.orve_version HAVING max(version) >= ?")
                       .arg(schema),
                   {scripts.last().section('_', 0, 0).toInt()}))
            continue;
        Transaction tx(*this);
        // Two workstations starting at once upgrade the schema one after the other.
        lockSeries(QStringLiteral("orve-schema"));
        exec(QStringLiteral("CREATE SCHEMA IF NOT EXISTS %1").arg(schema));
        exec(QStringLiteral("CREATE TABLE IF NOT EXISTS %1.orve_version (version integer NOT NULL)")
                 .arg(schema));
        const int version =
            scalar(
                QStringLiteral("SELECT COALESCE(max(version), 0) FROM %1.orve_version").arg(schema))
                .toInt();
        for (const QString& script : scripts) {
            const int number = script.section('_', 0, 0).toInt();
            if (number <= version) continue;
            const QString text = scriptText(dir, script, schema);
            exec(QStringLiteral("SET LOCAL search_path TO %1, public").arg(schema));
            for (const QString& statement : statementsOf(text)) exec(statement);
            exec(QStringLiteral("INSERT INTO %1.orve_version (version) VALUES (?)").arg(schema),
                 {number});
        }
        tx.commit();
    }
    exec(kSearchPath);
}

}  // namespace orve::store
