#include "invoicing/InvoiceMailing.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/RecordStates.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::invoicing {

using store::Store;

namespace {

const QString kList = QStringLiteral("envoi");
const QString kTick = QStringLiteral("X");
const QString kNoTick = QStringLiteral(" ");
const char* const kListColumns[] = {"ent_fact_no",    "ent_fact_type",  "ent_nature",
                                    "ent_fact_date",  "ent_fact_tri",   "ent_fact_competition",
                                    "ent_c_index",    "ent_fact_lib",   "ent_fact_president",
                                    "ent_fact_mail1", "ent_fact_mail2", "ent_montant",
                                    "ent_envoi_mail"};

QString text(const store::Row& r, const char* field) {
    return r.value(QLatin1String(field)).toString();
}

QString invalidAddress(const QString& address) {
    return QStringLiteral("adresse mail invalide : %1").arg(format::echoed(headerText(address)));
}

// The invoices once each, in number order (by value: "999" before "1000").
std::vector<QString> inNumberOrder(const std::vector<QString>& invoices) {
    std::vector<QString> out;
    QSet<QString> seen;
    for (const QString& typed : invoices) {
        const QString n = typed.trimmed();
        if (n.isEmpty() || seen.contains(n)) continue;
        seen.insert(n);
        out.push_back(n);
    }
    std::stable_sort(out.begin(), out.end(), [](const QString& a, const QString& b) {
        return format::leadingNumber(a) < format::leadingNumber(b);
    });
    return out;
}

// The competition file first, then the invoice file, each in a transaction
// of its own: SQLite commits attached files one after the other, so one
// transaction over both could keep one and lose the other in a kill. In this
// order a kill leaves at worst the competition rows marked and the invoice
// still listed as not mailed: mailing it again does the same again.
void markMailed(Store& store, const PreparedMail& mail) {
    {
        store::Transaction tx(store);
        store.update(QStringLiteral("strcompetition"), {{"c_envoi_mail", kYes}},
                     QStringLiteral("c_num_facture = ? AND c_facture <> ?"),
                     {mail.invoice, kPseudoState});
        tx.commit();
    }
    store::Transaction tx(store);
    store.update(QStringLiteral("strentete"), {{"ent_envoi_mail", kYes}},
                 QStringLiteral("ent_fact_no = ?"), {mail.invoice});
    tx.commit();
    store.scratch().update(
        QStringLiteral("strenvoi"), {{"c_edt", kNoTick}, {"ent_envoi_mail", kYes}},
        QStringLiteral("x_liste = ? AND ent_fact_no = ?"), {kList, mail.invoice});
}

// The invoices the credit notes among `numbers` cancel.
std::vector<QString> cancelledBy(const Store& store, const std::vector<QString>& numbers) {
    std::vector<QString> out;
    for (const QString& n : numbers)
        if (const auto h = store.selectOne(
                QStringLiteral("SELECT ent_fact_origine FROM strentete WHERE ent_fact_no = ? AND "
                               "ent_fact_type = ?"),
                {n, kCreditNoteType});
            h && !h->value(0).toString().trimmed().isEmpty())
            out.push_back(h->value(0).toString().trimmed());
    return out;
}

QString recipientsText(const MailMessage& m) {
    QString t = m.to.join(QStringLiteral(", "));
    if (!m.cc.isEmpty()) t += QStringLiteral(" (copie : %1)").arg(m.cc.join(QStringLiteral(", ")));
    return t;
}

}  // namespace

// ---- The list ---------------------------------------------------------------

std::vector<QString> unsentInvoices(const Store& store, const QString& nature) {
    if (nature.trimmed().isEmpty()) throw Refusal(kNatureRequired);
    std::vector<QString> out;
    for (const store::Row& r : store.select(
             QStringLiteral("SELECT ent_fact_no FROM strentete WHERE ent_envoi_mail = 'N' AND "
                            "ent_nature = ? ORDER BY CAST(ent_fact_no AS INTEGER), ent_fact_no"),
             {nature.trimmed()}))
        out.push_back(r.value(0).toString());
    return out;
}

int fillMailingList(Store& store, const QString& nature) {
    if (nature.trimmed().isEmpty()) throw Refusal(kNatureRequired);
    QStringList columns;
    for (const char* c : kListColumns) columns << QLatin1String(c);
    const store::Rows headers = store.select(
        QStringLiteral("SELECT %1 FROM strentete WHERE ent_envoi_mail = 'N' AND ent_nature = ?")
            .arg(columns.join(QStringLiteral(", "))),
        {nature.trimmed()});
    Store& scratch = store.scratch();
    store::Transaction tx(scratch);
    scratch.exec(QStringLiteral("DELETE FROM strenvoi WHERE x_liste = ?"), {kList});
    for (const store::Row& h : headers) {
        store::Fields row{{"x_liste", kList}};
        for (const QString& c : columns) row.emplace_back(c, h.value(c));
        row.emplace_back("c_edt", kNoTick);
        scratch.insert(QStringLiteral("strenvoi"), row);
    }
    tx.commit();
    return static_cast<int>(headers.size());
}

store::Query mailingListQuery() {
    store::Query q;
    q.selectFrom = QStringLiteral("SELECT * FROM strenvoi");
    q.condition = store::Condition(QStringLiteral("x_liste = ?"), {kList});
    q.orderBy = QStringLiteral("CAST(ent_fact_no AS INTEGER), ent_fact_no");
    return q;
}

void setMailingTick(Store& store, const QString& invoice, bool ticked) {
    store.scratch().update(QStringLiteral("strenvoi"), {{"c_edt", ticked ? kTick : kNoTick}},
                           QStringLiteral("x_liste = ? AND ent_fact_no = ?"),
                           {kList, invoice.trimmed()});
}

void tickWholeMailingList(Store& store) {
    store.scratch().update(QStringLiteral("strenvoi"), {{"c_edt", kTick}},
                           QStringLiteral("x_liste = ?"), {kList});
}

std::vector<QString> tickedForMailing(const Store& store) {
    std::vector<QString> out;
    for (const store::Row& r : store.scratch().select(
             QStringLiteral("SELECT ent_fact_no FROM strenvoi WHERE x_liste = ? AND "
                            "trim(COALESCE(c_edt, '')) <> '' ORDER BY CAST(ent_fact_no AS "
                            "INTEGER), ent_fact_no"),
             {kList}))
        out.push_back(r.value(0).toString());
    return out;
}

bool includesCreditNotes(const Store& store, const std::vector<QString>& numbers) {
    for (const QString& n : numbers)
        if (store.exists(QStringLiteral("SELECT 1 FROM strentete WHERE ent_fact_no = ? AND "
                                        "ent_fact_type = ?"),
                         {n.trimmed(), kCreditNoteType}))
            return true;
    return false;
}

// ---- The run ----------------------------------------------------------------

PreparedMail prepareInvoiceMail(const Store& store, const MailRunContext& context,
                                const MailRunOptions& options, const QString& invoice) {
    PreparedMail p;
    p.invoice = invoice.trimmed();
    const auto h = store.selectOne(QStringLiteral("SELECT * FROM strentete WHERE ent_fact_no = ?"),
                                   {p.invoice});
    if (!h) {
        p.skipped = QStringLiteral("La facture N° %1 n'existe pas.").arg(p.invoice);
        return p;
    }
    // The party's first address decides, even when the test addresses are used.
    const QString first = text(*h, "ent_fact_mail1").trimmed();
    if (first.isEmpty()) {
        p.skipped = QStringLiteral("la facture n° %1 n'a pas été envoyée par mail").arg(p.invoice);
        return p;
    }
    MailMessage m;
    m.from = context.sender;
    m.to = splitAddresses(options.testAddresses ? options.testTo : first);
    m.cc = splitAddresses(options.testAddresses ? options.testCopy : text(*h, "ent_fact_mail2"));
    const QString own = context.operatorMail.trimmed();
    if (!own.isEmpty() && !m.to.contains(own, Qt::CaseInsensitive) &&
        !m.cc.contains(own, Qt::CaseInsensitive))
        m.cc << own;
    for (const QString& a : m.to + m.cc)
        if (!plausibleAddress(a)) {
            p.skipped = invalidAddress(a);
            return p;
        }
    if (m.to.isEmpty()) {
        p.skipped = QStringLiteral("la facture n° %1 n'a pas été envoyée par mail").arg(p.invoice);
        return p;
    }

    m.subject = headerText(options.subject);
    if (options.addCompetition)
        m.subject += QStringLiteral("-") + headerText(text(*h, "ent_fact_competition"));

    const QString path = invoicePdfPath(context.invoiceFolder, text(*h, "ent_tiers_fact"),
                                        text(*h, "ent_fact_entite"), p.invoice);
    p.fileName = QFileInfo(path).fileName();
    if (!QFileInfo(path).isFile()) {
        p.skipped =
            QStringLiteral("la facture : %1 est introuvable ").arg(QDir::toNativeSeparators(path));
        return p;
    }
    m.body = QStringLiteral("Bonjour ") + text(*h, "ent_fact_president").trimmed() +
             QStringLiteral("\r\n") + options.body;
    if (options.attachPdf) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            p.skipped = QStringLiteral("la facture : %1 est illisible (%2)")
                            .arg(QDir::toNativeSeparators(path), file.errorString());
            return p;
        }
        m.attachment =
            MailAttachment{p.fileName, QStringLiteral("application/pdf"), file.readAll()};
    } else {
        m.body += QStringLiteral("\r\n") + options.webAddress.trimmed() + p.fileName;
    }
    if (text(*h, "ent_fact_type").trimmed() == kCreditNoteType)
        p.cancelled = text(*h, "ent_fact_origine").trimmed();
    p.message = std::move(m);
    return p;
}

QString MailResult::line() const {
    const QString status = outcome == MailOutcome::Sent      ? QStringLiteral("envoyée")
                           : outcome == MailOutcome::Skipped ? QStringLiteral("non envoyée")
                                                             : QStringLiteral("en échec");
    return QStringLiteral("facture N° %1 : %2 - %3").arg(invoice, status, detail);
}

QString MailRunReport::summary() const {
    QStringList lines;
    if (!stopped.isEmpty())
        lines << QStringLiteral("L'envoi des mails s'est arrêté : %1").arg(stopped);
    else if (!outbox.isEmpty() && sent > 0)
        lines << QStringLiteral("Les mails ont été déposés dans le dossier %1")
                     .arg(QDir::toNativeSeparators(outbox));
    else if (sent > 0)
        lines << QStringLiteral("Les mails ont été envoyés");
    else
        lines << QStringLiteral("Aucun mail n'a été envoyé");
    if (cancelled)
        lines << QStringLiteral("Envoi interrompu : %1 facture(s) non traitée(s).").arg(notTried);
    else if (notTried > 0)
        lines << QStringLiteral("%1 facture(s) non traitée(s), aucune n'a été marquée envoyée.")
                     .arg(notTried);
    lines << QStringLiteral("Envoyés : %1 - non envoyés : %2 - en échec : %3")
                 .arg(sent)
                 .arg(skipped)
                 .arg(failed);
    for (const MailResult& r : results)
        if (r.outcome != MailOutcome::Sent) lines << r.line();
    return lines.join(QChar('\n'));
}

void checkMailRun(const MailRunOptions& options, const std::vector<QString>& invoices) {
    if (options.testAddresses) {
        const QStringList to = splitAddresses(options.testTo);
        if (to.isEmpty()) throw Refusal(kTestAddressRequired);
        for (const QString& a : to + splitAddresses(options.testCopy))
            if (!plausibleAddress(a)) throw Refusal(invalidAddress(a));
    }
    if (inNumberOrder(invoices).empty()) throw Refusal(kNothingTicked);
}

MailRunReport sendInvoiceMails(Store& store, MailTransport& transport,
                               const MailRunContext& context, const MailRunOptions& options,
                               const std::vector<QString>& invoices,
                               const MailRunListener& listener) {
    checkMailRun(options, invoices);
    if (!context.operatorMail.trimmed().isEmpty() &&
        !plausibleAddress(context.operatorMail.trimmed()))
        throw Refusal(invalidAddress(context.operatorMail) +
                      QStringLiteral(" (adresse de l'opérateur, copie de chaque mail)"));
    const std::vector<QString> numbers = inNumberOrder(invoices);
    const int total = static_cast<int>(numbers.size());
    // The clerk answered before sending: every competition the run's credit
    // notes cancel may be invoiced again, whether or not its mail leaves (a
    // credit note without address or document must not leave it stuck).
    if (options.realProcedure && options.invoiceAgain)
        resetCompetitionInvoicing(store, cancelledBy(store, numbers));
    MailRunReport report;
    report.outbox = transport.outboxFolder();
    auto record = [&](MailResult r) {
        switch (r.outcome) {
            case MailOutcome::Sent:
                ++report.sent;
                break;
            case MailOutcome::Skipped:
                ++report.skipped;
                break;
            case MailOutcome::Failed:
                ++report.failed;
                break;
        }
        report.results.push_back(r);
        if (listener.done) listener.done(report.results.back());
    };
    for (int i = 0; i < total; ++i) {
        const QString& invoice = numbers[static_cast<size_t>(i)];
        if (listener.before && !listener.before(i + 1, total, invoice)) {
            report.cancelled = true;
            report.notTried = total - i;
            break;
        }
        PreparedMail mail;
        try {
            mail = prepareInvoiceMail(store, context, options, invoice);
        } catch (const std::exception& e) {
            record({invoice, MailOutcome::Failed, describeError(e)});
            continue;
        }
        if (!mail.message) {
            record({invoice, MailOutcome::Skipped, mail.skipped});
            continue;
        }
        try {
            transport.deliver(*mail.message, QFileInfo(mail.fileName).completeBaseName());
        } catch (const MailFailure& f) {
            record({invoice, MailOutcome::Failed, f.answer()});
            if (f.runStops()) {
                report.stopped = QStringLiteral("%1 : %2").arg(transport.destination(), f.answer());
                report.notTried = total - i - 1;
                break;
            }
            continue;
        } catch (const std::exception& e) {
            record({invoice, MailOutcome::Failed, describeError(e)});
            continue;
        }
        const QString where =
            report.outbox.isEmpty() ? QStringLiteral("à ") : QStringLiteral("déposée pour ");
        if (options.realProcedure) {
            try {
                markMailed(store, mail);
            } catch (const std::exception& e) {
                record({invoice, MailOutcome::Failed,
                        QStringLiteral("le mail est parti mais la facture n'a pas pu être "
                                       "marquée envoyée : %1")
                            .arg(describeError(e))});
                continue;
            }
        }
        record({invoice, MailOutcome::Sent, where + recipientsText(*mail.message)});
    }
    return report;
}

}  // namespace orve::invoicing
