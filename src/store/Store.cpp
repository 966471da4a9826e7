// The store as the rules use it: opening the installation's files, running
// bound statements, and the transactions and snapshots around them.
#include "store/Store.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <atomic>

#include "store/Condition.h"
#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/StoreInternals.h"

namespace orve::store {

QString trimmedText(const Row& row, const char* column) {
    return row.value(QLatin1String(column)).toString().trimmed();
}

using namespace internal;

namespace {

std::atomic<int> g_connectionCounter{0};

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

// Registered on the connection only when it is our library's: another
// library's connection is not ours to touch.
void addFunctions(const QSqlDatabase& db) {
    sqlite3* connection = sameLibraryConnection(db);
    if (!connection) return;
    sqlite3_create_function_v2(connection, "orve_pli", 1, SQLITE_UTF16 | SQLITE_DETERMINISTIC,
                               nullptr, caselessFunction, nullptr, nullptr, nullptr);
}

}  // namespace

sqlite3* internal::sameLibraryConnection(const QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    sqlite3* connection = *static_cast<sqlite3* const*>(handle.constData());
    QSqlQuery q(db);
    if (!connection || !q.exec(QStringLiteral("SELECT sqlite_source_id()")) || !q.next() ||
        q.value(0).toString() != QString::fromLatin1(sqlite3_sourceid()))
        return nullptr;
    return connection;
}

QString internal::nextConnectionName(const QString& prefix) {
    return QStringLiteral("orve-%1-%2").arg(prefix).arg(++g_connectionCounter);
}

QSqlQuery internal::runIn(const QSqlDatabase& db, const QString& path, const QString& sql,
                          const Params& params) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql)) failIn(path, sql, q.lastError());
    for (const auto& p : params) q.addBindValue(p);
    if (!q.exec()) failIn(path, sql, q.lastError());
    return q;
}

QSqlDatabase internal::openConnection(const QString& path, const QString& name) {
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

}  // namespace orve::store
