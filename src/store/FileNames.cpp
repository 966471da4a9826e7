#include "store/FileNames.h"

#include <QDir>
#include <QFileInfo>

#include "store/Refusal.h"

namespace orve::store {

QString fileNamePart(const QString& code) {
    QString out;
    out.reserve(code.size());
    for (const QChar c : code)
        if (c.isLetter() || c.isDigit() || c == QChar('-') || c == QChar('_')) out += c;
    return out;
}

QString fileInFolder(const QString& folder, const QString& fileName) {
    auto refuse = [&] {
        return Refusal(
            QStringLiteral("Le nom de fichier « %1 » ne désigne pas un fichier du dossier %2.")
                .arg(fileName, QDir::toNativeSeparators(folder)));
    };
    // Either separator and a drive letter lead elsewhere on one system or another.
    if (fileName.isEmpty() || fileName == QStringLiteral(".") || fileName == QStringLiteral("..") ||
        fileName.contains(QChar('/')) || fileName.contains(QChar('\\')) ||
        fileName.contains(QChar(':')))
        throw refuse();
    const QString path = QDir(folder).filePath(fileName);
    // Once the path is made, it must still sit right under the folder.
    const QString base = QDir::cleanPath(QDir(folder).absolutePath());
    const QString full = QDir::cleanPath(QDir(folder).absoluteFilePath(fileName));
    if (QFileInfo(full).absolutePath() != base) throw refuse();
    return path;
}

}  // namespace orve::store
