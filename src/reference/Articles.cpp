#include "reference/Articles.h"

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::reference::articles {

store::Query listing() {
    return {QStringLiteral("select * from strarticle"), {}, QStringLiteral("a_index")};
}

store::Rows list(store::Store& store) { return store.select(listing()); }

std::optional<store::Row> find(store::Store& store, const QString& code) {
    return store.selectOne(QStringLiteral("select * from strarticle where a_index = ?"), {code});
}

ListItems natureItems(const Viewer& viewer) {
    ListItems items{{"DIV", QStringLiteral("facturation divers")},
                    {"LIC", QStringLiteral("facturation licences")}};
    if (viewer.isNational()) {
        items.push_back({"PRIVE", QStringLiteral("compétitions privées")});
        items.push_back({"XXX", QStringLiteral("compétition fédérales")});
        items.push_back({"LI", QStringLiteral("ligues")});
        items.push_back({"JORE", QStringLiteral("journées LR CD")});
    }
    return items;
}

QString natureDisplay(const QString& nature) {
    if (nature == QStringLiteral("DIV")) return QStringLiteral("facturation divers");
    if (nature == QStringLiteral("LIC")) return QStringLiteral("facturation licences");
    if (nature == QStringLiteral("XXX")) return QStringLiteral("Facturation compétition fédérale");
    if (nature == QStringLiteral("PRIVE")) return QStringLiteral("Facturation compétition privées");
    if (nature == QStringLiteral("LI")) return QStringLiteral("LI # ligues");
    if (nature == QStringLiteral("JORE")) return QStringLiteral("JORE # journées LR CD");
    return nature;
}

QString nextCode(store::Store& store) {
    const QVariant last = store.scalar(
        QStringLiteral(
            "select a_index from strarticle where a_index < ? order by a_index desc limit 1"),
        {kFirstReservedCode});
    if (last.isNull()) return format::zeroPad(1, 8);
    return format::zeroPad(format::leadingNumber(last.toString()) + 1, 8);
}

AccountCheck checkAccount(const QString& text) {
    if (!isWholeNumber(text))
        return {text, QStringLiteral("L'affectaion comptable est une zone numeric")};
    const QString t = text.trimmed();
    return {t.size() >= 9 ? t : QString(9 - t.size(), QChar('0')) + t, {}};
}

namespace {
store::Fields fieldsOf(const ArticleEdit& edit) {
    if (edit.nature.trimmed().isEmpty()) throw Refusal(QStringLiteral("code nature obligatoire"));
    requireText(QStringLiteral("Libellé"), edit.label);
    requireDigits(QStringLiteral("Compte comptable"), edit.account);
    return {{"a_cpta", checkAccount(edit.account).text},
            {"a_libelle", edit.label},
            {"a_nature", edit.nature.trimmed()},
            {"a_analytique", edit.analytic}};
}
}  // namespace

QString add(store::Store& store, const ArticleEdit& edit) {
    auto fields = fieldsOf(edit);
    store::Transaction tx(store);
    const QString code = nextCode(store);
    fields.insert(fields.begin(), {"a_index", code});
    store.insert("strarticle", fields);
    tx.commit();
    return code;
}

void save(store::Store& store, const QString& code, const ArticleEdit& edit) {
    const auto fields = fieldsOf(edit);
    store::Transaction tx(store);
    const QString key = formatNumber(code, 8);
    if (store.update("strarticle", fields, "a_index = ?", {key}) == 0)
        throw Refusal(
            QStringLiteral("L'article %1 n'existe plus : rien n'a été enregistré.").arg(key));
    tx.commit();
}

store::Query tariffListing(const QString& article, const QString& nature) {
    return {QStringLiteral("select * from strtarifsaison"),
            {QStringLiteral("t_article = ? and t_nature = ?"), {article, nature}},
            QStringLiteral("t_saison")};
}

store::Rows tariffs(store::Store& store, const QString& article, const QString& nature) {
    return store.select(tariffListing(article, nature));
}

void saveTariff(store::Store& store, const TariffEdit& edit, bool adding) {
    const QString season = edit.season.trimmed();
    if (!isWholeNumber(season) || season.toInt() < kFirstSeason || season.toInt() > kLastSeason)
        throw Refusal(QStringLiteral("code saison incohérent (compris entre 2018 et 2030)"));
    if (edit.article.isEmpty()) throw Refusal(QStringLiteral("Choisissez d'abord un article."));
    const auto price = Money::parse(edit.price);
    if (!price)
        throw Refusal(
            QStringLiteral("Le tarif doit être un montant en euros (par exemple 12,50) : %1")
                .arg(edit.price));
    store::Transaction tx(store);
    const QString where = QStringLiteral("t_article = ? and t_saison = ? and t_nature = ?");
    const store::Params key{edit.article, season, edit.nature};
    const bool found =
        store.exists(QStringLiteral("select 1 from strtarifsaison where ") + where, key);
    const store::Fields fields{{"t_article", edit.article},
                               {"t_saison", season},
                               {"t_tarif", qlonglong(price->cents())},
                               {"t_nature", edit.nature}};
    if (adding) {
        if (found) throw Refusal(QStringLiteral("ce tarif est déjà enregistré"));
        store.insert("strtarifsaison", fields);
    } else {
        if (!found)
            throw Refusal(
                QStringLiteral("Aucun tarif n'est enregistré pour la saison %1.").arg(season));
        store.update("strtarifsaison", fields, where, key);
    }
    tx.commit();
}

}  // namespace orve::reference::articles
