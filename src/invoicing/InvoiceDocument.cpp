#include "invoicing/InvoiceDocument.h"

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

namespace {

QString field(const store::Row& r, const char* name) {
    return r.value(QLatin1String(name)).toString();
}

// Blank lines of an address are left out.
QStringList nonBlank(std::initializer_list<QString> lines) {
    QStringList out;
    for (const QString& l : lines)
        if (!l.trimmed().isEmpty()) out << l.trimmed();
    return out;
}

InvoiceDocumentData fromHeader(const store::Store& store, const store::Row& h) {
    InvoiceDocumentData d;
    d.number = field(h, "ent_fact_no").trimmed();
    d.creditNote = field(h, "ent_fact_type").trimmed() == kCreditNoteType;
    d.date = field(h, "ent_fact_date").trimmed();
    d.cancelledNumber = field(h, "ent_fact_origine").trimmed();
    if (!d.cancelledNumber.isEmpty())
        d.cancelledDate =
            store
                .scalar(QStringLiteral("SELECT ent_fact_date FROM strentete WHERE ent_fact_no = ?"),
                        {d.cancelledNumber})
                .toString()
                .trimmed();
    d.dueDate = field(h, "ent_fact_echeance").trimmed();
    d.account = field(h, "ent_tiers_fact").trimmed();
    d.entity = field(h, "ent_fact_entite").trimmed();
    d.billedName = field(h, "ent_fact_lib").trimmed();
    d.billed =
        nonBlank({field(h, "ent_fact_lib"), field(h, "ent_fact_president"),
                  field(h, "ent_fact_ad1"), field(h, "ent_fact_ad2"), field(h, "ent_fact_ad3"),
                  field(h, "ent_fact_ad4"), field(h, "ent_fact_cp_ville")});
    d.clientAccount = field(h, "ent_tiers_clt").trimmed();
    if (d.clientAccount.isEmpty()) d.clientAccount = field(h, "ent_clt_entite").trimmed();
    d.client = nonBlank({field(h, "ent_clt_lib"), field(h, "ent_clt_president"),
                         field(h, "ent_clt_ad1"), field(h, "ent_clt_ad2"), field(h, "ent_clt_ad3"),
                         field(h, "ent_clt_ad4"), field(h, "ent_clt_cp_ville")});
    d.competitionTitle = field(h, "ent_fact_competition").trimmed();
    d.deposit = Money::fromVariant(h.value("ent_acompte"));
    if (const auto c = store.selectOne(
            QStringLiteral("SELECT c_date_finale, c_saison, c_cod1, c_cod2 FROM strcompetition "
                           "WHERE c_index = ? LIMIT 1"),
            {field(h, "ent_c_index").trimmed()})) {
        d.competitionDate = c->value(0).toString().trimmed();
        d.season = c->value(1).toString().trimmed();
        d.code1 = c->value(2).toString().trimmed();
        d.code2 = c->value(3).toString().trimmed();
    }
    d.lines = readLines(store, d.number);
    return d;
}

}  // namespace

Money InvoiceDocumentData::total() const {
    Money sum;
    for (const auto& l : lines) sum += l.amount;
    return sum;
}

InvoiceDocumentData loadInvoiceDocument(const store::Store& store, const QString& number) {
    const auto header =
        store.selectOne(QStringLiteral("SELECT * FROM strentete WHERE ent_fact_no = ?"),
                        {QString::number(format::leadingNumber(number))});
    if (!header)
        throw Refusal(QStringLiteral("La facture N° %1 n'existe pas.").arg(number.trimmed()));
    InvoiceDocumentData d = fromHeader(store, *header);
    if (d.lines.empty()) throw Refusal(QStringLiteral("aucune ligne sur cette facture"));
    return d;
}

bool showsClientBlock(const QString& account, const DocumentSettings& s) {
    const QString a = account.trimmed().toUpper();
    if (a.startsWith(QStringLiteral("CD")) || a.startsWith(QStringLiteral("CL")) ||
        a.startsWith(QStringLiteral("BOW")))
        return false;
    return !s.committeeOperator();
}

}  // namespace orve::invoicing
