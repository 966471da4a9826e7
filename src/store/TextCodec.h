#pragma once

#include <QByteArray>
#include <QString>

// Text files from the clerks' machines: UTF-8, or the code page Windows
// editors save in.
namespace orve::store {

// Windows-1252 bytes as text (the code page of files saved on Windows).
QString fromWindows1252(const QByteArray& bytes);

// Whether the bytes are valid UTF-8 throughout.
bool isValidUtf8(const QByteArray& bytes);

}  // namespace orve::store
