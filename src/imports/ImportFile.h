#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "store/TextCodec.h"

namespace orve::imports {

// How the bytes of a file were read as text.
enum class TextEncoding { Utf8, Utf8WithBom, Windows1252 };

// A semicolon-separated file from the federation, read whole: its lines as
// text, whatever the machine that wrote it. The encoding is found per file
// (a UTF-8 byte order mark, else bytes that are valid UTF-8 or hold UTF-8
// letters, else Windows-1252); lines end with CRLF or LF; a blank last line is not a line.
class ImportFile {
  public:
    struct Line {
        int number;  // from 1, as an editor counts
        QString text;
        // Not valid in the encoding the file is read in (bytes that are not
        // UTF-8 in a UTF-8 file): its text is not what the sender wrote.
        bool invalid = false;
    };

    // Throws Refusal naming the file when it cannot be read.
    static ImportFile read(const QString& path);
    static ImportFile fromBytes(const QByteArray& bytes, const QString& path = {});

    const QString& path() const { return m_path; }
    TextEncoding encoding() const { return m_encoding; }
    // "UTF-8", "UTF-8 avec BOM", "Windows-1252", as the operator is told.
    QString encodingName() const;
    const std::vector<Line>& lines() const { return m_lines; }

    // The fields of a line, numbered from 1 as `fields[n - 1]`: `count` of
    // them, always. Fields 1 to count - 1 each end at their ";"; the last
    // one is the rest of the line after the last of those, however many
    // ";" it holds. Missing fields are empty. A field in double quotes may
    // hold ";" and doubled quotes; the quotes are removed. Blanks around a
    // field are not part of it.
    static QStringList fields(const QString& text, int count);
    // What follows the last ";" of the line (outside quotes), however many
    // fields come before it; the whole line when it has none.
    static QString lastField(const QString& text);

  private:
    QString m_path;
    TextEncoding m_encoding = TextEncoding::Utf8;
    std::vector<Line> m_lines;
};

using store::fromWindows1252;
using store::isValidUtf8;

}  // namespace orve::imports
