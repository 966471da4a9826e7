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

// The lower-case letters French names and titles carry beyond A to Z, each
// beside its capital.
constexpr char16_t kAccented[][2] = {
    {u'à', u'À'}, {u'â', u'Â'}, {u'ä', u'Ä'}, {u'á', u'Á'}, {u'ã', u'Ã'}, {u'å', u'Å'},
    {u'æ', u'Æ'}, {u'ç', u'Ç'}, {u'é', u'É'}, {u'è', u'È'}, {u'ê', u'Ê'}, {u'ë', u'Ë'},
    {u'í', u'Í'}, {u'ì', u'Ì'}, {u'î', u'Î'}, {u'ï', u'Ï'}, {u'ñ', u'Ñ'}, {u'ó', u'Ó'},
    {u'ò', u'Ò'}, {u'ô', u'Ô'}, {u'ö', u'Ö'}, {u'õ', u'Õ'}, {u'œ', u'Œ'}, {u'ú', u'Ú'},
    {u'ù', u'Ù'}, {u'û', u'Û'}, {u'ü', u'Ü'}, {u'ý', u'Ý'}, {u'ÿ', u'Ÿ'}};

}  // namespace

QString caselessSql(const QString& expression) {
    // A function of the store's own on both engines, folding as caselessText.
    return QStringLiteral("orve_pli(") + expression + QStringLiteral(")");
}

QString caselessText(const QString& text) {
    QString out = text;
    for (QChar& c : out) {
        if (c >= u'a' && c <= u'z') {
            c = QChar(c.unicode() - u'a' + u'A');
            continue;
        }
        for (const auto& pair : kAccented)
            if (c == QChar(pair[0])) c = QChar(pair[1]);
    }
    return out;
}

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
