#include "store/Store.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <atomic>

#include "store/Condition.h"
#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"

// Resources compiled into a static library must be pulled in by name.
static void initSchemaResources() {
    Q_INIT_RESOURCE(schema);
    Q_INIT_RESOURCE(resources);
}

namespace orve::store {

QString trimmedText(const Row& row, const char* column) {
    return row.value(QLatin1String(column)).toString().trimmed();
}

namespace {

std::atomic<int> g_connectionCounter{0};

QString nextConnectionName(const QString& prefix) {
    return QStringLiteral("orve-%1-%2").arg(prefix).arg(++g_connectionCounter);
}

QString operationOf(const QString& sql) {
    const QString verb = sql.trimmed().section(' ', 0, 0).toLower();
    if (verb == QStringLiteral("select")) return QStringLiteral("lecture");
    if (verb == QStringLiteral("insert")) return QStringLiteral("ajout");
    if (verb == QStringLiteral("update")) return QStringLiteral("modification");
    if (verb == QStringLiteral("delete")) return QStringLiteral("suppression");
    if (verb == QStringLiteral("begin") || verb == QStringLiteral("savepoint"))
        return QStringLiteral("début de l'opération");
    if (verb == QStringLiteral("commit") || verb == QStringLiteral("release"))
        return QStringLiteral("validation de l'opération");
    if (verb == QStringLiteral("rollback")) return QStringLiteral("annulation de l'opération");
    return QStringLiteral("opération");
}

// The first table a statement names, with its schema when it has one.
QString tableOf(const QString& sql) {
    static const QRegularExpression tableRe(
        QStringLiteral("\\b(?:from|into|update|table|join)\\s+([A-Za-z_][A-Za-z0-9_.]*)"),
        QRegularExpression::CaseInsensitiveOption);
    const auto m = tableRe.match(sql);
    return m.hasMatch() ? m.captured(1) : QString();
}

// A statement run while preparing or opening one file, where that file is
// known whatever the statement says.
[[noreturn]] void failIn(const QString& path, const QString& sql, const QSqlError& error) {
    throw StoreError(QStringLiteral("Erreur de la base de données %1 (%2) : %3")
                         .arg(QDir::toNativeSeparators(path), operationOf(sql),
                              describeEngineError(error, false, QFileInfo(path).absolutePath())));
}

// The schema of a shared store on the server ("jkv" rather than SQLite's "main").
QString serverSchema(File f) { return f == File::Jkv ? QStringLiteral("jkv") : schemaName(f); }

const QString kSearchPath = QStringLiteral("SET search_path TO jkv, facture, tiers, mail, public");
const QString kQuietNotices = QStringLiteral("SET client_min_messages TO warning");

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

bool lostConnectionText(const QString& text) {
    return text.contains(QStringLiteral("server closed the connection"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("no connection to the server"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("terminating connection"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("connection to server"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("could not send data"), Qt::CaseInsensitive) ||
           text.contains(QStringLiteral("could not receive data"), Qt::CaseInsensitive);
}

// Used where no Store exists yet: errors are those of the file at `path`.
QSqlQuery runIn(const QSqlDatabase& db, const QString& path, const QString& sql,
                const Params& params = {}) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql)) failIn(path, sql, q.lastError());
    for (const auto& p : params) q.addBindValue(p);
    if (!q.exec()) failIn(path, sql, q.lastError());
    return q;
}

// orve_pli(text): the text folded as caselessText folds it. SQL's upper()
// leaves accented letters alone, and nesting one replace() per letter
// overflows SQLite's parser.
void caselessFunction(sqlite3_context* context, int, sqlite3_value** args) {
    if (sqlite3_value_type(args[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto* text = static_cast<const char16_t*>(sqlite3_value_text16(args[0]));
    const int bytes = sqlite3_value_bytes16(args[0]);
    const QString folded = caselessText(QString::fromUtf16(text, bytes / 2));
    sqlite3_result_text16(context, folded.utf16(), static_cast<int>(folded.size() * 2),
                          SQLITE_TRANSIENT);
}

// Registered on the connection when Qt's driver uses the same SQLite library
// as ours (Debian's Qt does); another library's connection is not ours to touch.
void addFunctions(const QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return;
    sqlite3* connection = *static_cast<sqlite3* const*>(handle.constData());
    QSqlQuery q(db);
    if (!connection || !q.exec(QStringLiteral("SELECT sqlite_source_id()")) || !q.next() ||
        q.value(0).toString() != QString::fromLatin1(sqlite3_sourceid()))
        return;
    sqlite3_create_function_v2(connection, "orve_pli", 1, SQLITE_UTF16 | SQLITE_DETERMINISTIC,
                               nullptr, caselessFunction, nullptr, nullptr, nullptr);
}

QSqlDatabase openConnection(const QString& path, const QString& name) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        const QString text = describeEngineError(db.lastError());
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw StoreError(QStringLiteral("Impossible d'ouvrir la base de données %1 : %2")
                             .arg(QDir::toNativeSeparators(path), text));
    }
    addFunctions(db);
    return db;
}

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

}  // namespace

QString fileName(File f) {
    switch (f) {
        case File::Jkv:
            return QStringLiteral("bow_jkv.db");
        case File::Facture:
            return QStringLiteral("bow_facture.db");
        case File::Tiers:
            return QStringLiteral("bow_tiers.db");
        case File::Mail:
            return QStringLiteral("bow_mail.db");
        case File::Tri:
            return QStringLiteral("bow_tri.db");
    }
    return {};
}

QString schemaName(File f) {
    switch (f) {
        case File::Jkv:
            return QStringLiteral("main");
        case File::Facture:
            return QStringLiteral("facture");
        case File::Tiers:
            return QStringLiteral("tiers");
        case File::Mail:
            return QStringLiteral("mail");
        case File::Tri:
            return QStringLiteral("tri");
    }
    return {};
}

const std::vector<File>& sharedFiles() {
    static const std::vector<File> files{File::Jkv, File::Facture, File::Tiers, File::Mail};
    return files;
}

const std::vector<File>& allFiles() {
    static const std::vector<File> files{File::Jkv, File::Facture, File::Tiers, File::Mail,
                                         File::Tri};
    return files;
}

std::optional<File> fileByShortName(const QString& shortName) {
    for (File f : allFiles()) {
        if (fileName(f) == QStringLiteral("bow_%1.db").arg(shortName.toLower())) return f;
    }
    return std::nullopt;
}

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
            QFile file(dir + '/' + script);
            if (!file.open(QIODevice::ReadOnly))
                throw StoreError(QStringLiteral("Le schéma %1 de %2 est illisible : %3")
                                     .arg(script, fileName(f), file.errorString()));
            const QString text = QString::fromUtf8(file.readAll());
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

std::unique_ptr<Store> Store::open(const QString& dataFolder) {
    return open(StoreAddress::ofFolder(dataFolder), dataFolder);
}

std::unique_ptr<Store> Store::create(const QString& dataFolder) {
    return create(StoreAddress::ofFolder(dataFolder), dataFolder);
}

std::unique_ptr<Store> Store::open(const StoreAddress& address, const QString& scratchFolder,
                                   const PasswordPrompt& askPassword) {
    if (address.shared()) {
        std::unique_ptr<Store> store(
            new Store(address, scratchFolder, nextConnectionName(QStringLiteral("server"))));
        store->connect(askPassword);
        store->prepareServer(false);
        store->learnTables();
        store->m_scratch = openScratch(scratchFolder);
        return store;
    }
    const QString& dataFolder = address.folder;
    const QFileInfo info(dataFolder);
    if (!info.isDir()) {
        throw StoreError(QStringLiteral("Le dossier des données « %1 » n'existe pas.")
                             .arg(format::echoed(QDir::toNativeSeparators(dataFolder))));
    }
    for (File f : sharedFiles()) {
        const QFileInfo file(QDir(dataFolder).filePath(fileName(f)));
        if (!file.isFile() || file.size() == 0)
            throw StoreError(
                QStringLiteral("Le fichier de données %1 est introuvable (ou vide) "
                               "dans %2. Restaurez-le depuis une sauvegarde.")
                    .arg(fileName(f), format::echoed(QDir::toNativeSeparators(dataFolder))));
    }
    for (File f : sharedFiles()) prepareFile(dataFolder, f);
    const QString name = nextConnectionName(QStringLiteral("store"));
    openConnection(QDir(dataFolder).filePath(fileName(File::Jkv)), name);
    // Owned from here on: a failed ATTACH closes and removes the connection.
    std::unique_ptr<Store> store(new Store(address, dataFolder, name));
    for (File f : sharedFiles()) {
        if (f == File::Jkv) continue;
        const QString path = QDir(dataFolder).filePath(fileName(f));
        // The schema name is ours, the path is bound.
        runIn(store->database(), path, QStringLiteral("ATTACH DATABASE ? AS %1").arg(schemaName(f)),
              {path});
    }
    store->learnTables();
    store->m_scratch = openScratch(scratchFolder);
    return store;
}

std::unique_ptr<Store> Store::create(const StoreAddress& address, const QString& scratchFolder,
                                     const PasswordPrompt& askPassword) {
    if (!QFileInfo(scratchFolder).isDir() && !QDir().mkpath(scratchFolder))
        throw StoreError(QStringLiteral("Impossible de créer le dossier des données %1.")
                             .arg(format::echoed(QDir::toNativeSeparators(scratchFolder))));
    if (!address.shared()) {
        for (File f : allFiles()) prepareFile(address.folder, f);
        return open(address, scratchFolder);
    }
    std::unique_ptr<Store> store(
        new Store(address, scratchFolder, nextConnectionName(QStringLiteral("server"))));
    store->connect(askPassword);
    store->prepareServer(true);
    store->learnTables();
    store->m_scratch = openScratch(scratchFolder);
    return store;
}

std::unique_ptr<Store> Store::openScratch(const QString& folder) {
    // Each workstation's own: a lost or damaged one is simply made again.
    const QString path = QDir(folder).filePath(fileName(File::Tri));
    try {
        prepareFile(folder, File::Tri);
    } catch (const StoreError&) {
        // Only a file that is not a database at all is replaced: a busy one
        // belongs to work in hand and must be left alone.
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.read(16) == QByteArray("SQLite format 3", 16))
            throw;
        file.close();
        QFile::remove(path);
        QFile::remove(path + QStringLiteral("-wal"));
        QFile::remove(path + QStringLiteral("-shm"));
        prepareFile(folder, File::Tri);
    }
    const QString name = nextConnectionName(QStringLiteral("scratch"));
    openConnection(path, name);
    std::unique_ptr<Store> store(new Store(StoreAddress::ofFolder(folder), folder, name));
    for (const auto& r :
         store->select(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'")))
        store->m_tableFiles.emplace(r.value(0).toString().toLower(), File::Tri);
    return store;
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
            QFile file(dir + '/' + script);
            if (!file.open(QIODevice::ReadOnly))
                throw StoreError(QStringLiteral("Le schéma %1 de %2 est illisible : %3")
                                     .arg(script, schema, file.errorString()));
            exec(QStringLiteral("SET LOCAL search_path TO %1, public").arg(schema));
            for (const QString& statement : statementsOf(QString::fromUtf8(file.readAll())))
                exec(statement);
            exec(QStringLiteral("INSERT INTO %1.orve_version (version) VALUES (?)").arg(schema),
                 {number});
        }
        tx.commit();
    }
    exec(kSearchPath);
}

void Store::learnTables() {
    m_tableFiles.clear();
    for (File f : sharedFiles())
        for (const QString& table : tables(f)) m_tableFiles.emplace(table.toLower(), f);
}

QStringList Store::tables(File f) const {
    if (f == File::Tri) return scratch().tables(File::Jkv);
    QStringList out;
    const Rows rows =
        postgres()
            ? select(QStringLiteral("SELECT table_name FROM information_schema.tables WHERE "
                                    "table_schema = ? AND table_type = 'BASE TABLE' AND "
                                    "table_name <> 'orve_version' ORDER BY table_name"),
                     {serverSchema(f)})
            : select(QStringLiteral("SELECT name FROM %1.sqlite_master WHERE type = 'table' AND "
                                    "name NOT LIKE 'sqlite_%' ORDER BY name")
                         .arg(schemaName(f)));
    for (const auto& r : rows) out << r.value(0).toString();
    return out;
}

QStringList Store::columns(const QString& table) const { return columnsOf(table, false); }

QStringList Store::wholeNumberColumns(const QString& table) const { return columnsOf(table, true); }

QStringList Store::columnsOf(const QString& table, bool wholeNumbersOnly) const {
    const auto it = m_tableFiles.find(table.toLower());
    const File f = it == m_tableFiles.end() ? File::Jkv : it->second;
    QStringList out;
    const Rows rows =
        postgres()
            ? select(QStringLiteral("SELECT column_name, data_type FROM information_schema.columns "
                                    "WHERE table_schema = ? AND table_name = ? "
                                    "ORDER BY ordinal_position"),
                     {serverSchema(f), table})
            : select(QStringLiteral("SELECT name, type FROM pragma_table_info(?, ?)"),
                     {table, f == File::Tri ? QStringLiteral("main") : schemaName(f)});
    for (const auto& r : rows) {
        const QString name = r.value(0).toString();
        const QString type = r.value(1).toString().toLower();
        if (name == QStringLiteral("rowid")) continue;
        if (wholeNumbersOnly && type != QStringLiteral("bigint") &&
            type != QStringLiteral("integer"))
            continue;
        out << name;
    }
    return out;
}

Store::Store(StoreAddress address, QString folder, QString connection)
    : m_address(std::move(address)),
      m_folder(std::move(folder)),
      m_connection(std::move(connection)) {}

Store::~Store() {
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        if (db.isOpen()) {
            if (m_depth > 0) db.rollback();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(m_connection);
}

QString Store::path(File f) const { return QDir(m_folder).filePath(fileName(f)); }

Store& Store::scratch() const {
    // The scratch store is its own scratch.
    return m_scratch ? *m_scratch : const_cast<Store&>(*this);
}

QSqlDatabase Store::database() const { return QSqlDatabase::database(m_connection, false); }

bool Store::connectionLost() const {
    if (!postgres()) return false;
    QSqlDatabase db = database();
    if (!db.isOpen()) return true;
    // A failed statement leaves the server's transaction aborted, and then any
    // ping fails too: only a connection-level failure means the server is gone.
    QSqlQuery ping(db);
    return !ping.exec(QStringLiteral("SELECT 1")) && lostConnectionText(ping.lastError().text());
}

void Store::fail(const QString& sql, const QSqlError& error) const {
    if (postgres() && (lostConnectionText(error.text()) || connectionLost())) {
        // The server has rolled back whatever was in hand; the next action
        // opens a new connection.
        m_lost = true;
        // Lost while the server was committing, the operation may or may not
        // have been kept: say so rather than promise either.
        if (sql.trimmed().compare(QStringLiteral("COMMIT"), Qt::CaseInsensitive) == 0)
            throw StoreError(QStringLiteral("La connexion au serveur de la base partagée %1 a été "
                                            "perdue pendant l'enregistrement : vérifiez si "
                                            "l'opération a été enregistrée avant de la refaire.")
                                 .arg(m_address.display()));
        // The server's own English words ("terminating connection …") are
        // for its log, not for the operator.
        throw StoreError(QStringLiteral("La connexion au serveur de la base partagée %1 est "
                                        "perdue : l'écriture en cours est annulée (ce qui avait "
                                        "été enregistré avant elle le reste). Réessayez dans un "
                                        "instant : ORVE se reconnectera.")
                             .arg(m_address.display()));
    }
    const QString table = tableOf(sql);
    QString where;
    if (!table.isEmpty()) {
        // "tri.strcompetition" lives in the scratch file, "strcompetition" in jkv.
        const QString schema = table.contains('.') ? table.section('.', 0, 0).toLower() : QString();
        const QString bare = table.section('.', -1).toLower();
        std::optional<File> file;
        for (File f : allFiles())
            if (schemaName(f) == schema || (postgres() && serverSchema(f) == schema)) file = f;
        if (!file) {
            const auto it = m_tableFiles.find(bare);
            if (it != m_tableFiles.end()) file = it->second;
        }
        const QString store =
            !file ? QStringLiteral("des données")
            : postgres()
                ? QStringLiteral("partagée %1 (%2)").arg(m_address.display(), serverSchema(*file))
                : fileName(*file);
        where = QStringLiteral("%1, table %2").arg(store, bare);
    } else if (postgres()) {
        where = QStringLiteral("partagée %1").arg(m_address.display());
    } else {
        // BEGIN, COMMIT and the like concern the whole installation.
        where = QStringLiteral("du dossier %1").arg(QDir::toNativeSeparators(m_folder));
    }
    throw StoreError(
        QStringLiteral("Erreur de la base de données %1 (%2) : %3")
            .arg(where, operationOf(sql), describeEngineError(error, postgres(), m_folder)),
        heldElsewhere(error, postgres()));
}

QString Store::dialect(const QString& sql) const { return postgres() ? serverDialect(sql) : sql; }

namespace {

// Statements that change nothing by themselves: sent again to a new
// connection, they cannot do twice what was done once.
bool repeatable(const QString& sql) {
    const QString verb = sql.trimmed().section(' ', 0, 0).toLower();
    return verb == QStringLiteral("select") || verb == QStringLiteral("begin") ||
           verb == QStringLiteral("set");
}

bool execute(QSqlQuery& q, const QString& text, const Params& params) {
    q.setForwardOnly(true);
    // Nothing to bind: run as it stands (the server cannot prepare BEGIN,
    // SAVEPOINT or a schema statement).
    if (params.empty()) return q.exec(text);
    if (!q.prepare(text)) return false;
    for (const auto& p : params) q.addBindValue(p);
    return q.exec();
}

}  // namespace

QSqlQuery Store::run(const QString& sql, const Params& params) const {
    // A new connection for the next action after a lost one.
    const auto reconnect = [this] {
        QSqlDatabase db = database();
        db.close();
        if (!db.open())
            throw StoreError(
                QStringLiteral("La base partagée %1 ne répond pas : %2")
                    .arg(m_address.display(), describeEngineError(db.lastError(), true)));
        QSqlQuery path(db);
        path.exec(kQuietNotices);
        path.exec(kSearchPath);
        m_lost = false;
    };
    if (m_lost) {
        if (m_depth > 0) fail(sql, QSqlError());
        reconnect();
    }
    const QString text = dialect(sql);
    QSqlQuery q(database());
    if (execute(q, text, params)) return q;
    // A server restarted while nothing was in hand (overnight, say) has cut a
    // connection that held no operation of ours: a statement that changes
    // nothing simply goes to a new one, and the operator sees nothing. A write
    // outside a transaction is not sent again (the server may have done it
    // before the connection dropped), nor anything inside a transaction or a
    // snapshot, whose earlier statements went with the old connection.
    if (postgres() && m_depth == 0 && repeatable(sql) && lostConnectionText(q.lastError().text())) {
        const QSqlError lost = q.lastError();
        q = QSqlQuery();
        try {
            reconnect();
        } catch (const StoreError&) {
            fail(sql, lost);  // still down: said as a lost connection
        }
        QSqlQuery again(database());
        if (execute(again, text, params)) return again;
        fail(sql, again.lastError());
    }
    fail(sql, q.lastError());
}

Rows Store::fetchAll(QSqlQuery& q, const QString& sql) const {
    Rows rows;
    while (q.next()) rows.push_back(q.record());
    if (q.lastError().isValid()) fail(sql, q.lastError());
    return rows;
}

Rows Store::select(const QString& sql, const Params& params) const {
    QSqlQuery q = run(sql, params);
    return fetchAll(q, sql);
}

Rows Store::select(const Query& query, int limit, int offset) const {
    if (limit < 0) return select(query.sql(), query.condition.params());
    Params params = query.condition.params();
    params.push_back(limit);
    params.push_back(offset);
    return select(query.sql() + QStringLiteral(" LIMIT ? OFFSET ?"), params);
}

std::optional<Row> Store::selectOne(const QString& sql, const Params& params) const {
    QSqlQuery q = run(sql, params);
    if (q.next()) return q.record();
    if (q.lastError().isValid()) fail(sql, q.lastError());
    return std::nullopt;
}

QVariant Store::scalar(const QString& sql, const Params& params) const {
    const auto row = selectOne(sql, params);
    return row ? row->value(0) : QVariant();
}

bool Store::exists(const QString& sql, const Params& params) const {
    return selectOne(sql, params).has_value();
}

int Store::exec(const QString& sql, const Params& params) const {
    QSqlQuery q = run(sql, params);
    return q.numRowsAffected();
}

void Store::insert(const QString& table, const Fields& fields) const {
    QStringList names;
    QStringList marks;
    Params values;
    for (const auto& [name, value] : fields) {
        names << name;
        marks << QStringLiteral("?");
        values.push_back(value);
    }
    exec(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
             .arg(table, names.join(','), marks.join(',')),
         values);
}

int Store::update(const QString& table, const Fields& fields, const QString& where,
                  const Params& whereParams) const {
    QStringList sets;
    Params values;
    for (const auto& [name, value] : fields) {
        sets << name + QStringLiteral(" = ?");
        values.push_back(value);
    }
    for (const auto& p : whereParams) values.push_back(p);
    return exec(QStringLiteral("UPDATE %1 SET %2 WHERE %3").arg(table, sets.join(','), where),
                values);
}

void Store::lockSeries(const QString& series) const {
    // SQLite's writers already follow one another (BEGIN IMMEDIATE); the
    // server needs a lock of its own, released with the transaction.
    if (postgres()) exec(QStringLiteral("SELECT pg_advisory_xact_lock(hashtext(?))"), {series});
}

void Store::begin() {
    if (m_depth == 0) {
        if (postgres()) {
            exec(QStringLiteral("BEGIN"));
        } else {
            // IMMEDIATE takes the write lock at once: two workstations numbering at
            // the same moment wait for each other instead of failing half-way.
            const QString sql = QStringLiteral("BEGIN IMMEDIATE");
            QSqlQuery q(database());
            if (!q.exec(sql)) {
                const QSqlError error = q.lastError();
                const QStringList busy = lockedFiles();
                if (busy.isEmpty()) fail(sql, error);
                throw StoreError(QStringLiteral("Erreur de la base de données %1 (%2) : %3")
                                     .arg(busy.join(QStringLiteral(", ")), operationOf(sql),
                                          describeEngineError(error)),
                                 true);
            }
        }
    } else {
        exec(QStringLiteral("SAVEPOINT s%1").arg(m_depth));
    }
    ++m_depth;
}

QStringList Store::lockedFiles() const {
    // The engine says "locked" without saying which file: ask each one, without
    // waiting, whether another workstation holds its write lock.
    QStringList busy;
    for (File f : sharedFiles()) {
        const QString name = nextConnectionName(QStringLiteral("probe"));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(path(f));
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
            if (db.open()) {
                QSqlQuery q(db);
                if (q.exec(QStringLiteral("BEGIN IMMEDIATE")))
                    q.exec(QStringLiteral("ROLLBACK"));
                else
                    busy << fileName(f);
                q.finish();
                db.close();
            }
        }
        QSqlDatabase::removeDatabase(name);
    }
    return busy;
}

void Store::commit() {
    const int level = m_depth - 1;
    try {
        exec(level == 0 ? QStringLiteral("COMMIT") : QStringLiteral("RELEASE s%1").arg(level));
    } catch (...) {
        // The engine may still be inside the transaction: undo it, so that the
        // next operation starts clean and nothing of this one is kept.
        rollback();
        throw;
    }
    m_depth = level;
}

void Store::rollback() {
    const int level = --m_depth;
    if (m_lost) return;  // the server has undone it already
    if (level == 0) {
        QSqlQuery q(database());
        q.exec(QStringLiteral("ROLLBACK"));  // fails only when nothing is open: nothing to undo
    } else {
        exec(QStringLiteral("ROLLBACK TO s%1").arg(level));
        exec(QStringLiteral("RELEASE s%1").arg(level));
    }
}

Transaction::Transaction(Store& store) : m_store(store) { m_store.begin(); }

Transaction::~Transaction() {
    if (m_done) return;
    try {
        m_store.rollback();
    } catch (...) {
        // A failed rollback leaves nothing better to do; the error that brought us
        // here is the one the operator sees.
    }
}

void Transaction::commit() {
    // Done either way: a failed commit has already rolled back.
    m_done = true;
    m_store.commit();
}

Snapshot::Snapshot(const Store& store) : m_store(store), m_own(store.m_depth == 0) {
    // Inside a transaction the connection already reads one state of the data.
    if (!m_own) return;
    m_store.exec(m_store.postgres()
                     ? QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY")
                     : QStringLiteral("BEGIN"));
    // Counted as an operation in hand: reads that follow a lost connection
    // fail, rather than go on from a new connection outside the moment.
    ++const_cast<Store&>(m_store).m_depth;
}

Snapshot::~Snapshot() {
    if (!m_own) return;
    --const_cast<Store&>(m_store).m_depth;
    if (m_store.m_lost) return;  // the server has ended it already
    QSqlQuery q(m_store.database());
    q.exec(QStringLiteral("COMMIT"));
}

bool heldElsewhere(const QSqlError& error, bool server) {
    const QString code = error.nativeErrorCode();
    if (server)
        return code == QStringLiteral("40P01") || code == QStringLiteral("55P03") ||
               code == QStringLiteral("40001");
    const int primary = code.toInt() & 0xff;
    return primary == 5 || primary == 6;  // SQLITE_BUSY, SQLITE_LOCKED
}

QString describeEngineError(const QSqlError& error, bool server, const QString& folder) {
    QString cause;
    if (server) {
        const QString state = error.nativeErrorCode();
        if (heldElsewhere(error, true))
            cause = QStringLiteral(
                "la base est utilisée par un autre poste (réessayez dans un instant)");
        else if (state == QStringLiteral("53100"))
            cause = QStringLiteral("disque plein sur le serveur");
        else if (state == QStringLiteral("25006"))
            cause = QStringLiteral("la base est en lecture seule");
        else if (state == QStringLiteral("42501") || state == QStringLiteral("28P01") ||
                 state == QStringLiteral("28000"))
            cause = QStringLiteral("accès refusé par le serveur (utilisateur ou mot de passe)");
        else if (state == QStringLiteral("3D000"))
            cause = QStringLiteral("cette base n'existe pas sur le serveur");
    } else {
        // SQLite's extended codes keep the primary code in their low byte.
        switch (error.nativeErrorCode().toInt() & 0xff) {
            case 5:  // SQLITE_BUSY
            case 6:  // SQLITE_LOCKED
                cause = QStringLiteral(
                    "la base est utilisée par un autre poste (réessayez dans un instant)");
                break;
            case 13:
                cause = QStringLiteral("disque plein");
                break;  // SQLITE_FULL
            case 26:    // SQLITE_NOTADB
            case 11:    // SQLITE_CORRUPT
                cause = QStringLiteral("ce fichier n'est pas une base ORVE ou il est endommagé");
                break;
            case 8:
                cause = QStringLiteral("le fichier est en lecture seule");
                break;
            case 14:
                cause = QStringLiteral("le fichier ne peut pas être ouvert");
                break;
            case 10:  // SQLITE_IOERR: a write refused near the end of the room
                cause = !folder.isEmpty() && diskNearlyFull(folder)
                            ? QStringLiteral("disque plein")
                            : QStringLiteral("erreur de lecture ou d'écriture sur le disque");
                break;
            default:
                break;
        }
    }
    const QString raw = format::echoed(error.text().trimmed());
    if (cause.isEmpty()) return raw;
    return raw.isEmpty() ? cause : cause + QStringLiteral(" [") + raw + QStringLiteral("]");
}

}  // namespace orve::store
