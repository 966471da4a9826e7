#include "invoicing/InvoiceParties.h"

#include <optional>

#include "reference/ReferenceCodes.h"
#include "store/Condition.h"
#include "store/Refusal.h"

namespace orve::invoicing {

using store::trimmedText;

using app::ListItem;
using app::ListItems;
using reference::formatNumber;
using store::Store;

namespace {

// Two parts of one address line; a blank part leaves no stray separator.
QString joined(const QString& a, const QString& separator, const QString& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return a + separator + b;
}

ListItems items(const store::Rows& rows, const char* code, const char* label) {
    ListItems out;
    out.reserve(rows.size());
    for (const auto& r : rows) out.push_back({trimmedText(r, code), trimmedText(r, label)});
    return out;
}

// A LIKE pattern that finds the typed text as it stands: its own "%" and "_"
// are not wildcards.
QString literalPattern(const QString& typed) {
    QString out;
    for (const QChar c : typed) {
        if (c == QChar('!') || c == QChar('%') || c == QChar('_')) out += QChar('!');
        out += c;
    }
    return out;
}

QString refusedInvoice(const QString& invoiceNumber, const QString& what) {
    return QStringLiteral("Impossible d'éditer la facture ") + invoiceNumber.trimmed() + what;
}

// The entry screen writes "postcode - town"; a centre "postcode-town".
const QString kEntrySeparator = QStringLiteral(" - ");

// The committee as itself: its own address, filed under "CD" + its number.
InvoiceParty committeeItself(const reference::CommitteeRecord& c) {
    InvoiceParty p = partyFromBlock(c.block, QStringLiteral("CD") + c.number, kEntrySeparator);
    p.name = QStringLiteral("C.D. ") + c.block.name;
    p.president = joined(c.presidentTitle, QStringLiteral(" "), c.president);
    return p;
}

}  // namespace

// Any party of the federation may be invoiced from any level: the lists are
// not narrowed to what the operator's reference screens show.
ListItems leagueItems(const Store& store) {
    return items(store.select(QStringLiteral("SELECT re_code, re_lib FROM strregion ORDER BY "
                                             "re_code")),
                 "re_code", "re_lib");
}

ListItems committeeItems(const Store& store) {
    return items(store.select(QStringLiteral("SELECT de_no, de_lib FROM strdept ORDER BY de_no")),
                 "de_no", "de_lib");
}

ListItems clubItems(const Store& store, const QString& department) {
    return items(store.select(QStringLiteral("SELECT club_code, club_nom FROM strclub WHERE "
                                             "club_dept = ? ORDER BY club_nom, club_code"),
                              {formatNumber(department, 3)}),
                 "club_code", "club_nom");
}

ListItems centreItems(const Store& store, const QString& department) {
    return items(store.select(QStringLiteral("SELECT b_compte_tiers, b_ville FROM strbowling "
                                             "WHERE b_dept = ? ORDER BY b_ville, b_compte_tiers"),
                              {formatNumber(department, 3)}),
                 "b_compte_tiers", "b_ville");
}

ListItems licenseeItems(const Store& store, const QString& typed) {
    QString name = typed.trimmed();
    const bool beginsWith = name.startsWith(QChar('%'));
    if (beginsWith) name = name.mid(1);
    const QString pattern = (beginsWith ? QString() : QStringLiteral("%")) +
                            literalPattern(store::caselessText(name)) + QStringLiteral("%");
    ListItems out;
    for (const auto& r : store.select(
             QStringLiteral("SELECT l_an, l_num, l_nom, l_prenom FROM strlicence WHERE %1 LIKE "
                            "? ESCAPE '!' ORDER BY l_nom, l_prenom, l_an, l_num")
                 .arg(store::caselessSql(QStringLiteral("l_nom"))),
             {pattern}))
        out.push_back(
            {trimmedText(r, "l_an") + QChar('-') + trimmedText(r, "l_num"),
             joined(trimmedText(r, "l_nom"), QStringLiteral(" "), trimmedText(r, "l_prenom"))});
    return out;
}

QString nameFirstText(const ListItem& item) {
    return item.label + QStringLiteral(" # ") + item.code;
}

QString nameFirstKey(const QString& itemText) {
    if (itemText == app::kChoose) return {};
    const int hash = itemText.lastIndexOf(QChar('#'));
    return (hash < 0 ? itemText : itemText.mid(hash + 1)).trimmed();
}

InvoiceParty partyFromBlock(const reference::PostalBlock& block, const QString& account,
                            const QString& separator) {
    InvoiceParty p;
    p.account = account;
    p.name = block.name;
    p.address1 = block.lines[0];
    p.address2 = block.lines[1];
    p.address3 = block.lines[2];
    p.address4 = block.lines[3];
    p.postcodeTown = block.postcodeTown(separator);
    p.mail1 = block.mail1;
    p.mail2 = block.mail2;
    return p;
}

InvoiceParty leagueParty(const Store& store, const QString& code) {
    const auto l = reference::leagueRecord(store, code);
    if (!l) throw Refusal(QStringLiteral("La ligue %1 n'existe pas.").arg(code.trimmed()));
    InvoiceParty p = partyFromBlock(l->block, l->code, kEntrySeparator);
    p.name = QStringLiteral("L.R. ") + l->block.name;
    p.president = joined(l->presidentTitle, QStringLiteral(" "), l->president);
    return p;
}

InvoiceParty committeeParty(const Store& store, const QString& number, AddressBlock block,
                            const QString& invoiceNumber) {
    const QString no = formatNumber(number, 3);
    const auto c = reference::committeeRecord(store, no);
    if (!c)
        throw Refusal(
            refusedInvoice(invoiceNumber, QStringLiteral(" - veuillez créer le dept : ") + no));
    if (block == AddressBlock::OnBehalfOf) return committeeItself(*c);
    const QString entity = c->invoicedBy.toUpper();
    if (entity.isEmpty())
        throw Refusal(
            refusedInvoice(invoiceNumber, QStringLiteral(" - compléter le dept : ") + no));
    if (entity.startsWith(QStringLiteral("CD"))) {
        const QString other = formatNumber(entity.mid(2), 3);
        if (other == no) return committeeItself(*c);
        const auto o = reference::committeeRecord(store, other);
        if (!o)
            throw Refusal(refusedInvoice(invoiceNumber,
                                         QStringLiteral(" - veuillez créer le dept : ") + other));
        return committeeItself(*o);
    }
    // Through its league: the code named, or the committee's own league for a bare "LR".
    const QString league = entity == QStringLiteral("LR") ? c->league : entity;
    const auto l = reference::leagueRecord(store, league);
    if (!l)
        throw Refusal(refusedInvoice(invoiceNumber,
                                     QStringLiteral(" - veuillez créer la region : ") + league));
    // The league pays for its committee at its CSR.
    InvoiceParty p = leagueParty(store, league);
    if (!l->csrTitle.isEmpty() || !l->csrName.isEmpty())
        p.president = QStringLiteral("C.S.R. ") + l->csrTitle + QStringLiteral(" ") + l->csrName;
    return p;
}

InvoiceParty clubParty(const Store& store, const QString& code) {
    const auto c = reference::clubRecord(store, code);
    if (!c) throw Refusal(QStringLiteral("Le club %1 n'existe pas.").arg(code.trimmed()));
    InvoiceParty p = partyFromBlock(c->block, c->code, kEntrySeparator);
    p.president = c->president;
    return p;
}

InvoiceParty centreParty(const Store& store, const QString& account) {
    const auto c = reference::centreRecord(store, account);
    if (!c)
        throw Refusal(
            QStringLiteral("Le centre de bowling %1 n'existe pas.").arg(account.trimmed()));
    InvoiceParty p = partyFromBlock(c->own, c->account, QStringLiteral("-"));
    p.name = QStringLiteral("BOWLING de :") + QStringLiteral(" ") + c->own.town;
    return p;
}

InvoiceParty licenseeParty(const Store& store, const QString& key) {
    const QString k = key.trimmed();
    const int dash = k.indexOf(QChar('-'));
    const auto r = dash < 0 ? std::nullopt
                            : store.selectOne(QStringLiteral("SELECT * FROM strlicence WHERE "
                                                             "l_an = ? AND l_num = ?"),
                                              {k.left(dash), k.mid(dash + 1)});
    if (!r) throw Refusal(QStringLiteral("Le licencié %1 n'existe pas.").arg(k));
    InvoiceParty p;
    p.entity = QStringLiteral("LIC") + trimmedText(*r, "l_num");
    p.name = joined(trimmedText(*r, "l_nom"), QStringLiteral(" "), trimmedText(*r, "l_prenom"));
    p.address1 = trimmedText(*r, "l_ad1");
    p.address2 = trimmedText(*r, "l_ad2");
    p.address3 = trimmedText(*r, "l_ad3");
    p.postcodeTown =
        joined(trimmedText(*r, "l_cp"), QStringLiteral(" "), trimmedText(*r, "l_ville"));
    p.mail1 = trimmedText(*r, "l_mail");
    return p;
}

InvoiceParty otherParty(const QStringList& lines, const QString& mail1, const QString& mail2) {
    auto line = [&](int i) { return i < lines.size() ? lines[i].trimmed() : QString(); };
    InvoiceParty p;
    p.entity = kOtherEntity;
    p.name = line(0);
    p.president = line(1);
    p.address1 = line(2);
    p.address2 = line(3);
    p.address3 = line(4);
    p.address4 = line(5);
    p.postcodeTown = line(6);
    p.mail1 = mail1.trimmed();
    p.mail2 = mail2.trimmed();
    return p;
}

InvoiceParty onBehalfOf(const InvoiceParty& billed, const InvoiceParty& chosen) {
    return chosen.isChosen() ? chosen : billed;
}

}  // namespace orve::invoicing
