#include "store/Money.h"

#include <QRegularExpression>

namespace orve {

std::optional<Money> Money::parse(const QString& text) {
    QString t = text;
    t.remove(QChar(0x20AC));  // €
    t.remove(QChar(' '));
    t.remove(QChar(0x00A0));
    t.remove(QChar(0x202F));
    t.replace(',', '.');
    static const QRegularExpression re(QStringLiteral("^([+-]?)(\\d*)(?:\\.(\\d{0,2}))?$"));
    const auto m = re.match(t);
    if (!m.hasMatch() || (m.captured(2).isEmpty() && m.captured(3).isEmpty())) return std::nullopt;
    if (m.captured(2).size() > 15) return std::nullopt;
    const std::int64_t units = m.captured(2).isEmpty() ? 0 : m.captured(2).toLongLong();
    const QString dec = (m.captured(3) + QStringLiteral("00")).left(2);
    std::int64_t cents = units * 100 + dec.toLongLong();
    if (m.captured(1) == QStringLiteral("-")) cents = -cents;
    return Money::fromCents(cents);
}

}  // namespace orve
