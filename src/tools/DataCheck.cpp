#include "tools/DataCheck.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <map>

#include "invoicing/InvoiceFiles.h"
#include "store/Formats.h"
#include "store/Money.h"
#include "tools/InvoiceRenumbering.h"
#include "tools/ToolTexts.h"

namespace orve::tools {

using store::trimmedText;

namespace {

// Codes compare without regard to case.
QString key(const QString& code) { return code.trimmed().toUpper(); }

qint64 number(const QString& invoice) { return format::leadingNumber(invoice); }

struct Header {
    QString number;
    QString type;
    QString label;
    QString origin;
    QString competition;
    QString billed, client, nature;
    Money total;
    QString entity;
    bool printed = false;
};

struct LineGroup {
    QString number;  // as the lines carry it, eight digits
    int lines = 0;
    Money sum;
};

struct Competition {
    QString invoice;
    QString state;
};

// Everything the checks compare, read as of one moment.
struct Data {
    std::vector<Header> headers;     // in number order
    QHash<qint64, size_t> byNumber;  // the header of each number
    std::map<qint64, LineGroup> lineGroups;
    QHash<QString, Competition> competitions;  // by index; the first row of an index
    QSet<QString> masters;                     // indexes some party row refers to
    QSet<qint64> cancelled;                    // invoices a credit note names
    store::Rows lines;
    store::Rows competitionRows;
    store::Rows clubsWithoutCommittee;
};

Data load(const store::Store& s) {
    store::Snapshot moment(s);
    Data d;
    for (const auto& r : s.select(QStringLiteral(
             "SELECT ent_fact_no, ent_fact_type, ent_fact_lib, ent_fact_origine, ent_c_index, "
             "ent_tiers_fact, ent_tiers_clt, ent_nature, ent_montant, ent_fact_entite, "
             "ent_fact_edt "
             "FROM strentete "
             "ORDER BY CAST(ent_fact_no AS INTEGER), ent_fact_no")))
        d.headers.push_back(
            {trimmedText(r, "ent_fact_no"), trimmedText(r, "ent_fact_type"),
             trimmedText(r, "ent_fact_lib"), trimmedText(r, "ent_fact_origine"),
             trimmedText(r, "ent_c_index"), trimmedText(r, "ent_tiers_fact"),
             trimmedText(r, "ent_tiers_clt"), trimmedText(r, "ent_nature"),
             Money::fromVariant(r.value("ent_montant")), trimmedText(r, "ent_fact_entite"),
             trimmedText(r, "ent_fact_edt").compare(QStringLiteral("O"), Qt::CaseInsensitive) ==
                 0});
    for (size_t i = 0; i < d.headers.size(); ++i) {
        const Header& h = d.headers[i];
        // Of one number written twice, the form without leading zeros is the invoice.
        if (!d.byNumber.contains(number(h.number)) || h.number == QString::number(number(h.number)))
            d.byNumber.insert(number(h.number), i);
        if (!h.origin.isEmpty()) d.cancelled.insert(number(h.origin));
    }
    for (const auto& r : s.select(QStringLiteral(
             "SELECT f_num_facture, COUNT(*), COALESCE(SUM(f_montant), 0) FROM strfacture "
             "GROUP BY f_num_facture"))) {
        LineGroup& g = d.lineGroups[number(r.value(0).toString())];
        g.number = r.value(0).toString().trimmed();
        g.lines += r.value(1).toInt();
        g.sum += Money::fromVariant(r.value(2));
    }
    d.lines = s.select(
        QStringLiteral("SELECT f_num_facture, f_num_lig, f_index_compet, f_tiers_fact, "
                       "f_tiers_clt, f_nature FROM strfacture ORDER BY f_num_facture, f_num_lig"));
    d.competitionRows = s.select(
        QStringLiteral("SELECT c_index, c_num_facture, c_facture, index_reference, c_edt_fact "
                       "FROM strcompetition ORDER BY c_index, rowid"));
    for (const auto& r : d.competitionRows) {
        const QString index = key(trimmedText(r, "c_index"));
        if (!d.competitions.contains(index))
            d.competitions.insert(index,
                                  {trimmedText(r, "c_num_facture"), trimmedText(r, "c_facture")});
        const QString master = trimmedText(r, "index_reference");
        if (!master.isEmpty()) d.masters.insert(key(master));
    }
    d.clubsWithoutCommittee = s.select(
        QStringLiteral("SELECT club_code, club_nom, club_dept FROM strclub c WHERE NOT EXISTS "
                       "(SELECT 1 FROM strdept d WHERE d.de_no = c.club_dept) ORDER BY club_code"));
    return d;
}

bool isMasterIndex(const QString& reference) {
    return reference.isEmpty() || reference == QStringLiteral("00000000");
}

// Lines of one invoice on one competition, told once rather than line by line.
QString linesOn(const QString& invoice, int count, const QString& competition) {
    return QStringLiteral("facture %1 : %2 sur la compétition %3")
        .arg(invoice, counted(count, QStringLiteral("ligne"), QStringLiteral("lignes")),
             competition);
}

void checkLines(const Data& d, CheckResult& unknown, CheckResult& other, CheckResult& outOfStep) {
    // (invoice, competition) → lines, in the order met.
    std::vector<std::pair<QString, QString>> unknownOrder, otherOrder;
    QHash<QString, int> unknownCount, otherCount;
    std::vector<QString> stepOrder;
    QHash<QString, int> stepCount;
    QHash<QString, QString> otherInvoice;
    for (const auto& r : d.lines) {
        const QString invoice = trimmedText(r, "f_num_facture");
        const QString index = trimmedText(r, "f_index_compet");
        const QString pair = invoice + QChar('\n') + index;
        const auto found = d.byNumber.constFind(number(invoice));
        const Header* header = found == d.byNumber.constEnd() ? nullptr : &d.headers[*found];
        const auto c = d.competitions.constFind(key(index));
        if (c == d.competitions.constEnd()) {
            if (!unknownCount.contains(pair)) unknownOrder.emplace_back(invoice, index);
            ++unknownCount[pair];
        } else if (!c->invoice.isEmpty() && number(c->invoice) != number(invoice) &&
                   !(header && header->type == QStringLiteral("A")) &&
                   !d.cancelled.contains(number(invoice))) {
            // A credit note's lines, and those of the invoice it cancels, keep
            // the competition that was invoiced again since: not a fault.
            if (!otherCount.contains(pair)) otherOrder.emplace_back(invoice, index);
            ++otherCount[pair];
            otherInvoice[pair] = c->invoice;
        }
        if (header && (key(trimmedText(r, "f_tiers_fact")) != key(header->billed) ||
                       key(trimmedText(r, "f_tiers_clt")) != key(header->client) ||
                       key(trimmedText(r, "f_nature")) != key(header->nature))) {
            if (!stepCount.contains(invoice)) stepOrder.push_back(invoice);
            ++stepCount[invoice];
        }
    }
    for (const auto& [invoice, index] : unknownOrder)
        unknown.findings << linesOn(invoice, unknownCount[invoice + QChar('\n') + index],
                                    index.isEmpty() ? QStringLiteral("(vide)") : index);
    for (const auto& [invoice, index] : otherOrder) {
        const QString pair = invoice + QChar('\n') + index;
        other.findings << linesOn(invoice, otherCount[pair], index) +
                              QStringLiteral(", qui porte la facture ") + otherInvoice[pair];
    }
    for (const QString& invoice : stepOrder)
        outOfStep.findings << QStringLiteral("facture %1 : %2")
                                  .arg(invoice, counted(stepCount[invoice], QStringLiteral("ligne"),
                                                        QStringLiteral("lignes")));
}

void checkHeaders(const Data& d, CheckResult& duplicates, CheckResult& withoutLines,
                  CheckResult& totals, CheckResult& creditNotes, CheckResult& unknownCompetition,
                  CheckResult& types) {
    for (size_t i = 0; i < d.headers.size();) {
        size_t j = i + 1;
        while (j < d.headers.size() && number(d.headers[j].number) == number(d.headers[i].number))
            ++j;
        if (j - i > 1) {
            QStringList texts;
            for (size_t k = i; k < j; ++k) texts << d.headers[k].number;
            duplicates.findings << QStringLiteral("N° %1 : %2")
                                       .arg(number(d.headers[i].number))
                                       .arg(texts.join(QStringLiteral(", ")));
        }
        i = j;
    }
    for (const Header& h : d.headers) {
        const auto g = d.lineGroups.find(number(h.number));
        const Money sum = g == d.lineGroups.end() ? Money() : g->second.sum;
        // A renumbering placeholder stands without lines on purpose.
        if (g == d.lineGroups.end() && h.label != kRenumberingLabel)
            withoutLines.findings << QStringLiteral("facture %1 (%2)").arg(h.number, h.label);
        // The total is written when the document is made; 0 until then.
        if (h.total != Money() && h.total != sum)
            totals.findings << QStringLiteral("facture %1 : total %2, lignes %3")
                                   .arg(h.number, format::amountEuro(h.total),
                                        format::amountEuro(sum));
        if (h.type == QStringLiteral("A") && !h.origin.isEmpty() &&
            !d.byNumber.contains(number(h.origin)))
            creditNotes.findings
                << QStringLiteral("avoir %1 : facture %2 introuvable").arg(h.number, h.origin);
        if (!h.competition.isEmpty() && !d.competitions.contains(key(h.competition)))
            unknownCompetition.findings
                << QStringLiteral("facture %1 : compétition %2").arg(h.number, h.competition);
        if ((h.type == QStringLiteral("F") && sum.isNegative()) ||
            (h.type == QStringLiteral("A") && sum > Money()))
            types.findings << QStringLiteral("facture %1 : type %2, total %3")
                                  .arg(h.number, h.type, format::amountEuro(sum));
    }
}

// A document is readable when it is a whole PDF: its header, and its end
// marker near the end of the file.
bool readablePdf(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly) || f.size() < 16) return false;
    if (!f.read(5).startsWith("%PDF-")) return false;
    f.seek(std::max<qint64>(0, f.size() - 1024));
    return f.readAll().contains("%%EOF");
}

void checkDocuments(const Data& d, const QString& invoiceFolder, CheckResult& missing) {
    if (invoiceFolder.isEmpty()) return;
    for (const Header& h : d.headers)
        if (h.printed &&
            !readablePdf(invoicing::invoicePdfPath(invoiceFolder, h.billed, h.entity, h.number)))
            missing.findings << QStringLiteral("facture %1 (%2)").arg(h.number, h.label);
}

void checkCompetitions(const Data& d, CheckResult& invoiced, CheckResult& orphans,
                       CheckResult& withoutDocument, CheckResult& leftWritten) {
    for (const auto& r : d.competitionRows) {
        const QString index = trimmedText(r, "c_index");
        const QString state = trimmedText(r, "c_facture");
        const QString invoice = trimmedText(r, "c_num_facture");
        const QString reference = trimmedText(r, "index_reference");
        if (state == QStringLiteral("F")) {
            if (!invoice.isEmpty() && !d.byNumber.contains(number(invoice)))
                invoiced.findings << QStringLiteral("compétition %1 : facture %2 introuvable")
                                         .arg(index, invoice);
            // A closed competition of the register is invoiced through its party rows.
            else if (invoice.isEmpty() &&
                     !(isMasterIndex(reference) && d.masters.contains(key(index))))
                invoiced.findings
                    << QStringLiteral("compétition %1 : aucun N° de facture").arg(index);
            if (trimmedText(r, "c_edt_fact") == QStringLiteral("NON"))
                withoutDocument.findings
                    << QStringLiteral("compétition %1 : facture %2").arg(index, invoice);
        }
        if (state == QStringLiteral("A"))
            leftWritten.findings << QStringLiteral(
                                        "compétition %1 : facture %2 (terminée à la "
                                        "prochaine ouverture de la fenêtre)")
                                        .arg(index, invoice);
        if (!isMasterIndex(reference) && !d.competitions.contains(key(reference)))
            orphans.findings << QStringLiteral(
                                    "compétition %1 : compétition principale %2 "
                                    "introuvable")
                                    .arg(index, reference);
    }
}

}  // namespace

int DataCheckReport::findings() const {
    int n = 0;
    for (const auto& c : checks) n += static_cast<int>(c.findings.size());
    return n;
}

QString DataCheckReport::summary() const {
    const int n = findings();
    return QStringLiteral("Vérification des données : ") +
           (n == 0 ? QStringLiteral("aucune anomalie")
                   : counted(n, QStringLiteral("anomalie"), QStringLiteral("anomalies")));
}

QStringList DataCheckReport::lines() const {
    QStringList out;
    for (const auto& c : checks) {
        out << QStringLiteral("%1 : %2").arg(c.title).arg(c.findings.size());
        for (const QString& f : c.findings) out << QStringLiteral("    ") + f;
    }
    return out;
}

QStringList DataCheckReport::findingsOf(const QString& title) const {
    for (const auto& c : checks)
        if (c.title == title) return c.findings;
    return {};
}

DataCheckReport checkData(const store::Store& store, const QString& invoiceFolder) {
    const Data d = load(store);
    DataCheckReport report;
    for (const QString& title :
         {check::kUnknownCompetition, check::kOtherInvoice, check::kDuplicateNumbers,
          check::kHeadersWithoutLines, check::kLinesWithoutHeader, check::kTotals,
          check::kCreditNotes, check::kInvoicedWithoutInvoice, check::kOrphanPartyRows,
          check::kClubDepartments, check::kLinesOutOfStep, check::kWithoutDocument,
          check::kHeadersUnknownCompetition, check::kTypes, check::kRowsLeftWritten,
          check::kPrintedWithoutFile})
        report.checks.push_back({title, {}});
    auto& c = report.checks;
    checkLines(d, c[0], c[1], c[10]);
    checkHeaders(d, c[2], c[3], c[5], c[6], c[12], c[13]);
    for (const auto& [value, group] : d.lineGroups)
        if (!d.byNumber.contains(value))
            c[4].findings << QStringLiteral("facture %1 : %2")
                                 .arg(group.number, counted(group.lines, QStringLiteral("ligne"),
                                                            QStringLiteral("lignes")));
    checkCompetitions(d, c[7], c[8], c[11], c[14]);
    checkDocuments(d, invoiceFolder, c[15]);
    for (const auto& r : d.clubsWithoutCommittee) {
        const QString dept = trimmedText(r, "club_dept");
        c[9].findings << QStringLiteral("club %1 (%2) : département %3")
                             .arg(trimmedText(r, "club_code"), trimmedText(r, "club_nom"),
                                  dept.isEmpty() ? QStringLiteral("(vide)") : dept);
    }
    return report;
}

}  // namespace orve::tools
