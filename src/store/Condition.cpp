#include "store/Condition.h"

#include <QRegularExpression>

namespace orve::store {

namespace {

// "a OR b" must stay one term once joined to another with AND.
QString asTerm(const QString& sql) {
    static const QRegularExpression orWord(QStringLiteral("\\bor\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    return sql.contains(orWord) ? QStringLiteral("(") + sql + QStringLiteral(")") : sql;
}

}  // namespace

Condition::Condition(QString sql, Params params)
    : m_sql(std::move(sql)), m_params(std::move(params)) {}

Condition Condition::operator&&(const Condition& other) const {
    Condition joined = *this;
    joined &= other;
    return joined;
}

Condition& Condition::operator&=(const Condition& other) {
    if (other.isEmpty()) return *this;
    if (isEmpty()) return *this = other;
    m_sql = asTerm(m_sql) + QStringLiteral(" AND ") + asTerm(other.m_sql);
    m_params.insert(m_params.end(), other.m_params.begin(), other.m_params.end());
    return *this;
}

QString Condition::where() const { return after(QStringLiteral(" WHERE ")); }

QString Condition::after(const QString& keyword) const {
    return isEmpty() ? QString() : keyword + m_sql;
}

QString Query::sql() const {
    QString text = selectFrom + condition.where();
    if (!orderBy.isEmpty()) text += QStringLiteral(" ORDER BY ") + orderBy;
    return text;
}

Query Query::sortedBy(const QString& column, bool descending) const {
    Query q = *this;
    q.orderBy = column + (descending ? QStringLiteral(" DESC") : QStringLiteral(" ASC"));
    return q;
}

}  // namespace orve::store
