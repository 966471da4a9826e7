#include "tools/NewSeason.h"

#include "store/Formats.h"
#include "store/Refusal.h"
#include "tools/ToolTexts.h"

namespace orve::tools {

QString NewSeasonResult::message() const {
    const int made = static_cast<int>(created.size());
    const int there = static_cast<int>(existing.size());
    const QString madeText = made == 0 ? QStringLiteral("aucune pseudo-compétition créée")
                                       : counted(made, QStringLiteral("pseudo-compétition créée"),
                                                 QStringLiteral("pseudo-compétitions créées"));
    const QString thereText = there == 0   ? QStringLiteral("aucune n'existait déjà")
                              : there == 1 ? QStringLiteral("1 existait déjà")
                                           : QStringLiteral("%1 existaient déjà").arg(there);
    return kProcessingDone +
           QStringLiteral("\nSaison %1 : %2, %3.").arg(season).arg(madeText, thereText);
}

int proposedSeason(int workingSeason) { return workingSeason + 1; }

NewSeasonResult setUpSeason(store::Store& store, const QString& typedYear, const QDate& today) {
    const qint64 year = format::leadingNumber(typedYear);
    if (year < kFirstSeasonToSetUp || year > 9999) throw Refusal(kSeasonRefused);
    const QString season = QString::number(year);
    const QString todayText = format::displayDate(today);

    NewSeasonResult result;
    result.season = static_cast<int>(year);
    store::Transaction tx(store);
    // One source per number: the first row in number order, the latest
    // season first so that a title edited last year carries on.
    const store::Rows sources = store.select(
        QStringLiteral("SELECT * FROM strcompetition WHERE upper(substr(c_index, 2, 2)) = 'FA' "
                       "ORDER BY substr(c_index, length(c_index) - 4), c_saison DESC, c_index"));
    const QStringList columns = store.columns(QStringLiteral("strcompetition"));
    QString previous = QStringLiteral("99999");
    for (const store::Row& source : sources) {
        const QString index = source.value(QStringLiteral("c_index")).toString().trimmed();
        const QString number = index.right(5);
        if (number.compare(previous, Qt::CaseInsensitive) == 0) continue;
        previous = number;
        const QString newIndex = season.right(1) + index.right(7);
        if (store.exists(
                QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ? AND c_saison = ?"),
                {newIndex, season})) {
            result.existing << newIndex;
            continue;
        }
        const bool licences =
            source.value(QStringLiteral("c_nature")).toString().trimmed() == QStringLiteral("LIC");
        store::Fields fields;
        for (const QString& column : columns) {
            QVariant value = source.value(column);
            if (column == QStringLiteral("c_index")) value = newIndex;
            if (column == QStringLiteral("c_saison")) value = season;
            if (column == QStringLiteral("c_date_finale"))
                value = QStringLiteral("31/08/") + season;
            if (column == QStringLiteral("c_tri_finale")) value = season + QStringLiteral("0831");
            if (column == QStringLiteral("c_date_modif") ||
                column == QStringLiteral("c_date_enreg"))
                value = todayText;
            if (column == QStringLiteral("c_intitule") && licences)
                value = QStringLiteral("Licences");
            fields.emplace_back(column, value);
        }
        store.insert(QStringLiteral("strcompetition"), fields);
        result.created << newIndex;
    }
    tx.commit();
    return result;
}

}  // namespace orve::tools
