#include "reference/ReferenceCodes.h"

#include <QRegularExpression>
#include <QSqlField>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference {

Card cardOf(const store::Row& row) {
    Card card;
    for (int i = 0; i < row.count(); ++i) {
        const QVariant v = row.value(i);
        card.insert(row.fieldName(i), v.isNull() ? QString() : v.toString());
    }
    return card;
}

store::Fields fieldsOf(const Card& card, const QStringList& columns) {
    store::Fields fields;
    for (const QString& c : columns) fields.emplace_back(c, card.value(c));
    return fields;
}

bool isWholeNumber(const QString& text) {
    static const QRegularExpression digits(QStringLiteral("^\\d+$"));
    return digits.match(text.trimmed()).hasMatch();
}

void requireDigits(const QString& caption, const QString& text) {
    if (text.trimmed().isEmpty() || isWholeNumber(text)) return;
    throw Refusal(QStringLiteral("Le champ « %1 » n'accepte que des chiffres : « %2 ».")
                      .arg(caption, format::echoed(text.trimmed())));
}

void requireText(const QString& caption, const QString& text) {
    if (text.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Le champ « %1 » est obligatoire.").arg(caption));
}

QString formatNumber(const QString& text, int width) {
    const QString t = text.trimmed();
    if (!isWholeNumber(t)) return t;
    QString digits = t;
    while (digits.size() > 1 && digits.startsWith(QChar('0'))) digits.remove(0, 1);
    return digits.size() >= width ? digits : QString(width - digits.size(), QChar('0')) + digits;
}

QStringList codificationValues(const store::Store& store, int list) {
    QStringList out;
    for (const auto& r :
         store.select(QStringLiteral("SELECT p_valeur FROM strcodification WHERE p_num = ? "
                                     "ORDER BY p_valeur"),
                      {QString::number(list)}))
        out << r.value(0).toString();
    return out;
}

}  // namespace orve::reference
