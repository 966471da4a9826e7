#include "reference/Leagues.h"

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference::leagues {

const QStringList& cardColumns() {
    static const QStringList columns{
        "re_lib",   "re_president_int", "re_president", "re_csr_int", "re_csr_nom",
        "re_ad1",   "re_ad2",           "re_ad3",       "re_ad4",     "re_cp",
        "re_ville", "re_mail1",         "re_mail2"};
    return columns;
}

store::Query listing() {
    return {QStringLiteral("select * from strregion"), {}, QStringLiteral("rowid")};
}

store::Rows list(store::Store& store) { return store.select(listing()); }

std::optional<store::Row> find(const store::Store& store, const QString& code) {
    return store.selectOne(QStringLiteral("select * from strregion where re_code = ?"), {code});
}

QString name(store::Store& store, const QString& code) {
    const auto row = find(store, code);
    return row ? row->value("re_lib").toString() : QString();
}

Invoicing invoicingOf(const QString& reFact) {
    return reFact == QStringLiteral("LR") ? Invoicing::League : Invoicing::Csr;
}

void save(store::Store& store, const QString& code, const Card& card, Invoicing invoicing,
          const QDate& today) {
    requireText(QStringLiteral("Intitulé de la Ligue Régionale"), card.value("re_lib"));
    if (invoicing == Invoicing::Csr && (card.value("re_csr_nom").trimmed().isEmpty() ||
                                        card.value("re_mail2").trimmed().isEmpty()))
        throw Refusal(QStringLiteral("Nom et Mail du Président du CSR obligatoires"));
    store::Transaction tx(store);
    auto fields = fieldsOf(card, cardColumns());
    fields.emplace_back("re_fact", invoicing == Invoicing::League ? "LR" : "CSR");
    fields.emplace_back("re_date_enreg", format::displayDate(today));
    if (store.update("strregion", fields, "re_code = ?", {code}) == 0)
        throw Refusal(
            QStringLiteral("La ligue %1 n'existe plus : rien n'a été enregistré.").arg(code));
    tx.commit();
}

}  // namespace orve::reference::leagues
