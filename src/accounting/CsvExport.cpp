#include "accounting/CsvExport.h"

#include <QDir>

#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Money.h"
#include "store/Refusal.h"

namespace orve::accounting {

namespace {

const QByteArray kByteOrderMark("\xEF\xBB\xBF");
const QString kLineEnd = QStringLiteral("\r\n");

// A spreadsheet runs a cell beginning with one of these as a formula (or
// as a command, through DDE): names and titles typed by clerks or brought by
// imports must stay text. The apostrophe is the spreadsheets' own "this is text".
QString textCell(const QString& text) {
    // A sign alone ("-" for nothing) is no formula and stays as it is.
    if (text.size() > 1 && QStringView(u"=+-@\t\r").contains(text.front()))
        return csvField(QChar('\'') + text);
    return csvField(text);
}

QString cell(const ReportColumn& column, const QVariant& value) {
    if (value.isNull()) return QString();
    switch (column.kind) {
        case ReportColumn::Kind::Amount: {
            bool number = false;
            const qlonglong cents = value.toLongLong(&number);
            return number ? format::fileAmount(Money::fromCents(cents))
                          : textCell(value.toString());
        }
        case ReportColumn::Kind::Number: {
            const QString text = value.toString();
            bool number = false;
            text.toDouble(&number);
            return number ? text : textCell(text);
        }
        case ReportColumn::Kind::Text:
            return textCell(value.toString());
    }
    return QString();
}

}  // namespace

QString csvField(const QString& text) {
    if (!text.contains(QChar(';')) && !text.contains(QChar('"')) && !text.contains(QChar('\n')) &&
        !text.contains(QChar('\r')))
        return text;
    QString quoted = text;
    quoted.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return QStringLiteral("\"") + quoted + QStringLiteral("\"");
}

QStringList totalsLine(const std::vector<ReportColumn>& columns, const QString& label,
                       qint64 quantity, qint64 amountCents, const QString& quantityField,
                       const QString& amountField) {
    QStringList line;
    for (const auto& c : columns) {
        if (c.field == quantityField)
            line << QString::number(quantity);
        else if (c.field == amountField)
            line << format::fileAmount(Money::fromCents(amountCents));
        else
            line << QString();
    }
    if (!line.isEmpty()) line[0] = label;
    return line;
}

QByteArray csvDocument(const std::vector<ReportColumn>& columns, const store::Rows& rows,
                       const std::vector<QStringList>& trailer) {
    QString text;
    text.reserve(static_cast<qsizetype>(rows.size()) * 160 + 512);
    QStringList header;
    for (const auto& c : columns) header << csvField(c.header());
    text += header.join(QChar(';')) + kLineEnd;
    QStringList fields;
    for (const auto& row : rows) {
        fields.clear();
        for (const auto& c : columns) fields << cell(c, row.value(c.field));
        text += fields.join(QChar(';')) + kLineEnd;
    }
    for (const QStringList& line : trailer) {
        fields.clear();
        for (const QString& f : line) fields << csvField(f);
        text += fields.join(QChar(';')) + kLineEnd;
    }
    return kByteOrderMark + text.toUtf8();
}

void writeReportFile(const QString& path, const QByteArray& content) {
    if (path.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Indiquez le fichier à enregistrer."));
    store::writeWholeFile(path, content);
}

}  // namespace orve::accounting
