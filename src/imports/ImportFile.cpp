#include "imports/ImportFile.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

// Larger than any file the federation sends by far; reading more would only
// fill the memory of the workstation.
constexpr qint64 kLargestFile = 512LL * 1024 * 1024;

// Characters 0x80 to 0x9F of Windows-1252; the rest of the code page is Latin-1.
// The five codes the page leaves undefined keep their own value, as Windows does.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

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

QString fromWindows1252(const QByteArray& bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        d[i] = (b >= 0x80 && b < 0xA0) ? QChar(kHighControls[b - 0x80]) : QChar(b);
    }
    return out;
}

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

ImportFile ImportFile::fromBytes(const QByteArray& bytes, const QString& path) {
    ImportFile f;
    f.m_path = path;
    QString text;
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        f.m_encoding = TextEncoding::Utf8WithBom;
        text = QString::fromUtf8(bytes.constData() + 3, bytes.size() - 3);
    } else {
        QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
        text = utf8.decode(bytes);
        if (utf8.hasError()) {
            // Accented letters of a Windows file are not valid UTF-8.
            f.m_encoding = TextEncoding::Windows1252;
            text = fromWindows1252(bytes);
        }
    }
    const QStringList lines = text.split('\n');
    f.m_lines.reserve(lines.size());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith('\r')) line.chop(1);
        f.m_lines.push_back({static_cast<int>(i + 1), line});
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

}  // namespace orve::imports
