#include "imports/ImportReport.h"

#include <algorithm>

#include "store/Formats.h"

namespace orve::imports {

QString duplicateQuestion(int existing) {
    return QStringLiteral(
               "%1 compétitions de ce fichier existent déjà. Les importer une seconde "
               "fois ?")
        .arg(existing);
}

QString loadingMessage(int lines) {
    return kLoadingDone + QStringLiteral("\nLignes lues : %1.").arg(lines);
}

void ImportReport::skip(const ImportFile::Line& line, const QString& reason) {
    m_lines.push_back({line.number, format::echoed(line.text), reason, true});
    ++m_skipped;
}

void ImportReport::note(const ImportFile::Line& line, const QString& remark) {
    m_lines.push_back({line.number, format::echoed(line.text), remark, false});
}

bool ImportReport::wasSkipped(int lineNumber) const {
    return std::any_of(m_lines.begin(), m_lines.end(), [lineNumber](const ReportLine& l) {
        return l.skipped && l.number == lineNumber;
    });
}

QString ImportReport::closing(const QString& words) const {
    return QStringLiteral(
               "%1\nLignes lues : %2 ; créations : %3 ; mises à jour : %4 ; lignes "
               "ignorées : %5.")
        .arg(words.trimmed())
        .arg(read)
        .arg(created)
        .arg(updated)
        .arg(m_skipped);
}

QStringList ImportReport::printed() const {
    QStringList out;
    for (const auto& l : m_lines)
        out << QStringLiteral("ligne %1 %2 : %3 : « %4 »")
                   .arg(l.number)
                   .arg(l.skipped ? QStringLiteral("ignorée") : QStringLiteral("importée"),
                        l.reason, l.text);
    return out;
}

QString unreadableLine(const QString& text) {
    if (text.trimmed().isEmpty()) return QStringLiteral("ligne vide");
    for (const QChar c : text) {
        // Tabs and stray carriage returns are blanks; other control
        // characters (NUL above all) only come from a file that is not text.
        if (c.unicode() < 0x20 && c != '\t' && c != '\r')
            return QStringLiteral("caractères de contrôle dans la ligne (fichier non texte ?)");
    }
    return {};
}

QString unreadableLine(const ImportFile::Line& line) {
    if (line.invalid)
        return QStringLiteral(
            "caractères non valides en UTF-8 (octets illisibles) : ligne à "
            "corriger dans le fichier");
    return unreadableLine(line.text);
}

int fieldNumber(const QString& field, int largest) {
    if (field.isEmpty() || field.size() > 9) return -1;
    for (const QChar c : field)
        if (c < '0' || c > '9') return -1;
    const int n = field.toInt();
    return n <= largest ? n : -1;
}

QString numberProblem(const QString& what, const QString& field, int largest) {
    if (field.isEmpty()) return what + QStringLiteral(" absent");
    if (fieldNumber(field, largest) >= 0) return {};
    for (const QChar c : field)
        if (c < '0' || c > '9')
            return QStringLiteral("%1 « %2 » non numérique").arg(what, format::echoed(field));
    return QStringLiteral("%1 « %2 » trop grand (%3 au plus)")
        .arg(what, format::echoed(field))
        .arg(largest);
}

QString padded(int n, int width) {
    if (n < 0) return format::zeroPad(n, width);
    QString digits = QString::number(n);
    if (digits.size() < width) digits.prepend(QString(width - digits.size(), QChar('0')));
    return digits;
}

QString overlongField(const QStringList& fields, std::initializer_list<int> used) {
    for (int n : used) {
        if (n - 1 < fields.size() && fields[n - 1].size() > kLongestField)
            return QStringLiteral("le champ %1 dépasse %2 caractères").arg(n).arg(kLongestField);
    }
    return {};
}

}  // namespace orve::imports
