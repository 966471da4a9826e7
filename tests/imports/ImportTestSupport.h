#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include "imports/ImportFile.h"
#include "store/Store.h"

namespace orve::test {

// A file's text as the import reads it, without a file.
inline imports::ImportFile importText(const QString& text) {
    return imports::ImportFile::fromBytes(text.toUtf8(), QStringLiteral("essai.csv"));
}

// Writes bytes to a file of a temporary folder; returns its path.
inline QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    const QString path = dir.filePath(name);
    QFile f(path);
    if (f.open(QIODevice::WriteOnly)) f.write(bytes);
    return path;
}

// Every row of a table as "a|b|c" texts, in a stable order: what a check
// compares before and after an import that must not have changed it.
inline QStringList tableRows(const store::Store& s, const QString& table, const QString& order) {
    QStringList out;
    for (const auto& r :
         s.select(QStringLiteral("SELECT * FROM %1 ORDER BY %2").arg(table, order))) {
        QStringList cols;
        for (int i = 0; i < r.count(); ++i)
            if (r.fieldName(i) != QStringLiteral("rowid")) cols << r.value(i).toString();
        out << cols.join('|');
    }
    return out;
}

}  // namespace orve::test
