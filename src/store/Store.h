#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "store/StoreAddress.h"

namespace orve::store {

// The stores of an installation. The first four are the federation's shared
// data: SQLite files of one folder (one connection opens the first and
// attaches the others, so one statement can join them), or four schemas of one
// PostgreSQL database. The scratch store bow_tri is always a SQLite file of the
// workstation, reached through Store::scratch().
enum class File { Jkv, Facture, Tiers, Mail, Tri };
QString fileName(File f);    // "bow_jkv.db", ...
QString schemaName(File f);  // "main", "facture", "tiers", "mail", "tri"
const std::vector<File>& allFiles();
const std::vector<File>& sharedFiles();
std::optional<File> fileByShortName(const QString& shortName);  // "jkv", "facture", ...

using Params = std::vector<QVariant>;
using Row = QSqlRecord;
using Rows = std::vector<QSqlRecord>;

// A text column of a row without its padding blanks (codes and names are
// often stored padded).
QString trimmedText(const Row& row, const char* column);
// Column name and value, in the order they are written.
using Fields = std::vector<std::pair<QString, QVariant>>;
// Asked once when the server wants a password that no password file holds;
// empty when the operator gives none.
using PasswordPrompt = std::function<QString(const QString& question)>;

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
    // The same for either engine; the scratch file lives in `scratchFolder`
    // (the data folder itself for SQLite). A new PostgreSQL store needs an
    // empty database.
    static std::unique_ptr<Store> open(const StoreAddress& address, const QString& scratchFolder,
                                       const PasswordPrompt& askPassword = {});
    static std::unique_ptr<Store> create(const StoreAddress& address, const QString& scratchFolder,
                                         const PasswordPrompt& askPassword = {});
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const StoreAddress& address() const { return m_address; }
    // The SQLite data folder, or the workstation folder of a shared store.
    const QString& dataFolder() const { return m_folder; }
    QString path(File f) const;
    // The workstation's own work tables, ticks and listings.
    Store& scratch() const;

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

    // Inside a Transaction: waits until no other workstation is taking a
    // number of the same series, and holds that until the transaction ends,
    // so numbers follow each other with no gap and no duplicate.
    void lockSeries(const QString& series) const;

    // The tables of one store and their columns (without the row key), in
    // the order they were made: what a copy or a backup goes through.
    QStringList tables(File f) const;
    QStringList columns(const QString& table) const;
    // Those of its columns that hold whole numbers (amounts in cents, counts).
    QStringList wholeNumberColumns(const QString& table) const;

  private:
    friend class Transaction;
    friend class Snapshot;
    friend class StoreCopy;
    friend class PreparedStatement;
    Store(StoreAddress address, QString folder, QString connection);
    static std::unique_ptr<Store> openScratch(const QString& folder);
    void connect(const PasswordPrompt& askPassword);
    void prepareServer(bool creating);
    QSqlDatabase database() const;
    QSqlQuery run(const QString& sql, const Params& params) const;
    // Reads every row, or throws: a step that fails must not pass for the end.
    Rows fetchAll(QSqlQuery& query, const QString& sql) const;
    [[noreturn]] void fail(const QString& sql, const QSqlError& error) const;
    QString dialect(const QString& sql) const;
    bool connectionLost() const;
    void learnTables();
    QStringList columnsOf(const QString& table, bool wholeNumbersOnly) const;
    QStringList lockedFiles() const;
    // Only through Transaction, so that no rule can leave one open.
    void begin();
    void commit();
    void rollback();
    bool postgres() const { return m_address.shared(); }

    StoreAddress m_address;
    QString m_folder;
    QString m_connection;
    QString m_password;  // kept in memory only, to reconnect
    int m_depth = 0;
    mutable bool m_lost = false;
    std::unique_ptr<Store> m_scratch;
    // Which file each table lives in, read from the store itself, so an error
    // names the file to restore.
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

// Reads as of one moment: every statement inside sees the same data, whatever
// other workstations write meanwhile (a backup, a copy). Writes nothing.
class Snapshot {
  public:
    explicit Snapshot(const Store& store);
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

  private:
    const Store& m_store;
    bool m_own;
};

// Applies the schema files of one data file, brings it to WAL mode; used at
// open, and by installations created from scratch.
void prepareFile(const QString& dataFolder, File f);

// The operator's words for an engine error: what usually causes it in French,
// the engine's own text in brackets for support.
// `folder`: where the SQLite files lie, when known; a read or write error
// there with almost no room left on its disk is told as a full disk.
QString describeEngineError(const QSqlError& error, bool server = false,
                            const QString& folder = {});
// Whether the error means another workstation held the data (busy, locked,
// deadlock): worth trying again in a moment.
bool heldElsewhere(const QSqlError& error, bool server = false);

}  // namespace orve::store
