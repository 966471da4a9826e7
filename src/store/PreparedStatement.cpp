#include "store/PreparedStatement.h"

#include <sqlite3.h>

#include <QSqlDriver>
#include <QSqlError>
#include <QStringEncoder>

#include "store/StoreInternals.h"

namespace orve::store {

namespace {

QSqlError nativeError(sqlite3* db) {
    return QSqlError(QStringLiteral("Unable to execute statement"),
                     QString::fromUtf8(sqlite3_errmsg(db)), QSqlError::StatementError,
                     QString::number(sqlite3_extended_errcode(db)));
}

}  // namespace

PreparedStatement::PreparedStatement(const Store& store, const QString& sql)
    : m_store(store), m_sql(sql), m_query(store.database()) {
    if (m_store.m_lost) m_store.fail(m_sql, QSqlError());
    if (!m_store.postgres()) {
        if (sqlite3* db = internal::sameLibraryConnection(m_store.database())) {
            if (sqlite3_prepare16_v2(db, m_sql.utf16(), -1, &m_native, nullptr) != SQLITE_OK)
                m_store.fail(m_sql, nativeError(db));
            m_parameters = sqlite3_bind_parameter_count(m_native);
            return;
        }
    }
    m_query.setForwardOnly(true);
    if (!m_query.prepare(m_store.dialect(m_sql))) m_store.fail(m_sql, m_query.lastError());
}

PreparedStatement::PreparedStatement(PreparedStatement&& other) noexcept
    : m_store(other.m_store),
      m_sql(std::move(other.m_sql)),
      m_query(std::move(other.m_query)),
      m_native(other.m_native),
      m_parameters(other.m_parameters),
      m_texts(std::move(other.m_texts)) {
    other.m_native = nullptr;
}

PreparedStatement::~PreparedStatement() {
    if (m_native) sqlite3_finalize(m_native);
}

PreparedStatement PreparedStatement::insertInto(const Store& store, const QString& table,
                                                const QStringList& columns) {
    QStringList marks;
    for (int i = 0; i < columns.size(); ++i) marks << QStringLiteral("?");
    return PreparedStatement(store, QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                        .arg(table, columns.join(','), marks.join(',')));
}

int PreparedStatement::exec(const Params& params) {
    // A connection lost earlier in the transaction took the preparation with it.
    if (m_store.m_lost) m_store.fail(m_sql, QSqlError());
    if (m_native) return execNative(params);
    for (int i = 0; i < static_cast<int>(params.size()); ++i) m_query.bindValue(i, params[i]);
    if (!m_query.exec()) m_store.fail(m_sql, m_query.lastError());
    return m_query.numRowsAffected();
}

int PreparedStatement::execNative(const Params& params) {
    sqlite3* db = sqlite3_db_handle(m_native);
    // Every "?" takes a value at each run, so no value of an earlier run
    // (whose text is gone) can be read again.
    if (static_cast<int>(params.size()) != m_parameters)
        m_store.fail(
            m_sql,
            QSqlError(
                QStringLiteral("Unable to execute statement"),
                QStringLiteral("%1 values for %2 parameters").arg(params.size()).arg(m_parameters),
                QSqlError::StatementError));
    // Room for every text in UTF-8 (three bytes at most per UTF-16 unit),
    // so that the buffer does not move while values point into it.
    qsizetype room = 0;
    for (const QVariant& v : params)
        if (!v.isNull() && v.typeId() == QMetaType::QString)
            room += static_cast<const QString*>(v.constData())->size() * 3;
    if (m_texts.size() < room) m_texts.resize(room);
    char* out = m_texts.data();
    QStringEncoder utf8(QStringEncoder::Utf8);
    for (int i = 0; i < m_parameters; ++i) {
        const QVariant& v = params[i];
        int rc = SQLITE_OK;
        switch (v.isNull() ? QMetaType::UnknownType : v.typeId()) {
            case QMetaType::UnknownType:
                rc = sqlite3_bind_null(m_native, i + 1);
                break;
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::LongLong:
            case QMetaType::ULongLong:
            case QMetaType::Bool:
                rc = sqlite3_bind_int64(m_native, i + 1, v.toLongLong());
                break;
            case QMetaType::Double:
                rc = sqlite3_bind_double(m_native, i + 1, v.toDouble());
                break;
            case QMetaType::QString: {
                const auto* s = static_cast<const QString*>(v.constData());
                char* const start = out;
                out = utf8.appendToBuffer(out, *s);
                rc = sqlite3_bind_text(m_native, i + 1, start, static_cast<int>(out - start),
                                       SQLITE_STATIC);
                break;
            }
            default: {
                const QString s = v.toString();
                rc = sqlite3_bind_text16(m_native, i + 1, s.utf16(),
                                         static_cast<int>(s.size() * sizeof(QChar)),
                                         SQLITE_TRANSIENT);
                break;
            }
        }
        if (rc != SQLITE_OK) {
            const QSqlError error = nativeError(db);
            sqlite3_reset(m_native);
            m_store.fail(m_sql, error);
        }
    }
    const int rc = sqlite3_step(m_native);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) {
        const QSqlError error = nativeError(db);
        sqlite3_reset(m_native);
        m_store.fail(m_sql, error);
    }
    sqlite3_reset(m_native);
    return sqlite3_changes(db);
}

}  // namespace orve::store
