#include "invoicing/InvoiceRecords.h"

#include "invoicing/RecordStates.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

using store::Fields;
using store::Store;
using store::Transaction;

namespace {

// A party is filed by account or by entity code, never both; the unused one is one blank.
QString orBlank(const QString& text) {
    const QString t = text.trimmed();
    return t.isEmpty() ? QStringLiteral(" ") : t;
}

Fields headerFields(const InvoiceHeader& h, const QDate& date) {
    const bool byEntity = !h.billed.entity.trimmed().isEmpty();
    const bool clientByEntity = !h.client.entity.trimmed().isEmpty();
    // A credit note is due the day it is made.
    const QString due = h.type == kCreditNoteType || h.dueDateText.trimmed().isEmpty()
                            ? format::displayDate(date)
                            : h.dueDateText.trimmed();
    return {{"ent_fact_type", h.type},
            {"ent_nature", h.nature},
            {"ent_fact_date", format::displayDate(date)},
            {"ent_fact_tri", format::sortDate(date)},
            {"ent_fact_echeance", due},
            {"ent_fact_competition", h.competitionTitle},
            {"ent_c_index", h.competitionIndex},
            {"ent_c_codification", h.codification},
            {"ent_tiers_fact", byEntity ? QStringLiteral(" ") : orBlank(h.billed.account)},
            {"ent_fact_entite", byEntity ? h.billed.entity.trimmed() : QStringLiteral(" ")},
            {"ent_fact_lib", h.billed.name},
            {"ent_fact_president", h.billed.president},
            {"ent_fact_ad1", h.billed.address1},
            {"ent_fact_ad2", h.billed.address2},
            {"ent_fact_ad3", h.billed.address3},
            {"ent_fact_ad4", h.billed.address4},
            {"ent_fact_cp_ville", h.billed.postcodeTown},
            {"ent_fact_mail1", h.billed.mail1},
            {"ent_fact_mail2", h.billed.mail2},
            {"ent_tiers_clt", clientByEntity ? QStringLiteral(" ") : orBlank(h.client.account)},
            {"ent_clt_entite", clientByEntity ? h.client.entity.trimmed() : QStringLiteral(" ")},
            {"ent_clt_lib", h.client.name},
            {"ent_clt_president", h.client.president},
            {"ent_clt_ad1", h.client.address1},
            {"ent_clt_ad2", h.client.address2},
            {"ent_clt_ad3", h.client.address3},
            {"ent_clt_ad4", h.client.address4},
            {"ent_clt_cp_ville", h.client.postcodeTown},
            {"ent_acompte", QVariant::fromValue<qint64>(h.deposit.cents())}};
}

// The highest line number by value; copied lines ("99") are not counted.
qint64 lastLineNumber(const Store& store, const QString& padded) {
    return store
        .scalar(QStringLiteral("SELECT MAX(CAST(f_num_lig AS INTEGER)) FROM strfacture "
                               "WHERE f_num_facture = ? AND f_num_lig <> ?"),
                {padded, kCopyLineNumber})
        .toLongLong();
}

// Writes one line carrying the header's number, dates, parties, nature and competition.
void insertLine(Store& store, const store::Row& header, const QString& lineNumber,
                const QString& article, const QString& text, qint64 quantity, Money unitPrice,
                Money amount) {
    store.insert(QStringLiteral("strfacture"),
                 {{"f_num_facture", paddedInvoiceNumber(header.value("ent_fact_no").toString())},
                  {"f_date_fact", header.value("ent_fact_date")},
                  {"f_tri_date", header.value("ent_fact_tri")},
                  {"f_num_lig", lineNumber},
                  {"f_article", article},
                  {"f_libelle", text},
                  {"f_qte", quantity},
                  {"f_pu", QVariant::fromValue<qint64>(unitPrice.cents())},
                  {"f_montant", QVariant::fromValue<qint64>(amount.cents())},
                  {"f_nature", header.value("ent_nature")},
                  {"f_index_compet", header.value("ent_c_index")},
                  {"f_tiers_fact", header.value("ent_tiers_fact")},
                  {"f_fact_entite", header.value("ent_fact_entite")},
                  {"f_tiers_clt", header.value("ent_tiers_clt")},
                  {"f_clt_entite", header.value("ent_clt_entite")}});
}

InvoiceTotal writeTotal(Store& store, const QString& number) {
    const Money total = Money::fromVariant(store.scalar(
        QStringLiteral(
            "SELECT COALESCE(SUM(f_montant), 0) FROM strfacture WHERE f_num_facture = ?"),
        {paddedInvoiceNumber(number)}));
    const QString type = total.isNegative() ? kCreditNoteType : kInvoiceType;
    store.update(QStringLiteral("strentete"), {{"ent_fact_type", type}},
                 QStringLiteral("ent_fact_no = ?"), {number.trimmed()});
    return {total, type};
}

}  // namespace

store::Row requireHeader(const Store& store, const QString& number) {
    auto row = store.selectOne(QStringLiteral("SELECT * FROM strentete WHERE ent_fact_no = ?"),
                               {number.trimmed()});
    if (!row) throw Refusal(QStringLiteral("La facture N° %1 n'existe pas.").arg(number.trimmed()));
    return *row;
}

QString paddedInvoiceNumber(const QString& number) {
    return format::zeroPad(format::leadingNumber(number), 8);
}

QString nextInvoiceNumber(const Store& store) {
    const qint64 last =
        store.scalar(QStringLiteral("SELECT MAX(CAST(ent_fact_no AS INTEGER)) FROM strentete"))
            .toLongLong();
    return QString::number(last + 1);
}

bool InvoiceParty::hasAddress() const {
    for (const QString* line :
         {&name, &president, &address1, &address2, &address3, &address4, &postcodeTown})
        if (!line->trimmed().isEmpty()) return true;
    return false;
}

QDate validateHeader(const InvoiceHeader& header) {
    const QString text = header.dateText.trimmed();
    if (text.isEmpty() || text == format::kEmptyDateMask)
        throw Refusal(QStringLiteral("date obligatoire"));
    const auto date = format::parseDisplayDate(text);
    if (!date)
        throw Refusal(QStringLiteral("la date : ") + text + QStringLiteral(" n'est pas valide"));
    if (!header.billed.isChosen())
        throw Refusal(QStringLiteral("veuillez sélectionner un facturé"));
    // Checked before any number is taken: an invoice to nobody would use one up.
    if (header.billed.entity.trimmed() == kOtherEntity && !header.billed.hasAddress())
        throw Refusal(QStringLiteral("Adresse de facturation obligatoire"));
    return *date;
}

QString createInvoice(Store& store, const InvoiceHeader& header, const QDate& /*today*/) {
    const QDate date = validateHeader(header);
    Transaction tx(store);
    // Invoices and credit notes share one series: French law wants it unbroken.
    store.lockSeries(kInvoiceSeries);
    const QString number = nextInvoiceNumber(store);
    Fields fields{{"ent_fact_no", number}};
    for (auto& f : headerFields(header, date)) fields.push_back(std::move(f));
    fields.push_back({"ent_montant", 0});
    fields.push_back({"ent_niveau", header.level});
    // Printed once its document is on disk, not before.
    fields.push_back({"ent_fact_edt", kNo});
    fields.push_back({"ent_envoi_mail", kNo});
    fields.push_back({"ent_compta", kNo});
    store.insert(QStringLiteral("strentete"), fields);
    const store::Row row = requireHeader(store, number);
    insertLine(store, row, QStringLiteral("01"), kFirstLineArticle, kUndefinedText, 0, Money(),
               Money());
    tx.commit();
    return number;
}

void modifyInvoice(Store& store, const QString& number, const InvoiceHeader& header) {
    const QDate date = validateHeader(header);
    Transaction tx(store);
    requireHeader(store, number);
    store.update(QStringLiteral("strentete"), headerFields(header, date),
                 QStringLiteral("ent_fact_no = ?"), {number.trimmed()});
    // The lines repeat the header's dates and parties.
    const store::Row row = requireHeader(store, number);
    store.update(QStringLiteral("strfacture"),
                 {{"f_date_fact", row.value("ent_fact_date")},
                  {"f_tri_date", row.value("ent_fact_tri")},
                  {"f_tiers_fact", row.value("ent_tiers_fact")},
                  {"f_fact_entite", row.value("ent_fact_entite")},
                  {"f_tiers_clt", row.value("ent_tiers_clt")},
                  {"f_clt_entite", row.value("ent_clt_entite")}},
                 QStringLiteral("f_num_facture = ?"), {paddedInvoiceNumber(number)});
    writeTotal(store, number);
    tx.commit();
}

QString addLine(Store& store, const QString& number) {
    Transaction tx(store);
    const store::Row header = requireHeader(store, number);
    const QString lineNumber =
        format::zeroPad(lastLineNumber(store, paddedInvoiceNumber(number)) + 1, 2);
    insertLine(store, header, lineNumber, kAddedLineArticle, kUndefinedText, 0, Money(), Money());
    tx.commit();
    return lineNumber;
}

QString appendLine(Store& store, const QString& number, const InvoiceLine& line) {
    Transaction tx(store);
    const store::Row header = requireHeader(store, number);
    const QString lineNumber =
        format::zeroPad(lastLineNumber(store, paddedInvoiceNumber(number)) + 1, 2);
    insertLine(store, header, lineNumber, line.article, line.text, line.quantity, line.unitPrice,
               line.amount());
    writeTotal(store, number);
    tx.commit();
    return lineNumber;
}

void updateLine(Store& store, const QString& number, const QString& lineNumber,
                const InvoiceLine& line) {
    Transaction tx(store);
    const int changed =
        store.update(QStringLiteral("strfacture"),
                     {{"f_article", line.article},
                      {"f_libelle", line.text},
                      {"f_qte", line.quantity},
                      {"f_pu", QVariant::fromValue<qint64>(line.unitPrice.cents())},
                      {"f_montant", QVariant::fromValue<qint64>(line.amount().cents())}},
                     QStringLiteral("f_num_facture = ? AND f_num_lig = ?"),
                     {paddedInvoiceNumber(number), lineNumber});
    if (changed == 0)
        throw Refusal(QStringLiteral("La ligne %1 de la facture N° %2 n'existe pas.")
                          .arg(lineNumber, number.trimmed()));
    writeTotal(store, number);
    tx.commit();
}

void removeLine(Store& store, const QString& number, const QString& lineNumber) {
    Transaction tx(store);
    store.exec(QStringLiteral("DELETE FROM strfacture WHERE f_num_facture = ? AND f_num_lig = ?"),
               {paddedInvoiceNumber(number), lineNumber});
    writeTotal(store, number);
    tx.commit();
}

InvoiceTotal updateTotal(Store& store, const QString& number) {
    Transaction tx(store);
    const InvoiceTotal t = writeTotal(store, number);
    tx.commit();
    return t;
}

InvoiceTotal readTotal(const Store& store, const QString& number) {
    const Money total = Money::fromVariant(store.scalar(
        QStringLiteral(
            "SELECT COALESCE(SUM(f_montant), 0) FROM strfacture WHERE f_num_facture = ?"),
        {paddedInvoiceNumber(number)}));
    const QString type =
        store
            .scalar(QStringLiteral("SELECT ent_fact_type FROM strentete WHERE ent_fact_no = ?"),
                    {number.trimmed()})
            .toString()
            .trimmed();
    return {total, type};
}

store::Query linesQuery(const QString& number) {
    return {QStringLiteral("SELECT * FROM strfacture"),
            {QStringLiteral("f_num_facture = ?"), {paddedInvoiceNumber(number)}},
            QStringLiteral("f_num_lig ASC")};
}

std::vector<StoredLine> readLines(const Store& store, const QString& number) {
    std::vector<StoredLine> lines;
    // By value, so that a hundredth line comes after the ninety-ninth.
    const auto rows = store.select(
        QStringLiteral("SELECT f_num_lig, f_article, f_libelle, f_qte, f_pu, f_montant FROM "
                       "strfacture WHERE f_num_facture = ? ORDER BY CAST(f_num_lig AS INTEGER), "
                       "f_num_lig"),
        {paddedInvoiceNumber(number)});
    lines.reserve(rows.size());
    for (const auto& r : rows)
        lines.push_back({r.value(0).toString(), r.value(1).toString(), r.value(2).toString(),
                         r.value(3).toLongLong(), Money::fromVariant(r.value(4)),
                         Money::fromVariant(r.value(5))});
    return lines;
}

int copyLines(Store& store, const QString& fromNumber, const QString& toNumber, int sign,
              const QDate& date) {
    Transaction tx(store);
    const store::Row target = requireHeader(store, toNumber);
    const auto rows =
        store.select(QStringLiteral("SELECT * FROM strfacture WHERE f_num_facture = ? "
                                    "ORDER BY CAST(f_num_lig AS INTEGER), f_num_lig"),
                     {paddedInvoiceNumber(fromNumber)});
    for (const auto& r : rows) {
        store.insert(QStringLiteral("strfacture"),
                     {{"f_num_facture", paddedInvoiceNumber(toNumber)},
                      {"f_date_fact", format::displayDate(date)},
                      {"f_tri_date", format::sortDate(date)},
                      {"f_num_lig", kCopyLineNumber},
                      {"f_article", r.value("f_article")},
                      {"f_libelle", r.value("f_libelle")},
                      {"f_qte", r.value("f_qte").toLongLong() * sign},
                      {"f_pu", r.value("f_pu")},
                      {"f_montant", r.value("f_montant").toLongLong() * sign},
                      {"f_nature", r.value("f_nature")},
                      {"f_index_compet", r.value("f_index_compet")},
                      {"f_tiers_fact", r.value("f_tiers_fact")},
                      {"f_fact_entite", r.value("f_fact_entite")},
                      {"f_tiers_clt", r.value("f_tiers_clt")},
                      {"f_clt_entite", r.value("f_clt_entite")}});
    }
    Q_UNUSED(target);
    renumberCopiedLines(store, toNumber);
    writeTotal(store, toNumber);
    tx.commit();
    return static_cast<int>(rows.size());
}

void renumberCopiedLines(Store& store, const QString& number) {
    Transaction tx(store);
    const QString padded = paddedInvoiceNumber(number);
    qint64 n = store
                   .scalar(QStringLiteral("SELECT COUNT(*) FROM strfacture WHERE f_num_facture = ? "
                                          "AND f_num_lig <> ?"),
                           {padded, kCopyLineNumber})
                   .toLongLong();
    // Visited in the order they were written.
    const auto copied = store.select(
        QStringLiteral("SELECT rowid FROM strfacture WHERE f_num_facture = ? AND f_num_lig = ? "
                       "ORDER BY rowid"),
        {padded, kCopyLineNumber});
    for (const auto& r : copied)
        store.update(QStringLiteral("strfacture"), {{"f_num_lig", format::zeroPad(++n, 2)}},
                     QStringLiteral("rowid = ?"), {r.value(0)});
    tx.commit();
}

void markCompetitionInvoiced(Store& store, const QString& competitionIndex, const QString& number,
                             const QDate& date) {
    Transaction tx(store);
    // The pseudo-competitions group invoices and never carry one number.
    store.update(QStringLiteral("strcompetition"),
                 {{"c_facture", kWrittenState},
                  {"c_num_facture", number.trimmed()},
                  {"c_date_facture", format::displayDate(date)},
                  {"c_tri_facture", format::sortDate(date)}},
                 QStringLiteral("c_index = ? AND c_facture <> ?"),
                 {competitionIndex, kPseudoState});
    tx.commit();
}

int resetCompetitionInvoicing(Store& store, const std::vector<QString>& numbers) {
    Transaction tx(store);
    int changed = 0;
    for (const QString& number : numbers)
        changed += store.update(QStringLiteral("strcompetition"),
                                {{"c_num_facture", " "},
                                 {"c_date_facture", format::kEmptyDateMask},
                                 {"c_facture", kOpenState},
                                 {"c_tri_facture", " "},
                                 {"c_edt", " "},
                                 {"c_edt_fact", kNoDocument},
                                 {"c_add_tiers", " "},
                                 {"c_envoi_mail", kNo}},
                                QStringLiteral("c_num_facture = ? AND c_facture <> ?"),
                                {number.trimmed(), kPseudoState});
    tx.commit();
    return changed;
}

}  // namespace orve::invoicing
