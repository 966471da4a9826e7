#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "imports/ImportFile.h"

namespace orve::imports {

// The words that close an import, as the federation's operators know them.
inline const QString kProcessingDone = QStringLiteral("Traitement termine");
inline const QString kLoadingDone =
    QStringLiteral("Intégration terminée, vous pouvez passer à la validation ");
// A cancelled import is rolled back whole.
inline const QString kImportCancelled =
    QStringLiteral("Intégration interrompue : rien n'a été enregistré.");

// "N compétitions de ce fichier existent déjà. Les importer une seconde fois ?"
QString duplicateQuestion(int existing);
// The end of a loading step: its words, then the lines read.
QString loadingMessage(int lines);

// Told as records are written: how many of how many. Returning false stops
// the import, and then nothing of it is kept.
using ImportProgress = std::function<bool(int done, int total)>;

// A line the operator should know about: skipped (nothing of it written),
// or imported with a remark.
struct ReportLine {
    int number;
    QString text;  // as read, cut for display
    QString reason;
    bool skipped;
};

// What an import read, wrote and left out, line by line.
class ImportReport {
  public:
    QString file;
    QString encoding;
    int read = 0;  // lines examined (a header line apart)
    int created = 0;
    int updated = 0;

    void skip(const ImportFile::Line& line, const QString& reason);
    void note(const ImportFile::Line& line, const QString& remark);
    const std::vector<ReportLine>& lines() const { return m_lines; }
    int skipped() const { return m_skipped; }
    bool wasSkipped(int lineNumber) const;

    // The closing words the operators know, followed by the counts, on one line.
    QString closing(const QString& words) const;
    // Each reported line as printed by orve-batch.
    QStringList printed() const;

  private:
    std::vector<ReportLine> m_lines;
    int m_skipped = 0;
};

// Why a line cannot make any record whatever its fields: blank, or holding
// control characters (a binary file); empty when it can be read.
QString unreadableLine(const QString& text);
// The same for a line of a file, which may also not be valid in its encoding.
QString unreadableLine(const ImportFile::Line& line);

// The value of a field made of digits only, at most `largest`; -1 otherwise.
int fieldNumber(const QString& field, int largest);
// Why a field is not such a number, in the operator's words ("numéro de club
// absent", "… « x9 » non numérique", "… « 1234 » trop grand (999 au plus)");
// empty when it is one.
QString numberProblem(const QString& what, const QString& field, int largest);

// A whole number zero-padded to a width, as format::zeroPad gives it, made
// without its formatting machinery: an import pads several per line.
QString padded(int n, int width);

// No field of a record may be longer than this: a longer one is a damaged line.
inline constexpr int kLongestField = 200;
// The reason one of the `used` fields (numbered from 1) is too long, or empty.
QString overlongField(const QStringList& fields, std::initializer_list<int> used);

}  // namespace orve::imports
