#include "reference/Committees.h"

#include "reference/Leagues.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference::committees {

const VisibilityColumns& visibility() {
    static const VisibilityColumns columns{"de_region", "de_district", "de_no"};
    return columns;
}

const QStringList& cardColumns() {
    static const QStringList columns{"de_lib",   "de_president_int", "de_president", "de_ad1",
                                     "de_ad2",   "de_ad3",           "de_ad4",       "de_cp",
                                     "de_ville", "de_mail1",         "de_mail2"};
    return columns;
}

store::Query listing(const Viewer& viewer) {
    return {QStringLiteral("select * from strdept"), visibilityFilter(viewer, visibility()),
            QStringLiteral("de_no")};
}

store::Rows list(store::Store& store, const Viewer& viewer) {
    return store.select(listing(viewer));
}

std::optional<store::Row> find(const store::Store& store, const QString& number) {
    return store.selectOne(QStringLiteral("select * from strdept where de_no = ?"),
                           {formatNumber(number, 3)});
}

QString name(store::Store& store, const QString& number) {
    const auto row = find(store, number);
    return row ? row->value("de_lib").toString() : QString();
}

InvoicingEntity splitEntity(const QString& deFacturation) {
    if (deFacturation.left(2) == QStringLiteral("CD")) return {true, deFacturation.mid(2)};
    return {false, deFacturation};
}

QString joinEntity(const InvoicingEntity& entity) {
    return entity.committee ? QStringLiteral("CD") + formatNumber(entity.code, 2) : entity.code;
}

QString entityName(store::Store& store, const InvoicingEntity& entity) {
    return entity.committee ? name(store, entity.code) : leagues::name(store, entity.code);
}

Lookup lookUpLeague(store::Store& store, const QString& code) {
    const QString found = leagues::name(store, code);
    return {found, found.isEmpty() ? QStringLiteral("Cette LR n'existe pas") : QString()};
}

Lookup lookUpEntity(store::Store& store, const InvoicingEntity& entity) {
    if (!entity.committee) return lookUpLeague(store, entity.code);
    const QString found = name(store, entity.code);
    return {found, found.isEmpty() ? QStringLiteral("Cette CD n'existe pas") : QString()};
}

QString cardCaption(const store::Row& committee) {
    return QStringLiteral("FICHE DU COMITE DEPARTEMENTAL : ") +
           committee.value("de_no").toString() + QStringLiteral(" - ") +
           committee.value("de_lib").toString();
}

void save(store::Store& store, const QString& number, const CommitteeEdit& edit,
          const QDate& today) {
    requireText(QStringLiteral("Intitulé du Comité Départemental"), edit.card.value("de_lib"));
    requireDigits(QStringLiteral("Imputation comptable"), edit.account);
    store::Transaction tx(store);
    if (entityName(store, edit.entity).isEmpty())
        throw Refusal(QStringLiteral("L'entité de facturation est obligatoire"));
    auto fields = fieldsOf(edit.card, cardColumns());
    fields.emplace_back("de_facturation", joinEntity(edit.entity));
    fields.emplace_back("de_district", edit.district.toUpper());
    fields.emplace_back("de_compta", format::padValue(edit.account, 6));
    fields.emplace_back("de_date_enreg", format::displayDate(today));
    fields.emplace_back("de_region", edit.league);
    const QString key = formatNumber(number, 3);
    if (store.update("strdept", fields, "de_no = ?", {key}) == 0)
        throw Refusal(
            QStringLiteral("Le comité %1 n'existe plus : rien n'a été enregistré.").arg(key));
    tx.commit();
}

}  // namespace orve::reference::committees
