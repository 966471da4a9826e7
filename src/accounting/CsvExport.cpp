#include "accounting/CsvExport.h"

#include <QDir>
#include <QSaveFile>

#include "store/Formats.h"
#include "store/Money.h"
#include "store/Refusal.h"

namespace orve::accounting {

namespace {

const QByteArray kByteOrderMark("\xEF\xBB\xBF");
const QString kLineEnd = QStringLiteral("\r\n");

QString cell(const ReportColumn& column, const QVariant& value) {
    if (value.isNull()) return QString();
    switch (column.kind) {
        case ReportColumn::Kind::Amount: {
            bool number = false;
            const qlonglong cents = value.toLongLong(&number);
            return number ? format::fileAmount(Money::fromCents(cents))
                          : csvField(value.toString());
        }
        case ReportColumn::Kind::Number:
            return value.toString();
        case ReportColumn::Kind::Text:
            return csvField(value.toString());
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
    const QString shown = QDir::toNativeSeparators(path);
    if (path.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Indiquez le fichier à enregistrer."));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw StoreError(QStringLiteral("Impossible d'écrire le fichier %1 : %2")
                             .arg(shown, file.errorString()));
    if (file.write(content) != content.size() || !file.commit())
        throw StoreError(QStringLiteral("Impossible d'écrire le fichier %1 : %2")
                             .arg(shown, file.errorString()));
}

}  // namespace orve::accounting
