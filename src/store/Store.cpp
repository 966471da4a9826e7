#include "store/Store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <atomic>

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

// Which file holds a table, so an error can name it.
QString fileOfTable(const QString& table) {
    static const QStringList facture{"strentete", "strfacture"};
    static const QStringList tiers{"strregion", "strdept", "strbowling", "strclub", "strlicence"};
    static const QStringList tri{"strtxt", "strcompta", "strcumul"};
    QString t = table.toLower();
    if (t.startsWith(QStringLiteral("tri."))) return fileName(File::Tri);
    const int dot = t.indexOf('.');
    if (dot >= 0) t = t.mid(dot + 1);
    if (facture.contains(t)) return fileName(File::Facture);
    if (tiers.contains(t)) return fileName(File::Tiers);
    if (tri.contains(t)) return fileName(File::Tri);
    if (t == QStringLiteral("strmail")) return fileName(File::Mail);
    return fileName(File::Jkv);
}

[[noreturn]] void fail(const QString& sql, const QSqlError& error) {
    static const QRegularExpression tableRe(
        QStringLiteral("\\b(?:from|into|update|table)\\s+([A-Za-z_][A-Za-z0-9_.]*)"),
        QRegularExpression::CaseInsensitiveOption);
    const auto m = tableRe.match(sql);
    const QString table = m.hasMatch() ? m.captured(1) : QStringLiteral("?");
    const QString verb = sql.trimmed().section(' ', 0, 0).toLower();
    const QString operation = verb == QStringLiteral("select")   ? QStringLiteral("lecture")
                              : verb == QStringLiteral("insert") ? QStringLiteral("ajout")
                              : verb == QStringLiteral("update") ? QStringLiteral("modification")
                              : verb == QStringLiteral("delete") ? QStringLiteral("suppression")
                                                                 : QStringLiteral("opération");
    throw StoreError(QStringLiteral("Erreur de la base de données %1, table %2 (%3) : %4")
                         .arg(fileOfTable(table), table, operation, error.text()));
}

QSqlQuery run(const QSqlDatabase& db, const QString& sql, const Params& params) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql)) fail(sql, q.lastError());
    for (const auto& p : params) q.addBindValue(p);
    if (!q.exec()) fail(sql, q.lastError());
    return q;
}

QSqlDatabase openConnection(const QString& path, const QString& name) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        const QString text = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw StoreError(
            QStringLiteral("Impossible d'ouvrir la base de données %1 : %2").arg(path, text));
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
    {
        QSqlDatabase db = openConnection(path, name);
        const QString dir = QStringLiteral(":/schema/sqlite/%1")
                                .arg(schemaName(f) == QStringLiteral("main") ? QStringLiteral("jkv")
                                                                             : schemaName(f));
        QStringList scripts =
            QDir(dir).entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name);
        QSqlQuery v = run(db, QStringLiteral("PRAGMA user_version"), {});
        const int version = v.next() ? v.value(0).toInt() : 0;
        v.finish();
        for (const QString& script : scripts) {
            const int number = script.section('_', 0, 0).toInt();
            if (number <= version) continue;
            QFile file(dir + '/' + script);
            file.open(QIODevice::ReadOnly);
            const QString text = QString::fromUtf8(file.readAll());
            if (!db.transaction()) fail(QStringLiteral("BEGIN"), db.lastError());
            try {
                for (const QString& statement : statementsOf(text)) run(db, statement, {});
                run(db, QStringLiteral("PRAGMA user_version = %1").arg(number), {});
            } catch (...) {
                db.rollback();
                throw;
            }
            if (!db.commit()) fail(QStringLiteral("COMMIT"), db.lastError());
        }
        run(db, QStringLiteral("PRAGMA journal_mode=WAL"), {});
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

std::unique_ptr<Store> Store::open(const QString& dataFolder) {
    const QFileInfo info(dataFolder);
    if (!info.isDir()) {
        throw StoreError(QStringLiteral("Le dossier des données « %1 » n'existe pas.")
                             .arg(QDir::toNativeSeparators(dataFolder)));
    }
    for (File f : allFiles()) prepareFile(dataFolder, f);
    const QString name = nextConnectionName(QStringLiteral("store"));
    QSqlDatabase db = openConnection(QDir(dataFolder).filePath(fileName(File::Jkv)), name);
    std::unique_ptr<Store> store(new Store(dataFolder, name));
    for (File f : allFiles()) {
        if (f == File::Jkv) continue;
        // The schema name is ours, the path is bound.
        run(db, QStringLiteral("ATTACH DATABASE ? AS %1").arg(schemaName(f)),
            {QDir(dataFolder).filePath(fileName(f))});
    }
    return store;
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

Rows Store::select(const QString& sql, const Params& params) const {
    QSqlQuery q = run(database(), sql, params);
    Rows rows;
    while (q.next()) rows.push_back(q.record());
    return rows;
}

std::optional<Row> Store::selectOne(const QString& sql, const Params& params) const {
    QSqlQuery q = run(database(), sql, params);
    if (!q.next()) return std::nullopt;
    return q.record();
}

QVariant Store::scalar(const QString& sql, const Params& params) const {
    QSqlQuery q = run(database(), sql, params);
    return q.next() ? q.value(0) : QVariant();
}

bool Store::exists(const QString& sql, const Params& params) const {
    QSqlQuery q = run(database(), sql, params);
    return q.next();
}

int Store::exec(const QString& sql, const Params& params) const {
    QSqlQuery q = run(database(), sql, params);
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
        exec(QStringLiteral("BEGIN IMMEDIATE"));
    } else {
        exec(QStringLiteral("SAVEPOINT s%1").arg(m_depth));
    }
    ++m_depth;
}

void Store::commit() {
    --m_depth;
    if (m_depth == 0) {
        exec(QStringLiteral("COMMIT"));
    } else {
        exec(QStringLiteral("RELEASE s%1").arg(m_depth));
    }
}

void Store::rollback() {
    --m_depth;
    if (m_depth == 0) {
        exec(QStringLiteral("ROLLBACK"));
    } else {
        exec(QStringLiteral("ROLLBACK TO s%1").arg(m_depth));
        exec(QStringLiteral("RELEASE s%1").arg(m_depth));
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
    m_done = true;
    m_store.commit();
}

}  // namespace orve::store
