#include "invoicing/InvoiceEntry.h"

#include <QFileInfo>
#include <QSet>

#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceParties.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

using store::Store;

namespace {

const QString kListing = QStringLiteral("strcompetition");
const QString kTick = QStringLiteral("X");

// Invoices that belong to no competition carry "X" in c_facture, so that the
// competition runs never take them; the register's competitions carry " "
// until they are invoiced.
const EntryMode kModes[] = {
    {"LIC", "LI", "LIC", kLicenceIndex, "X", true, false, kLicenceSlipText},
    {"DIV", "DV", "DIV", kMiscIndex, "X", true, false, {}},
    {"LI", "LI", "LI", kLeagueIndex, "X", true, true, {}},
    {"JORE", "JO", "JORE", kRegionalDayIndex, "X", true, true, {}},
    // Private complements and the register's competitions are filed under the
    // competition the operator names in the panel.
    {"PRIVE", "PR", "PRIVE", {}, "X", true, false, {}},
    {"COMPET", "FD", {}, {}, " ", false, false, {}},
};

QString text(const store::Row& row, const char* field) {
    return row.value(QLatin1String(field)).toString();
}

InvoiceParty partyOf(const store::Row& h, const char* prefix, const char* account,
                     const char* entity) {
    auto f = [&](const char* suffix) {
        return h.value(QLatin1String(prefix) + QLatin1String(suffix)).toString();
    };
    InvoiceParty p;
    p.account = text(h, account).trimmed();
    p.entity = text(h, entity).trimmed();
    p.name = f("lib");
    p.president = f("president");
    p.address1 = f("ad1");
    p.address2 = f("ad2");
    p.address3 = f("ad3");
    p.address4 = f("ad4");
    p.postcodeTown = f("cp_ville");
    return p;
}

}  // namespace

EntryMode entryMode(const QString& code) {
    for (const EntryMode& m : kModes)
        if (m.code == code) return m;
    throw Refusal(QStringLiteral("Mode de facturation inconnu : %1").arg(code));
}

// ---- The invoice list -------------------------------------------------------

ListingTotals refreshInvoiceListing(Store& store, const EntryMode& mode,
                                    const SelectionCondition& selection) {
    Store& scratch = store.scratch();
    const QStringList listingColumns = scratch.columns(kListing);
    // The mode's mark alone chooses: "X" lists the invoices of every
    // pseudo-competition, whichever mode is open; the panel narrows it.
    store::Condition which(QStringLiteral("c_facture = ?"), {mode.competitionFilter});
    which &= selection.competitions;
    const store::Rows competitions =
        store.select(QStringLiteral("SELECT * FROM strcompetition") + which.where() +
                         QStringLiteral(" ORDER BY c_tri_finale ASC, c_index ASC"),
                     which.params());

    ListingTotals totals;
    store::Transaction tx(scratch);
    scratch.exec(QStringLiteral("DELETE FROM strcompetition"));
    for (const store::Row& competition : competitions) {
        store::Fields base;
        for (int i = 0; i < competition.count(); ++i) {
            const QString field = competition.fieldName(i).toLower();
            if (listingColumns.contains(field) && (field.startsWith(QStringLiteral("c_")) ||
                                                   field == QStringLiteral("index_reference")))
                base.emplace_back(field, competition.value(i));
        }
        store::Condition invoices(QStringLiteral("ent_c_index = ?"),
                                  {text(competition, "c_index")});
        if (!selection.invoiceNumber.isEmpty())
            invoices &=
                store::Condition(QStringLiteral("ent_fact_no = ?"), {selection.invoiceNumber});
        if (selection.monthKey != kNoMonth)
            invoices &= store::Condition(QStringLiteral("substr(ent_fact_tri, 1, 6) = ?"),
                                         {selection.monthKey});
        // A cancelled invoice's rows keep showing its credit note's date.
        const QString creditNote = QStringLiteral(
            "(SELECT a.%1 FROM strentete a WHERE a.ent_fact_origine = e.ent_fact_no AND "
            "a.ent_fact_type = 'A' ORDER BY CAST(a.ent_fact_no AS INTEGER) LIMIT 1)");
        const store::Rows headers = store.select(
            QStringLiteral("SELECT e.ent_fact_no, e.ent_envoi_mail, %1 AS x_avoir_date, %2 AS "
                           "x_avoir_tri FROM strentete e")
                    .arg(creditNote.arg(QStringLiteral("ent_fact_date")),
                         creditNote.arg(QStringLiteral("ent_fact_tri"))) +
                invoices.where(),
            invoices.params());
        for (const store::Row& header : headers) {
            const QString number = text(header, "ent_fact_no");
            const store::Rows lines = store.select(
                QStringLiteral(
                    "SELECT * FROM strfacture WHERE f_num_facture = ? ORDER BY f_num_lig"),
                {paddedInvoiceNumber(number)});
            for (const store::Row& line : lines) {
                store::Fields row = base;
                auto set = [&row](const QString& field, const QVariant& value) {
                    for (auto& [name, v] : row)
                        if (name == field) {
                            v = value;
                            return;
                        }
                    row.emplace_back(field, value);
                };
                set(QStringLiteral("c_num_facture"), number);
                const bool cancelled = !text(header, "x_avoir_date").trimmed().isEmpty();
                set(QStringLiteral("c_date_facture"),
                    cancelled ? header.value("x_avoir_date") : line.value("f_date_fact"));
                set(QStringLiteral("c_tri_facture"),
                    cancelled ? header.value("x_avoir_tri") : line.value("f_tri_date"));
                set(QStringLiteral("c_edt"), QStringLiteral(" "));
                for (const char* f :
                     {"f_num_facture", "f_num_lig", "f_article", "f_libelle", "f_nature", "f_qte",
                      "f_pu", "f_montant", "f_tiers_fact", "f_fact_entite", "f_tri_date"})
                    set(QLatin1String(f), line.value(QLatin1String(f)));
                set(QStringLiteral("ent_envoi_mail"), header.value("ent_envoi_mail"));
                scratch.insert(kListing, row);
                totals.amount = totals.amount + Money::fromVariant(line.value("f_montant"));
                totals.quantity += line.value("f_qte").toLongLong();
                ++totals.rows;
            }
        }
    }
    tx.commit();
    return totals;
}

store::Query invoiceListingQuery(bool tickedOnly) {
    store::Query q;
    q.selectFrom = QStringLiteral("SELECT * FROM strcompetition");
    if (tickedOnly) q.condition = store::Condition(QStringLiteral("c_edt = ?"), {kTick});
    // Numbers are compared as numbers: "999" comes after "1000".
    q.orderBy = QStringLiteral("CAST(c_num_facture AS INTEGER) DESC, f_num_lig ASC");
    return q;
}

void setListingTick(Store& store, const QString& invoiceNumber, bool ticked) {
    store.scratch().update(kListing, {{"c_edt", ticked ? kTick : QStringLiteral(" ")}},
                           QStringLiteral("c_num_facture = ?"), {invoiceNumber});
}

std::vector<QString> tickedInvoices(const Store& store) {
    const store::Rows rows = store.scratch().select(
        QStringLiteral("SELECT c_num_facture FROM strcompetition WHERE c_edt = ? "
                       "ORDER BY c_tri_facture, CAST(c_num_facture AS INTEGER)"),
        {kTick});
    std::vector<QString> numbers;
    QSet<QString> seen;
    for (const store::Row& r : rows) {
        const QString n = r.value(0).toString();
        if (!seen.contains(n)) {
            seen.insert(n);
            numbers.push_back(n);
        }
    }
    return numbers;
}

QString totalAmountText(Money amount) {
    return QStringLiteral("Montant facturé : ") + format::amountEuro(amount);
}

QString totalQuantityText(qint64 quantity) {
    return QStringLiteral("Quantité facturée : ") + format::count(quantity);
}

// ---- The line editor --------------------------------------------------------

app::ListItems articleItems(const Store& store, const QString& nature) {
    app::ListItems items;
    const store::Rows rows = store.select(
        QStringLiteral("SELECT a_index, a_libelle FROM strarticle WHERE a_nature = ? OR "
                       "a_nature = ? ORDER BY a_index"),
        {nature, kTaxNature});
    bool freeText = false;
    for (const store::Row& r : rows) {
        items.push_back({text(r, "a_index"), text(r, "a_libelle")});
        freeText = freeText || items.back().code == kFreeTextArticle;
    }
    // The free-text line is reserved: offered even where no article row names it.
    if (!freeText) items.push_back({kFreeTextArticle, kFreeTextLabel});
    return items;
}

std::optional<Money> articleTariff(const Store& store, const QString& article,
                                   const QString& season, const QString& nature) {
    const auto row = store.selectOne(
        QStringLiteral("SELECT t_tarif FROM strtarifsaison WHERE t_article = ? AND t_saison = ? "
                       "AND t_nature = ?"),
        {article, season, nature});
    if (row) return Money::fromVariant(row->value(0));
    // The taxes offered with every nature are priced under their own nature.
    const auto own = store.selectOne(
        QStringLiteral("SELECT t.t_tarif FROM strtarifsaison t, strarticle a WHERE t.t_article = ? "
                       "AND t.t_saison = ? AND a.a_index = t.t_article AND t.t_nature = a.a_nature "
                       "AND a.a_nature = ?"),
        {article, season, kTaxNature});
    if (!own) return std::nullopt;
    return Money::fromVariant(own->value(0));
}

InvoiceLine editedLine(const Store& store, const QString& article, const QString& quantityText,
                       const QString& priceText, const QString& freeText) {
    if (article.trimmed().isEmpty()) throw Refusal(kChooseArticle);
    InvoiceLine line;
    line.article = article.trimmed();
    bool ok = false;
    line.quantity = quantityText.trimmed().toLongLong(&ok);
    if (!ok)
        throw Refusal(
            QStringLiteral("La quantité doit être un nombre entier : %1").arg(quantityText));
    const auto price = Money::parse(priceText.trimmed());
    if (!price)
        throw Refusal(QStringLiteral("Le prix unitaire doit être un montant en euros (par exemple "
                                     "12,50) : %1")
                          .arg(priceText));
    line.unitPrice = *price;
    if (line.article == kFreeTextArticle) {
        if (freeText.trimmed().isEmpty())
            throw Refusal(QStringLiteral("Saisissez le texte de la ligne."));
        line.text = freeText.trimmed();
    } else {
        const auto name = store.selectOne(
            QStringLiteral("SELECT a_libelle FROM strarticle WHERE a_index = ?"), {line.article});
        if (!name) throw Refusal(QStringLiteral("Article inconnu : %1").arg(line.article));
        line.text = name->value(0).toString();
    }
    return line;
}

InvoiceTotal writeEditedLine(Store& store, const QString& number, const QString& lineNumber,
                             const InvoiceLine& line) {
    store::Transaction tx(store);
    updateLine(store, number, lineNumber, line);
    const InvoiceTotal total = updateTotal(store, number);
    tx.commit();
    return total;
}

// ---- The header -------------------------------------------------------------

void checkCompetitionData(const EntryMode& mode, const QString& title) {
    if (mode.asksCompetitionData && title.trimmed().isEmpty())
        throw Refusal(
            QStringLiteral("Saisissez d'abord les données spécifiques à cette facture : "
                           "Nom et date de la ligue."));
}

InvoiceHeader entryHeader(const Store& store, const EntryMode& mode,
                          const EntryHeaderState& state) {
    InvoiceHeader h;
    h.dateText = state.dateText;
    h.billed = state.billed;
    h.client = onBehalfOf(state.billed, state.client);
    h.dueDateText = state.dueDateText;
    h.level = state.level;
    validateHeader(h);

    h.competitionIndex =
        mode.competitionIndex.isEmpty() ? state.competitionIndex.trimmed() : mode.competitionIndex;
    if (h.competitionIndex.isEmpty() || h.competitionIndex == kNoCompetition)
        throw Refusal(
            QStringLiteral("Indiquez dans \"N° Compétition\" la compétition à facturer."));
    const auto competition = store.selectOne(
        QStringLiteral("SELECT c_intitule, c_nature, c_codification FROM strcompetition "
                       "WHERE c_index = ?"),
        {h.competitionIndex});
    if (!competition)
        throw Refusal(QStringLiteral("La compétition %1 n'existe pas.").arg(h.competitionIndex));
    h.nature = mode.nature.isEmpty() ? text(*competition, "c_nature").trimmed() : mode.nature;
    h.competitionTitle = text(*competition, "c_intitule");
    h.codification = text(*competition, "c_codification");
    if (mode.asksCompetitionData) {
        checkCompetitionData(mode, state.competitionTitle);
        h.competitionTitle = state.competitionTitle.trimmed();
        // The competition sheet's number stands in the codification of the invoice.
        if (!state.competitionNumber.trimmed().isEmpty())
            h.codification = state.competitionNumber.trimmed();
    }
    const QString deposit = state.depositText.trimmed();
    const auto paid = Money::parse(deposit.isEmpty() ? QStringLiteral("0") : deposit);
    if (!paid || paid->cents() < 0)
        throw Refusal(QStringLiteral("Le montant déjà payé doit être un montant en euros (par "
                                     "exemple 12,50) : %1")
                          .arg(state.depositText));
    h.deposit = *paid;
    return h;
}

QString saveEntryHeader(Store& store, const EntryMode& mode, const EntryHeaderState& state,
                        const QString& number, const QDate& today) {
    const InvoiceHeader header = entryHeader(store, mode, state);
    if (number.trimmed().isEmpty()) return createInvoice(store, header, today);
    store::Transaction tx(store);
    modifyInvoice(store, number, header);
    updateTotal(store, number);
    tx.commit();
    return number;
}

EntryInvoice loadEntryInvoice(const Store& store, const QString& number) {
    const store::Row h = requireHeader(store, number);
    EntryInvoice inv;
    inv.number = text(h, "ent_fact_no");
    inv.type = text(h, "ent_fact_type");
    inv.nature = text(h, "ent_nature");
    EntryHeaderState& s = inv.state;
    s.dateText = text(h, "ent_fact_date");
    s.dueDateText = text(h, "ent_fact_echeance");
    s.billed = partyOf(h, "ent_fact_", "ent_tiers_fact", "ent_fact_entite");
    s.billed.mail1 = text(h, "ent_fact_mail1");
    s.billed.mail2 = text(h, "ent_fact_mail2");
    s.client = partyOf(h, "ent_clt_", "ent_tiers_clt", "ent_clt_entite");
    s.competitionIndex = text(h, "ent_c_index");
    s.competitionNumber = text(h, "ent_c_codification").trimmed();
    s.competitionTitle = text(h, "ent_fact_competition");
    s.depositText = format::fileAmount(Money::fromVariant(h.value("ent_acompte")));
    inv.lines = readLines(store, inv.number);
    return inv;
}

QString existingDocumentName(const Store& store, const QString& invoiceFolder,
                             const QString& number) {
    const auto h = store.selectOne(
        QStringLiteral(
            "SELECT ent_tiers_fact, ent_fact_entite FROM strentete WHERE ent_fact_no = ?"),
        {number.trimmed()});
    if (!h) return {};
    const QFileInfo file(invoicePdfPath(invoiceFolder, text(*h, "ent_tiers_fact"),
                                        text(*h, "ent_fact_entite"), number.trimmed()));
    return file.exists() ? file.fileName() : QString();
}

}  // namespace orve::invoicing
