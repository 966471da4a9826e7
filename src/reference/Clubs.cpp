#include "reference/Clubs.h"

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference::clubs {

const VisibilityColumns& visibility() {
    static const VisibilityColumns columns{"club_region", "club_district", "club_dept"};
    return columns;
}

const QStringList& cardColumns() {
    static const QStringList columns{"club_nom",   "club_president", "club_ad1", "club_ad2",
                                     "club_ad3",   "club_ad4",       "club_cp",  "club_ville",
                                     "club_mail1", "club_mail2"};
    return columns;
}

store::Query listing(const Viewer& viewer) {
    return {QStringLiteral("select * from strclub"), visibilityFilter(viewer, visibility()),
            QStringLiteral("club_code")};
}

store::Rows list(store::Store& store, const Viewer& viewer) {
    return store.select(listing(viewer));
}

std::optional<store::Row> find(const store::Store& store, const QString& code) {
    return store.selectOne(QStringLiteral("select * from strclub where club_code = ?"), {code});
}

QString clubKey(const QString& department, const QString& number) {
    return QStringLiteral("CL") + formatNumber(department, 3).right(2) + formatNumber(number, 3);
}

namespace {
ListItems leagues(const store::Rows& rows) {
    ListItems result;
    for (const auto& r : rows)
        result.push_back({r.value("re_code").toString(), r.value("re_lib").toString()});
    return result;
}
ListItems departments(const store::Rows& rows) {
    ListItems result;
    for (const auto& r : rows)
        result.push_back({r.value("de_no").toString(), r.value("de_lib").toString()});
    return result;
}
}  // namespace

ListItems leagueItems(store::Store& store, const Viewer& viewer) {
    if (viewer.isNational())
        return leagues(store.select("select * from strregion order by re_code"));
    if (viewer.isCommitteeUser())
        return leagues(
            store.select("select * from strregion where re_code in (select de_region from strdept "
                         "where de_no = ?) "
                         "order by re_code",
                         {viewer.committeeNumber()}));
    return leagues(store.select("select * from strregion where re_code = ? order by re_code",
                                {viewer.league}));
}

ListItems departmentItems(store::Store& store, const Viewer& viewer) {
    if (viewer.isNational())
        return departments(store.select("select * from strdept order by de_no"));
    if (viewer.isCommitteeUser())
        return departments(store.select("select * from strdept where de_no = ? order by de_no",
                                        {viewer.committeeNumber()}));
    return departments(
        store.select("select * from strdept where de_region = ? order by de_no", {viewer.league}));
}

std::optional<ListItem> leagueItem(store::Store& store, const QString& code) {
    const auto row =
        store.selectOne("select * from strregion where re_code = ?", {formatNumber(code, 2)});
    if (!row) return std::nullopt;
    return ListItem{row->value("re_code").toString(), row->value("re_lib").toString()};
}

std::optional<ListItem> departmentItem(store::Store& store, const QString& number) {
    const auto row =
        store.selectOne("select * from strdept where de_no = ?", {formatNumber(number, 3)});
    if (!row) return std::nullopt;
    return ListItem{row->value("de_no").toString(), row->value("de_lib").toString()};
}

namespace {
void checkDistrict(const ClubEdit& edit) {
    if (edit.district.trimmed().isEmpty()) throw Refusal(QStringLiteral("District obligatoire"));
}

// After the card's own checks: what no club may be saved with.
void checkEntries(const ClubEdit& edit) {
    requireText(QStringLiteral("Nom du Club"), edit.card.value("club_nom"));
    requireDigits(QStringLiteral("Code comptable"), edit.account);
}

store::Fields commonFields(const ClubEdit& edit, const QDate& today) {
    auto fields = fieldsOf(edit.card, cardColumns());
    fields.emplace_back("club_district", edit.district);
    fields.emplace_back("club_compta", format::padValue(edit.account, 6));
    fields.emplace_back("club_date_enreg", format::displayDate(today));
    return fields;
}
}  // namespace

QString add(store::Store& store, const ClubEdit& edit, const QDate& today) {
    checkDistrict(edit);
    if (edit.league.trimmed().isEmpty()) throw Refusal(QStringLiteral("Ligue obligatoire"));
    if (edit.department.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Département obligatoire"));
    if (!isWholeNumber(edit.number))
        throw Refusal(
            QStringLiteral("Le numéro du club doit être un nombre : %1").arg(edit.number));
    const QString department = formatNumber(edit.department, 3);
    const QString number = formatNumber(edit.number, 3);
    const QString key = clubKey(department, number);
    store::Transaction tx(store);
    if (find(store, key)) throw Refusal(QStringLiteral("Ce club existe déjà..."));
    checkEntries(edit);
    store::Fields fields{{"club_code", key},
                         {"club_num", number},
                         {"club_region", edit.league.trimmed()},
                         {"club_dept", department}};
    for (auto& f : commonFields(edit, today)) fields.push_back(std::move(f));
    store.insert("strclub", fields);
    tx.commit();
    return key;
}

void save(store::Store& store, const QString& code, const ClubEdit& edit, const QDate& today) {
    checkDistrict(edit);
    checkEntries(edit);
    store::Transaction tx(store);
    if (store.update("strclub", commonFields(edit, today), "club_code = ?", {code}) == 0)
        throw Refusal(
            QStringLiteral("Le club %1 n'existe plus : rien n'a été enregistré.").arg(code));
    tx.commit();
}

}  // namespace orve::reference::clubs
