#include "reference/Centres.h"

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference::centres {

const VisibilityColumns& visibility() {
    // Centres carry no district and no committee of their own: the league decides.
    static const VisibilityColumns columns{"b_region", {}, {}};
    return columns;
}

const QStringList& cardColumns() {
    static const QStringList columns{"b_nom",
                                     "b_ad1",
                                     "b_ad2",
                                     "b_ad3",
                                     "b_cp",
                                     "b_ville",
                                     "b_tel1",
                                     "b_tel2",
                                     "b_fax",
                                     "b_mail1",
                                     "b_mail2",
                                     "b_site",
                                     "b_nom_proprietaire",
                                     "b_nom_responsable",
                                     "b_fac_nom",
                                     "b_fac_ad1",
                                     "b_fac_ad2",
                                     "b_fac_ad3",
                                     "b_fac_ad4",
                                     "b_fac_cp",
                                     "b_fac_ville"};
    return columns;
}

store::Query listing(const Viewer& viewer) {
    return {QStringLiteral("select * from strbowling"), visibilityFilter(viewer, visibility()),
            QStringLiteral("b_compte_tiers")};
}

store::Rows list(store::Store& store, const Viewer& viewer) {
    return store.select(listing(viewer));
}

std::optional<store::Row> find(const store::Store& store, const QString& key) {
    return store.selectOne(QStringLiteral("select * from strbowling where b_compte_tiers = ?"),
                           {key});
}

namespace {
ListItems items(const store::Rows& rows, const char* code, const char* label) {
    ListItems result;
    for (const auto& r : rows)
        result.push_back({r.value(code).toString(), r.value(label).toString()});
    return result;
}
}  // namespace

ListItems leagueItems(store::Store& store, const Viewer& viewer) {
    if (viewer.isNational())
        return items(store.select("select re_code, re_lib from strregion order by re_code"),
                     "re_code", "re_lib");
    return items(
        store.select("select re_code, re_lib from strregion where re_code = ? order by re_code",
                     {viewer.league}),
        "re_code", "re_lib");
}

ListItems departmentItems(store::Store& store, const Viewer& viewer) {
    if (viewer.isNational())
        return items(store.select("select de_no, de_lib from strdept order by de_no"), "de_no",
                     "de_lib");
    return items(
        store.select("select de_no, de_lib from strdept where de_region = ? order by de_no",
                     {viewer.league}),
        "de_no", "de_lib");
}

namespace {
// The masked field shows blanks as "_": a date not typed at all is stored as the
// empty mask, a date typed in full must be a real one.
void checkApprovalDate(const QString& masked) {
    if (masked == format::kEmptyDateMask) return;
    if (!format::parseDisplayDate(masked) || masked.size() != 10)
        throw Refusal(
            QStringLiteral("La date d'homologation n'est pas une date valide (jj/mm/aaaa) : %1")
                .arg(masked));
}
}  // namespace

void save(store::Store& store, const QString& key, const CentreEdit& edit, const QDate& today) {
    requireText(QStringLiteral("Nom"), edit.card.value("b_nom"));
    const QString lanesText = edit.lanes.trimmed();
    if (!lanesText.isEmpty() && !isWholeNumber(lanesText))
        throw Refusal(
            QStringLiteral("Le nombre de pistes doit être un nombre entier : %1").arg(edit.lanes));
    const QString date = edit.approvalDate.isEmpty() ? format::kEmptyDateMask : edit.approvalDate;
    checkApprovalDate(date);
    store::Transaction tx(store);
    auto fields = fieldsOf(edit.card, cardColumns());
    fields.emplace_back("b_homologation", date);
    fields.emplace_back("b_homologation_tri", format::displayToSortKey(date));
    fields.emplace_back("b_pistes", lanesText.isEmpty() ? qlonglong(0) : lanesText.toLongLong());
    fields.emplace_back("b_type", edit.synthetic ? kSynthetic : kWood);
    fields.emplace_back("b_date_enreg", format::displayDate(today));
    if (store.update("strbowling", fields, "b_compte_tiers = ?", {key}) == 0)
        throw Refusal(
            QStringLiteral("Le centre %1 n'existe plus : rien n'a été enregistré.").arg(key));
    tx.commit();
}

}  // namespace orve::reference::centres
