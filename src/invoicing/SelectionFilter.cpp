#include "invoicing/SelectionFilter.h"

#include <QRegularExpression>

#include "invoicing/InvoiceRecords.h"
#include "reference/ReferenceCodes.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Seasons.h"

namespace orve::invoicing {

QString comboKey(const QString& item, bool labelFirst) {
    const QString t = item.trimmed();
    if (t.isEmpty() || t == kAll) return QString();
    const int hash = labelFirst ? t.lastIndexOf(QChar('#')) : t.indexOf(QChar('#'));
    if (hash < 0) return t;
    return (labelFirst ? t.mid(hash + 1) : t.left(hash)).trimmed();
}

QString natureTypeOfMode(const QString& mode) {
    static const std::pair<const char*, const char*> kTypes[] = {{"LIC", "LI"},   {"DIV", "DV"},
                                                                 {"PRIVE", "PR"}, {"LI", "LI"},
                                                                 {"JORE", "JO"},  {"COMPET", "FD"}};
    for (const auto& [m, t] : kTypes)
        if (mode.trimmed() == QLatin1String(m)) return QString::fromLatin1(t);
    return QString();
}

std::optional<QString> monthKeyOfMask(const QString& mask) {
    const QString t = mask.trimmed();
    if (t.isEmpty() || t == kEmptyMonthMask) return kNoMonth;
    static const QRegularExpression re(QStringLiteral("^(\\d{1,2})\\s*/\\s*(\\d{2}|\\d{4})_*$"));
    const auto m = re.match(t);
    if (!m.hasMatch()) return std::nullopt;
    const int month = m.captured(1).toInt();
    if (month < 1 || month > 12) return std::nullopt;
    QString year = m.captured(2);
    // A two-digit year is one of this century.
    if (year.size() == 2) year = QStringLiteral("20") + year;
    return year + format::zeroPad(month, 2);
}

bool isSortableColumn(const QString& field) {
    // Columns of strcompetition and of the listing tables built from it.
    static const QRegularExpression name(QStringLiteral("^(c|f|t|ent)_[a-z0-9_]{1,40}$"));
    static const QStringList extra{QStringLiteral("index_reference")};
    return name.match(field).hasMatch() || extra.contains(field);
}

void toggleSort(SelectionState& state, const QString& field) {
    if (!isSortableColumn(field)) return;
    if (state.sortField == field) {
        state.sortDescending = !state.sortDescending;
    } else {
        state.sortField = field;
        state.sortDescending = false;
    }
}

SelectionCondition buildSelectionCondition(const SelectionState& s) {
    SelectionCondition c;
    store::Condition& where = c.competitions;
    auto add = [&](const QString& sql, const QVariant& value) { where &= {sql, {value}}; };
    // The season is always a filter.
    add(QStringLiteral("c_saison = ?"), s.season.trimmed());
    // Codes compare without regard to case, as everywhere else.
    auto addKey = [&](const QString& column, const QString& key) {
        if (!key.isEmpty()) add(QStringLiteral("upper(trim(%1)) = upper(?)").arg(column), key);
    };
    addKey(QStringLiteral("c_type"), comboKey(s.type));
    addKey(QStringLiteral("c_nature"), comboKey(s.nature));
    addKey(QStringLiteral("c_organisateur"), comboKey(s.league));
    addKey(QStringLiteral("c_organisateur"), comboKey(s.department));

    const QString name = s.organiserName.trimmed();
    if (name.startsWith(QChar('%'))) {
        const QString prefix = name.mid(1);
        if (!prefix.isEmpty()) {
            where &= {store::caselessSql(QStringLiteral("substr(c_nom_organisateur, 1, ?)")) +
                          QStringLiteral(" = ?"),
                      {static_cast<int>(prefix.size()), store::caselessText(prefix)}};
        }
    } else if (!name.isEmpty()) {
        add(QStringLiteral("instr(%1, ?) > 0")
                .arg(store::caselessSql(QStringLiteral("c_nom_organisateur"))),
            store::caselessText(name));
    }

    for (int i = 0; i < 5; ++i) {
        // The blank item chooses the rows whose code is blank.
        const QString item = s.codes[i];
        if (item.isEmpty() || item == kAll) continue;
        if (item.trimmed().isEmpty())
            where &= {QStringLiteral("trim(COALESCE(c_cod%1, '')) = ''").arg(i + 1)};
        else
            addKey(QStringLiteral("c_cod%1").arg(i + 1), item.trimmed());
    }

    const QString index = s.competitionIndex.trimmed();
    if (!index.isEmpty() && index != kNoCompetition) add(QStringLiteral("c_index = ?"), index);

    const auto month = monthKeyOfMask(s.month);
    if (!month)
        throw Refusal(QStringLiteral("le mois : ") + s.month.trimmed() +
                      QStringLiteral(" n'est pas valide"));
    c.monthKey = *month;
    const qint64 number = format::leadingNumber(s.invoiceNumber);
    if (number > 0) c.invoiceNumber = QString::number(number);

    if (c.monthKey != kNoMonth)
        c.lines &= {QStringLiteral("substr(f_tri_date, 1, 6) = ?"), {c.monthKey}};
    if (!c.invoiceNumber.isEmpty())
        c.lines &= {QStringLiteral("f_num_facture = ?"), {paddedInvoiceNumber(c.invoiceNumber)}};

    if (!s.sortField.isEmpty() && isSortableColumn(s.sortField))
        c.orderBy = QStringLiteral(" ORDER BY %1 %2")
                        .arg(s.sortField,
                             s.sortDescending ? QStringLiteral("DESC") : QStringLiteral("ASC"));
    return c;
}

SelectionLists loadSelectionLists(const store::Store& store, const QString& mode,
                                  int workingSeason) {
    SelectionLists l;
    l.seasons = store::seasonChoices(workingSeason);
    l.defaultSeason = QString::number(workingSeason);
    l.types << kAll;
    for (const auto& r :
         store.select(QStringLiteral("SELECT t_code FROM strtypec ORDER BY t_code")))
        l.types << r.value(0).toString().trimmed();
    l.natures << kAll;
    // Screens without an invoicing mode (journal, transfer, statistics) report
    // on every nature.
    const QString natureType = natureTypeOfMode(mode);
    const store::Rows natures =
        natureType.isEmpty()
            ? store.select(
                  QStringLiteral("SELECT n_code, n_libelle FROM strnaturec ORDER BY n_code"))
            : store.select(QStringLiteral("SELECT n_code, n_libelle FROM strnaturec WHERE n_type "
                                          "= ? ORDER BY n_code"),
                           {natureType});
    for (const auto& r : natures)
        l.natures << r.value(0).toString().trimmed() + QStringLiteral(" # ") +
                         r.value(1).toString().trimmed();
    l.leagues << kAll;
    for (const auto& r :
         store.select(QStringLiteral("SELECT o_code, o_libelle FROM strorganisateur "
                                     "WHERE o_genre = 'R' ORDER BY o_code")))
        l.leagues << r.value(0).toString().trimmed() + QStringLiteral(" # ") +
                         r.value(1).toString().trimmed();
    l.departments = loadDepartments(store, kAll);
    for (int i = 0; i < 5; ++i) {
        l.codes[i] << kAll << QStringLiteral(" ") << reference::codificationValues(store, i + 1);
    }
    return l;
}

QStringList loadDepartments(const store::Store& store, const QString& leagueItem) {
    QStringList out{kAll};
    const QString key = comboKey(leagueItem);
    // With a league organiser chosen, the department list keeps the organiser
    // of the same code, as the panel always did.
    const auto rows =
        key.isEmpty()
            ? store.select(QStringLiteral("SELECT o_code, o_libelle FROM strorganisateur WHERE "
                                          "o_genre = 'D' ORDER BY o_libelle"))
            : store.select(QStringLiteral("SELECT o_code, o_libelle FROM strorganisateur WHERE "
                                          "o_genre = 'D' AND o_code = ? ORDER BY o_libelle"),
                           {key});
    for (const auto& r : rows)
        out << r.value(0).toString().trimmed() + QStringLiteral(" # ") +
                   r.value(1).toString().trimmed();
    return out;
}

}  // namespace orve::invoicing
