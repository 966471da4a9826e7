#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace orve::store {

// The five files of a data folder. One connection opens the first and attaches
// the four others under these schema names, so one statement can join them.
enum class File { Jkv, Facture, Tiers, Mail, Tri };
QString fileName(File f);    // "bow_jkv.db", ...
QString schemaName(File f);  // "main", "facture", "tiers", "mail", "tri"
const std::vector<File>& allFiles();
std::optional<File> fileByShortName(const QString& shortName);  // "jkv", "facture", ...

using Params = std::vector<QVariant>;
using Row = QSqlRecord;
using Rows = std::vector<QSqlRecord>;
// Column name and value, in the order they are written.
using Fields = std::vector<std::pair<QString, QVariant>>;

struct Query;

class Store {
  public:
    // Opens the data folder's files, bringing their schema up to date first.
    // A missing or empty shared file is refused (it would pass for an empty
    // federation and restart the numbering); only the scratch file is made
    // again. Throws StoreError with a French message when it cannot.
    static std::unique_ptr<Store> open(const QString& dataFolder);
    // A new installation's files: creates the five files, then opens them.
    static std::unique_ptr<Store> create(const QString& dataFolder);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const QString& dataFolder() const { return m_folder; }
    QString path(File f) const;

    // Every statement takes its values bound to "?" placeholders, never spliced in.
    Rows select(const QString& sql, const Params& params = {}) const;
    // A listing's rows; with a limit, one page of them from `offset` on.
    Rows select(const Query& query, int limit = -1, int offset = 0) const;
    std::optional<Row> selectOne(const QString& sql, const Params& params = {}) const;
    QVariant scalar(const QString& sql, const Params& params = {}) const;
    bool exists(const QString& sql, const Params& params = {}) const;
    int exec(const QString& sql, const Params& params = {}) const;  // rows affected
    // Table and column names come from the program, values are bound.
    void insert(const QString& table, const Fields& fields) const;
    int update(const QString& table, const Fields& fields, const QString& where,
               const Params& whereParams) const;

  private:
    friend class Transaction;
    explicit Store(QString folder, QString connection);
    QSqlDatabase database() const;
    QSqlQuery run(const QString& sql, const Params& params) const;
    // Reads every row, or throws: a step that fails must not pass for the end.
    Rows fetchAll(QSqlQuery& query, const QString& sql) const;
    [[noreturn]] void fail(const QString& sql, const QSqlError& error) const;
    void learnTables();
    QStringList lockedFiles() const;
    // Only through Transaction, so that no rule can leave one open.
    void begin();
    void commit();
    void rollback();

    QString m_folder;
    QString m_connection;
    int m_depth = 0;
    // Which file each table lives in, read from the files themselves, so an
    // error names the file to restore.
    std::map<QString, File> m_tableFiles;
};

// One business operation, one transaction: rolls back unless committed.
// Nested guards become savepoints, so a rule can call another rule safely.
class Transaction {
  public:
    explicit Transaction(Store& store);
    ~Transaction();
    void commit();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

  private:
    Store& m_store;
    bool m_done = false;
};

// Applies the schema files of one data file, brings it to WAL mode; used at
// open, and by installations created from scratch.
void prepareFile(const QString& dataFolder, File f);

// The operator's words for an engine error: what usually causes it in French,
// the engine's own text in brackets for support.
QString describeEngineError(const QSqlError& error);

}  // namespace orve::store
