#include "store/Formats.h"

#include <QRegularExpression>

namespace orve::format {

QString displayDate(const QDate& d) { return d.toString(QStringLiteral("dd/MM/yyyy")); }
QString sortDate(const QDate& d) { return d.toString(QStringLiteral("yyyyMMdd")); }
QString monthKey(const QDate& d) { return d.toString(QStringLiteral("yyyyMM")); }

std::optional<QDate> parseDisplayDate(const QString& text) {
    static const QRegularExpression re(QStringLiteral("^\\s*(\\d{1,2})/(\\d{1,2})/(\\d{4})\\s*$"));
    const auto m = re.match(text);
    if (!m.hasMatch()) return std::nullopt;
    const QDate d(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt());
    if (!d.isValid()) return std::nullopt;
    return d;
}

QString displayToSortKey(const QString& display) {
    return display.right(4) + display.mid(3, 2) + display.left(2);
}

static QString grouped(qint64 units) {
    QString digits = QString::number(units);
    QString out;
    int n = 0;
    for (int i = digits.size() - 1; i >= 0; --i) {
        out.prepend(digits[i]);
        if (++n % 3 == 0 && i > 0) out.prepend(QChar(' '));
    }
    return out;
}

static QString decimals(Money m, bool group) {
    const qint64 c = m.cents();
    const qint64 a = c < 0 ? -c : c;
    const QString units = group ? grouped(a / 100) : QString::number(a / 100);
    return QStringLiteral("%1%2,%3")
        .arg(c < 0 ? QStringLiteral("-") : QString(), units)
        .arg(a % 100, 2, 10, QChar('0'));
}

QString amount(Money m) { return decimals(m, true); }
QString amountEuro(Money m) { return decimals(m, true) + QStringLiteral(" €"); }
QString amountEuroPlain(Money m) { return decimals(m, false) + QStringLiteral(" €"); }
QString fileAmount(Money m) { return decimals(m, false); }

QString zeroPaddedAmount(Money m, int integerDigits, QChar separator) {
    const qint64 c = m.cents() < 0 ? -m.cents() : m.cents();
    return QStringLiteral("%1%2%3")
        .arg(c / 100, integerDigits, 10, QChar('0'))
        .arg(separator)
        .arg(c % 100, 2, 10, QChar('0'));
}

QString count(qint64 n) {
    return (n < 0 ? QStringLiteral("-") : QString()) + grouped(n < 0 ? -n : n);
}
QString countPlain(qint64 n) { return QString::number(n); }

qint64 leadingNumber(const QString& text) {
    static const QRegularExpression re(QStringLiteral("^\\s*([+-]?)\\s*(\\d+)"));
    QString t = text;
    const auto m = re.match(t);
    if (!m.hasMatch()) return 0;
    const qint64 v = m.captured(2).left(18).toLongLong();
    return m.captured(1) == QStringLiteral("-") ? -v : v;
}

QString zeroPad(qint64 n, int width) {
    if (n < 0) return QStringLiteral("-") + zeroPad(-n, width - 1);
    return QStringLiteral("%1").arg(n, width, 10, QChar('0'));
}

QString padCode(const QString& text, int width) {
    const QString t = text.trimmed();
    static const QRegularExpression digits(QStringLiteral("^\\d+$"));
    if (!digits.match(t).hasMatch()) return t;
    return t.size() >= width ? t : QString(width - t.size(), QChar('0')) + t;
}

QString padValue(const QString& text, int width) { return zeroPad(leadingNumber(text), width); }

QString echoed(const QString& value) {
    constexpr int kLongest = 200;
    return value.size() <= kLongest ? value : value.left(kLongest) + QStringLiteral("…");
}

}  // namespace orve::format
