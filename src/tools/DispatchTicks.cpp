#include "tools/DispatchTicks.h"

#include <QSet>

namespace orve::tools {

namespace {

const QString kList = QStringLiteral("pointage");
const QString kNoTick = QStringLiteral(" ");
const char* const kColumns[] = {"ent_fact_no",    "ent_fact_type",  "ent_nature",
                                "ent_fact_date",  "ent_fact_tri",   "ent_fact_competition",
                                "ent_c_index",    "ent_fact_lib",   "ent_fact_president",
                                "ent_fact_mail1", "ent_fact_mail2", "ent_montant",
                                "ent_envoi_mail"};

}  // namespace

void loadDispatchList(store::Store& store) {
    store::Store& scratch = store.scratch();
    QSet<QString> ticked;
    for (const QString& n : tickedForDispatch(store)) ticked.insert(n);
    QStringList columns;
    for (const char* c : kColumns) columns << QLatin1String(c);
    const store::Rows headers =
        store.select(QStringLiteral("SELECT %1 FROM strentete").arg(columns.join(", ")));
    store::Transaction tx(scratch);
    scratch.exec(QStringLiteral("DELETE FROM strenvoi WHERE x_liste = ?"), {kList});
    for (const store::Row& h : headers) {
        store::Fields row{{"x_liste", kList}};
        for (const QString& c : columns) row.emplace_back(c, h.value(c));
        const QString number = h.value(QStringLiteral("ent_fact_no")).toString();
        row.emplace_back("c_edt", ticked.contains(number) ? QStringLiteral("X") : kNoTick);
        scratch.insert(QStringLiteral("strenvoi"), row);
    }
    tx.commit();
}

void clearDispatchList(store::Store& store) {
    store.scratch().exec(QStringLiteral("DELETE FROM strenvoi WHERE x_liste = ?"), {kList});
}

store::Query dispatchQuery(DispatchList list) {
    store::Query q;
    q.selectFrom = QStringLiteral("SELECT * FROM strenvoi");
    // Any mark but "N" counts as sent.
    q.condition = store::Condition(list == DispatchList::Unsent
                                       ? QStringLiteral("x_liste = ? AND ent_envoi_mail = 'N'")
                                       : QStringLiteral("x_liste = ? AND (ent_envoi_mail <> 'N' OR "
                                                        "ent_envoi_mail IS NULL)"),
                                   {kList});
    q.orderBy = QStringLiteral("CAST(ent_fact_no AS INTEGER), ent_fact_no");
    return q;
}

void setDispatchTick(store::Store& store, const QString& invoice, const QString& typed) {
    const QString t = typed.trimmed();
    store.scratch().update(
        QStringLiteral("strenvoi"), {{"c_edt", t.isEmpty() ? kNoTick : t.left(1)}},
        QStringLiteral("x_liste = ? AND ent_fact_no = ?"), {kList, invoice.trimmed()});
}

std::vector<QString> tickedForDispatch(const store::Store& store) {
    std::vector<QString> out;
    for (const store::Row& r : store.scratch().select(
             QStringLiteral("SELECT ent_fact_no FROM strenvoi WHERE x_liste = ? AND "
                            "trim(COALESCE(c_edt, '')) <> '' ORDER BY CAST(ent_fact_no AS "
                            "INTEGER), ent_fact_no"),
             {kList}))
        out.push_back(r.value(0).toString());
    return out;
}

QString dispatchQuestion(DispatchList shown) {
    return shown == DispatchList::Unsent
               ? QStringLiteral("Etes-vous certain que ces factures ont été envoyées par mail ?")
               : QStringLiteral("Etes-vous certain de vouloir renvoyer ces factures par mail ?");
}

int applyDispatchChange(store::Store& store, DispatchList shown) {
    const std::vector<QString> ticked = tickedForDispatch(store);
    const QString mark = shown == DispatchList::Unsent ? QStringLiteral("O") : QStringLiteral("N");
    int changed = 0;
    {
        store::Transaction tx(store);
        for (const QString& number : ticked)
            changed += store.update(QStringLiteral("strentete"), {{"ent_envoi_mail", mark}},
                                    QStringLiteral("ent_fact_no = ?"), {number});
        tx.commit();
    }
    store.scratch().update(QStringLiteral("strenvoi"), {{"c_edt", kNoTick}},
                           QStringLiteral("x_liste = ?"), {kList});
    loadDispatchList(store);
    return changed;
}

}  // namespace orve::tools
