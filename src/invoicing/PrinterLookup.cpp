#include "invoicing/PrinterLookup.h"

#include <QRegularExpression>

namespace orve::invoicing {

int findPrinter(const QStringList& printerNames, const QString& name) {
    // "*" any run of characters, "?" one character; everything else literally.
    QString pattern;
    for (const QChar c : name.toLower()) {
        if (c == QChar('*'))
            pattern += QStringLiteral(".*");
        else if (c == QChar('?'))
            pattern += QChar('.');
        else
            pattern += QRegularExpression::escape(QString(c));
    }
    const QRegularExpression re(
        QRegularExpression::anchoredPattern(pattern),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    for (int i = 0; i < printerNames.size(); ++i)
        if (re.match(printerNames[i].toLower()).hasMatch()) return i;
    return -1;
}

QString printerNotFoundMessage(const QString& name) {
    return QStringLiteral("No printer was found by the name of '") + name + QStringLiteral("'.");
}

}  // namespace orve::invoicing
