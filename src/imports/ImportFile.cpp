#include "imports/ImportFile.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>

#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/TextCodec.h"

namespace orve::imports {

namespace {

// Larger than any file the federation sends by far; reading more would only
// fill the memory of the workstation.
constexpr qint64 kLargestFile = 512LL * 1024 * 1024;

QString unquoted(QStringView field) {
    const QStringView t = field.trimmed();
    if (t.size() >= 2 && t.startsWith(u'"') && t.endsWith(u'"'))
        return t.mid(1, t.size() - 2)
            .toString()
            .replace(QStringLiteral("\"\""), QStringLiteral("\""));
    return t.toString();
}

// Where the field starting at `from` ends: the position of its ";", or -1
// when the line has no further ";" outside quotes.
qsizetype fieldEnd(const QString& text, qsizetype from) {
    qsizetype i = from;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    if (i < text.size() && text[i] == '"') {
        // A quoted field runs to its closing quote ("" is a quote inside it).
        qsizetype j = i + 1;
        for (;;) {
            j = text.indexOf('"', j);
            if (j < 0) break;  // never closed: the quote is plain text
            if (j + 1 < text.size() && text[j + 1] == '"') {
                j += 2;
                continue;
            }
            return text.indexOf(';', j + 1);
        }
    }
    return text.indexOf(';', from);
}

}  // namespace

ImportFile ImportFile::read(const QString& path) {
    const QString shown = format::echoed(QDir::toNativeSeparators(path));
    if (path.trimmed().isEmpty())
        throw Refusal(
            QStringLiteral("Aucun fichier n'est choisi : choisissez le fichier à "
                           "intégrer (Parcourir…)."));
    QFile file(path);
    if (!file.exists()) throw Refusal(QStringLiteral("Le fichier %1 est introuvable.").arg(shown));
    if (!file.open(QIODevice::ReadOnly))
        throw Refusal(QStringLiteral("Le fichier %1 ne peut pas être lu : %2")
                          .arg(shown, file.errorString()));
    if (file.size() > kLargestFile)
        throw Refusal(QStringLiteral("Le fichier %1 est trop volumineux pour être un fichier "
                                     "d'intégration (%2 Mo).")
                          .arg(shown)
                          .arg(file.size() / (1024 * 1024)));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Refusal(QStringLiteral("Le fichier %1 ne peut pas être lu : %2")
                          .arg(shown, file.errorString()));
    return fromBytes(bytes, path);
}

namespace {

// Whether the bytes hold at least one well-formed UTF-8 sequence of two bytes
// or more: accented letters written by a UTF-8 editor. Windows-1252 text
// almost never has one (it would take "Ã©"-like pairs typed on purpose).
bool hasMultiByteUtf8(const QByteArray& bytes) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    for (qsizetype i = 0; i < n; ++i) {
        const unsigned char b = p[i];
        const int follow = b >= 0xC2 && b <= 0xDF   ? 1
                           : b >= 0xE0 && b <= 0xEF ? 2
                           : b >= 0xF0 && b <= 0xF4 ? 3
                                                    : 0;
        if (follow == 0 || i + follow >= n) continue;
        if (isValidUtf8(bytes.mid(i, follow + 1))) return true;
    }
    return false;
}

}  // namespace

ImportFile ImportFile::fromBytes(const QByteArray& bytes, const QString& path) {
    ImportFile f;
    f.m_path = path;
    const bool bom = bytes.startsWith("\xEF\xBB\xBF");
    const QByteArray body = bom ? bytes.mid(3) : bytes;
    const bool valid = isValidUtf8(body);
    f.m_encoding = bom                               ? TextEncoding::Utf8WithBom
                   : valid || hasMultiByteUtf8(body) ? TextEncoding::Utf8
                                                     // Accented letters of a Windows file
                                                     // are not valid UTF-8.
                                                     : TextEncoding::Windows1252;
    const QList<QByteArray> raw = body.split('\n');
    f.m_lines.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        QByteArray line = raw[i];
        if (line.endsWith('\r')) line.chop(1);
        Line l{static_cast<int>(i + 1), {}};
        if (f.m_encoding == TextEncoding::Windows1252) {
            l.text = fromWindows1252(line);
        } else {
            l.text = QString::fromUtf8(line);
            // A UTF-8 file damaged here and there: the damaged lines are named
            // rather than the whole file read in another code page.
            l.invalid = !valid && !isValidUtf8(line);
        }
        f.m_lines.push_back(std::move(l));
    }
    // The last line ends with its line break, or the file ends with blank lines.
    while (!f.m_lines.empty() && f.m_lines.back().text.trimmed().isEmpty()) f.m_lines.pop_back();
    return f;
}

QString ImportFile::encodingName() const {
    switch (m_encoding) {
        case TextEncoding::Utf8:
            return QStringLiteral("UTF-8");
        case TextEncoding::Utf8WithBom:
            return QStringLiteral("UTF-8 avec BOM");
        case TextEncoding::Windows1252:
            return QStringLiteral("Windows-1252");
    }
    return {};
}

QStringList ImportFile::fields(const QString& text, int count) {
    QStringList out;
    out.reserve(count);
    qsizetype pos = 0;
    for (int i = 0; i + 1 < count; ++i) {
        const qsizetype end = fieldEnd(text, pos);
        if (end < 0) break;
        out << unquoted(QStringView(text).mid(pos, end - pos));
        pos = end + 1;
    }
    // What follows the last ";" read is the last field; those between stay empty.
    while (out.size() + 1 < count) out << QString();
    if (count > 0) out << unquoted(QStringView(text).mid(pos));
    return out;
}

QString ImportFile::lastField(const QString& text) {
    qsizetype pos = 0;
    for (qsizetype end = fieldEnd(text, pos); end >= 0; end = fieldEnd(text, pos)) pos = end + 1;
    return unquoted(QStringView(text).mid(pos));
}

}  // namespace orve::imports
