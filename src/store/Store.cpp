#include "store/Store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <atomic>

#include "store/Condition.h"
#include "store/Formats.h"
#include "store/Refusal.h"

// Resources compiled into a static library must be pulled in by name.
static void initSchemaResources() {
    Q_INIT_RESOURCE(schema);
    Q_INIT_RESOURCE(resources);
}

namespace orve::store {

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
                              describeEngineError(error)));
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
    const QFileInfo info(dataFolder);
    if (!info.isDir()) {
        throw StoreError(QStringLiteral("Le dossier des données « %1 » n'existe pas.")
                             .arg(format::echoed(QDir::toNativeSeparators(dataFolder))));
    }
    for (File f : allFiles()) {
        if (f == File::Tri) continue;  // each workstation's scratch, made again at will
        const QFileInfo file(QDir(dataFolder).filePath(fileName(f)));
        if (!file.isFile() || file.size() == 0)
            throw StoreError(QStringLiteral("Le fichier de données %1 est introuvable (ou vide) "
                                            "dans %2. Restaurez-le depuis une sauvegarde.")
                                 .arg(fileName(f),
                                      format::echoed(QDir::toNativeSeparators(dataFolder))));
    }
    for (File f : allFiles()) prepareFile(dataFolder, f);
    const QString name = nextConnectionName(QStringLiteral("store"));
    const QString mainPath = QDir(dataFolder).filePath(fileName(File::Jkv));
    openConnection(mainPath, name);
    // Owned from here on: a failed ATTACH closes and removes the connection.
    std::unique_ptr<Store> store(new Store(dataFolder, name));
    for (File f : allFiles()) {
        if (f == File::Jkv) continue;
        const QString path = QDir(dataFolder).filePath(fileName(f));
        // The schema name is ours, the path is bound.
        runIn(store->database(), path,
              QStringLiteral("ATTACH DATABASE ? AS %1").arg(schemaName(f)), {path});
    }
    store->learnTables();
    return store;
}

std::unique_ptr<Store> Store::create(const QString& dataFolder) {
    if (!QFileInfo(dataFolder).isDir() && !QDir().mkpath(dataFolder))
        throw StoreError(QStringLiteral("Impossible de créer le dossier des données %1.")
                             .arg(format::echoed(QDir::toNativeSeparators(dataFolder))));
    for (File f : allFiles()) prepareFile(dataFolder, f);
    return open(dataFolder);
}

void Store::learnTables() {
    for (File f : allFiles()) {
        const Rows rows = select(QStringLiteral("SELECT name FROM %1.sqlite_master WHERE type = "
                                                "'table'")
                                     .arg(schemaName(f)));
        for (const auto& r : rows) m_tableFiles.emplace(r.value(0).toString().toLower(), f);
    }
}

Store::Store(QString folder, QString connection)
    : m_folder(std::move(folder)), m_connection(std::move(connection)) {}

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

QSqlDatabase Store::database() const { return QSqlDatabase::database(m_connection, false); }

void Store::fail(const QString& sql, const QSqlError& error) const {
    const QString table = tableOf(sql);
    QString where;
    if (!table.isEmpty()) {
        // "tri.strcompetition" lives in the scratch file, "strcompetition" in jkv.
        const QString schema = table.contains('.') ? table.section('.', 0, 0).toLower() : QString();
        const QString bare = table.section('.', -1).toLower();
        std::optional<File> file;
        for (File f : allFiles())
            if (schemaName(f) == schema) file = f;
        if (!file) {
            const auto it = m_tableFiles.find(bare);
            if (it != m_tableFiles.end()) file = it->second;
        }
        where = QStringLiteral("%1, table %2")
                    .arg(file ? fileName(*file) : QStringLiteral("des données"), bare);
    } else {
        // BEGIN, COMMIT and the like concern the whole installation.
        where = QStringLiteral("du dossier %1").arg(QDir::toNativeSeparators(m_folder));
    }
    throw StoreError(QStringLiteral("Erreur de la base de données %1 (%2) : %3")
                         .arg(where, operationOf(sql), describeEngineError(error)));
}

QSqlQuery Store::run(const QString& sql, const Params& params) const {
    QSqlQuery q(database());
    q.setForwardOnly(true);
    if (!q.prepare(sql)) fail(sql, q.lastError());
    for (const auto& p : params) q.addBindValue(p);
    if (!q.exec()) fail(sql, q.lastError());
    return q;
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

void Store::begin() {
    if (m_depth == 0) {
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
                                      describeEngineError(error)));
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
    for (File f : allFiles()) {
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

QString describeEngineError(const QSqlError& error) {
    // SQLite's extended codes keep the primary code in their low byte.
    const int code = error.nativeErrorCode().toInt() & 0xff;
    QString cause;
    switch (code) {
        case 5:  // SQLITE_BUSY
        case 6:  // SQLITE_LOCKED
            cause = QStringLiteral("la base est utilisée par un autre poste (réessayez dans un instant)");
            break;
        case 13: cause = QStringLiteral("disque plein"); break;  // SQLITE_FULL
        case 26:                                                  // SQLITE_NOTADB
        case 11:                                                  // SQLITE_CORRUPT
            cause = QStringLiteral("ce fichier n'est pas une base ORVE ou il est endommagé");
            break;
        case 8: cause = QStringLiteral("le fichier est en lecture seule"); break;  // SQLITE_READONLY
        case 14: cause = QStringLiteral("le fichier ne peut pas être ouvert"); break;  // CANTOPEN
        case 10: cause = QStringLiteral("erreur de lecture ou d'écriture sur le disque"); break;
        default: break;
    }
    const QString raw = format::echoed(error.text().trimmed());
    if (cause.isEmpty()) return raw;
    return raw.isEmpty() ? cause : cause + QStringLiteral(" [") + raw + QStringLiteral("]");
}

}  // namespace orve::store
