#include "invoicing/MailTexts.h"

#include "store/Refusal.h"

namespace orve::invoicing {

namespace {
MailText textOf(const store::Row& r) {
    return {r.value(QStringLiteral("mail_nom")).toString(),
            r.value(QStringLiteral("mail_memo")).toString()};
}
}  // namespace

store::Query mailTextsQuery() {
    store::Query q;
    q.selectFrom = QStringLiteral("SELECT mail_nom, mail_memo FROM strmail");
    q.orderBy = QStringLiteral("mail_nom");
    return q;
}

std::vector<MailText> mailTexts(const store::Store& store) {
    std::vector<MailText> out;
    for (const store::Row& r : store.select(mailTextsQuery())) out.push_back(textOf(r));
    return out;
}

std::optional<MailText> findMailText(const store::Store& store, const QString& name) {
    // mail_nom compares without regard to case on both engines.
    const auto r = store.selectOne(
        QStringLiteral("SELECT mail_nom, mail_memo FROM strmail WHERE mail_nom = ?"),
        {name.trimmed()});
    if (!r) return std::nullopt;
    return textOf(*r);
}

bool saveMailText(store::Store& store, const QString& name, const QString& body) {
    const QString key = name.trimmed();
    if (key.isEmpty()) throw Refusal(kNameRequired);
    store::Transaction tx(store);
    const bool replaced =
        store.update(QStringLiteral("strmail"), {{"mail_nom", key}, {"mail_memo", body}},
                     QStringLiteral("mail_nom = ?"), {key}) > 0;
    if (!replaced)
        store.insert(QStringLiteral("strmail"), {{"mail_nom", key}, {"mail_memo", body}});
    tx.commit();
    return replaced;
}

QString defaultMailText(const store::Store& store, const QString& league) {
    if (!league.trimmed().isEmpty())
        if (const auto own = findMailText(store, league)) return own->body;
    const auto texts = mailTexts(store);
    if (!texts.empty()) return texts.front().body;
    return kBuiltInMailText;
}

}  // namespace orve::invoicing
