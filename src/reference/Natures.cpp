#include "reference/Natures.h"

#include "reference/ReferenceCodes.h"
#include "store/Refusal.h"

namespace orve::reference::natures {

namespace {
const QString kYes = QStringLiteral("O");
const QString kNo = QStringLiteral("N");
QString flag(bool b) { return b ? kYes : kNo; }
}  // namespace

store::Query listing() {
    return {QStringLiteral("select * from strnaturec"), {}, QStringLiteral("n_code")};
}

store::Rows list(store::Store& store) { return store.select(listing()); }

Nature fromRow(const store::Row& row) {
    // Only an explicit "E", "N" counts as such; anything else reads as the other choice.
    return {row.value("n_code").toString(), row.value("n_libelle").toString(),
            row.value("n_fact").toString() == QStringLiteral("E"),
            row.value("n_fact_ligne").toString() != kNo,
            row.value("n_fact_engagement").toString() != kNo};
}

int save(store::Store& store, const Nature& nature, bool adding) {
    const QString code = nature.code.toUpper();
    const QString fact = nature.onEntries ? QStringLiteral("E") : QStringLiteral("R");
    if (code.trimmed().isEmpty()) throw Refusal(QStringLiteral("code nature obligatoire"));
    store::Transaction tx(store);
    const bool found =
        store.exists(QStringLiteral("select 1 from strnaturec where n_code = ?"), {nature.code});
    if (adding && found) throw Refusal(QStringLiteral("Ce code existe déjà"));
    requireText(QStringLiteral("Libellé"), nature.label);
    const store::Fields fields{{"n_code", code},
                               {"n_libelle", nature.label.toUpper()},
                               {"n_type", "FD"},
                               {"n_fact", fact},
                               {"n_fact_ligne", flag(nature.invoiceLines)},
                               {"n_fact_engagement", flag(nature.invoiceEntryFees)}};
    if (adding) {
        store.insert("strnaturec", fields);
    } else if (store.update("strnaturec", fields, "n_code = ?", {nature.code}) == 0) {
        throw Refusal(
            QStringLiteral("La nature %1 n'existe plus : rien n'a été enregistré.").arg(code));
    }
    const int rewritten =
        store.exec(QStringLiteral("update strcompetition set c_nat_fact = ?, c_fact_ligne = ?, "
                                  "c_fact_engagement = ? where c_nature = ?"),
                   {fact, flag(nature.invoiceLines), flag(nature.invoiceEntryFees), code});
    tx.commit();
    return rewritten;
}

void remove(store::Store& store, const QString& code) {
    store::Transaction tx(store);
    store.exec(QStringLiteral("delete from strnaturec where n_code = ?"), {code});
    tx.commit();
}

}  // namespace orve::reference::natures
