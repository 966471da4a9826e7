#include "invoicing/MailMessage.h"

#include <QRegularExpression>
#include <QUuid>
#include <cstdlib>

namespace orve::invoicing {

namespace {

constexpr int kLineLength = 76;

bool isAscii(const QString& text) {
    for (const QChar c : text)
        if (c.unicode() > 0x7E) return false;
    return true;
}

// Base64 folded in lines of 76 characters.
QByteArray base64Lines(const QByteArray& bytes) {
    const QByteArray b64 = bytes.toBase64();
    QByteArray out;
    out.reserve(b64.size() + b64.size() / kLineLength * 2 + 2);
    for (qsizetype i = 0; i < b64.size(); i += kLineLength) {
        out += b64.mid(i, kLineLength);
        out += "\r\n";
    }
    return out;
}

// A file name as a Content-Disposition parameter: quoted when plain ASCII,
// else in the RFC 2231 form that every mail program reads.
QByteArray fileNameParameter(const QString& name, const char* parameter) {
    QString plain;
    for (const QChar c : name)
        if (c.unicode() >= 0x20 && c != QChar('"') && c != QChar('\\') && c.unicode() != 0x7F)
            plain += c;
    if (isAscii(plain)) return QByteArray(parameter) + "=\"" + plain.toLatin1() + "\"";
    return QByteArray(parameter) + "*=UTF-8''" + plain.toUtf8().toPercentEncoding("._-");
}

QByteArray addressList(const QStringList& addresses) {
    QByteArray out;
    for (int i = 0; i < addresses.size(); ++i) {
        if (i) out += ",\r\n ";
        out += addresses[i].toLatin1();
    }
    return out;
}

}  // namespace

bool plausibleAddress(const QString& address) {
    static const QRegularExpression pattern(
        QStringLiteral("^[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+(\\.[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+)*"
                       "@([A-Za-z0-9]([A-Za-z0-9-]{0,61}[A-Za-z0-9])?\\.)+[A-Za-z]{2,63}$"));
    return address.size() <= 254 && pattern.match(address).hasMatch();
}

QStringList splitAddresses(const QString& field) {
    QStringList out;
    for (const QString& part : field.split(QRegularExpression(QStringLiteral("[;,]")))) {
        const QString a = part.trimmed();
        if (!a.isEmpty()) out << a;
    }
    return out;
}

QString headerText(const QString& text) {
    QString out = text;
    for (QChar& c : out)
        if (c.unicode() < 0x20 || c.unicode() == 0x7F || c == QChar(0x2028) || c == QChar(0x2029) ||
            c == QChar(0x85))
            c = QChar(' ');
    return out.trimmed();
}

QByteArray encodeHeaderValue(const QString& text) {
    const QString clean = headerText(text);
    if (isAscii(clean) && clean.size() <= 60) return clean.toLatin1();
    // Each word holds at most 39 bytes (52 characters of base64), cut
    // between characters, never inside one.
    QByteArray out;
    QByteArray chunk;
    for (int i = 0; i < clean.size(); ++i) {
        int n = clean[i].isHighSurrogate() && i + 1 < clean.size() ? 2 : 1;
        const QByteArray bytes = clean.mid(i, n).toUtf8();
        i += n - 1;
        if (chunk.size() + bytes.size() > 39) {
            if (!out.isEmpty()) out += "\r\n ";
            out += "=?UTF-8?B?" + chunk.toBase64() + "?=";
            chunk.clear();
        }
        chunk += bytes;
    }
    if (!chunk.isEmpty()) {
        if (!out.isEmpty()) out += "\r\n ";
        out += "=?UTF-8?B?" + chunk.toBase64() + "?=";
    }
    return out;
}

QByteArray quotedPrintable(const QString& text) {
    QString normal = text;
    normal.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    normal.replace(QChar('\r'), QChar('\n'));
    const QStringList lines = normal.split(QChar('\n'));
    static const char hex[] = "0123456789ABCDEF";
    QByteArray out;
    for (int l = 0; l < lines.size(); ++l) {
        const QByteArray bytes = lines[l].toUtf8();
        QByteArray line;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            const auto b = static_cast<unsigned char>(bytes[i]);
            const bool last = i == bytes.size() - 1;
            QByteArray piece;
            // A blank at the end of a line would be lost on the way: encoded.
            // So is a dot that starts a line, which no relay can then mistake
            // for the end of the message.
            const auto encoded = [&] { return QByteArray("=") + hex[b >> 4] + hex[b & 15]; };
            if ((b >= 33 && b <= 126 && b != '=') || ((b == ' ' || b == '\t') && !last))
                piece = QByteArray(1, static_cast<char>(b));
            else
                piece = encoded();
            if (line.size() + piece.size() > kLineLength - 1) {
                out += line + "=\r\n";
                line.clear();
            }
            if (line.isEmpty() && b == '.') piece = encoded();
            line += piece;
        }
        out += line;
        out += "\r\n";
    }
    return out;
}

QByteArray mailDate(const QDateTime& date) {
    static const char* const days[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const QDateTime local = date.toLocalTime();
    const int offset = local.offsetFromUtc() / 60;
    const QDate d = local.date();
    const QTime t = local.time();
    return QStringLiteral("%1, %2 %3 %4 %5:%6:%7 %8%9%10")
        .arg(QLatin1String(days[d.dayOfWeek() - 1]))
        .arg(d.day())
        .arg(QLatin1String(months[d.month() - 1]))
        .arg(d.year())
        .arg(t.hour(), 2, 10, QChar('0'))
        .arg(t.minute(), 2, 10, QChar('0'))
        .arg(t.second(), 2, 10, QChar('0'))
        .arg(offset < 0 ? QChar('-') : QChar('+'))
        .arg(std::abs(offset) / 60, 2, 10, QChar('0'))
        .arg(std::abs(offset) % 60, 2, 10, QChar('0'))
        .toLatin1();
}

QString newMessageId(const QString& sender) {
    QString domain = sender.section(QChar('@'), 1).trimmed();
    if (!plausibleAddress(QStringLiteral("x@") + domain)) domain = QStringLiteral("orve.invalid");
    return QStringLiteral("<%1.%2@%3>")
        .arg(QUuid::createUuid().toString(QUuid::Id128))
        .arg(QDateTime::currentMSecsSinceEpoch())
        .arg(domain);
}

QStringList MailMessage::recipients() const {
    QStringList all;
    for (const QString& a : to + cc)
        if (!all.contains(a, Qt::CaseInsensitive)) all << a;
    return all;
}

QByteArray MailMessage::toMime(const QDateTime& date, const QString& messageId, bool draft) const {
    QByteArray m;
    m += "From: " + headerText(from).toLatin1() + "\r\n";
    m += "To: " + addressList(to) + "\r\n";
    if (!cc.isEmpty()) m += "Cc: " + addressList(cc) + "\r\n";
    m += "Subject: " + encodeHeaderValue(subject) + "\r\n";
    m += "Date: " + mailDate(date) + "\r\n";
    m += "Message-ID: " + headerText(messageId).toLatin1() + "\r\n";
    if (draft) m += "X-Unsent: 1\r\n";
    m += "MIME-Version: 1.0\r\n";
    const QByteArray textPart =
        "Content-Type: text/plain; charset=UTF-8\r\n"
        "Content-Transfer-Encoding: quoted-printable\r\n\r\n" +
        quotedPrintable(body);
    if (!attachment) return m + textPart;
    const QByteArray boundary = "=_orve_" + QUuid::createUuid().toString(QUuid::Id128).toLatin1();
    m += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n";
    m += "--" + boundary + "\r\n" + textPart;
    m += "--" + boundary + "\r\n";
    m += "Content-Type: " + headerText(attachment->contentType).toLatin1() + "; " +
         fileNameParameter(attachment->fileName, "name") + "\r\n";
    m += "Content-Transfer-Encoding: base64\r\n";
    m += "Content-Disposition: attachment; " + fileNameParameter(attachment->fileName, "filename") +
         "\r\n\r\n";
    m += base64Lines(attachment->bytes);
    m += "--" + boundary + "--\r\n";
    return m;
}

}  // namespace orve::invoicing
