#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QThread>
#include <algorithm>

#include "app/BatchCommands.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/InvoicingBatch.h"
#include "store/Formats.h"
#include "store/Refusal.h"

// orve-batch factures-essai: invoices made as a clerk makes them, many at a
// time, to try the numbering while other workstations number too.
namespace orve::invoicing {

namespace {

const QString kUsage = QStringLiteral("factures-essai NOMBRE [--club CODE]");

// How many times one invoice is made again after another workstation held the
// store, and the first pause between two tries (it doubles each time).
constexpr int kAttempts = 6;
constexpr int kFirstPauseMs = 20;

QString text(const store::Row& r, const QString& name) { return r.value(name).toString(); }

// The invoiced club: the one asked for, or the first of the installation.
InvoiceParty clubParty(const store::Store& s, const QString& code) {
    const auto r =
        code.isEmpty()
            ? s.selectOne(QStringLiteral("SELECT * FROM strclub ORDER BY club_code LIMIT 1"))
            : s.selectOne(QStringLiteral("SELECT * FROM strclub WHERE club_code = ?"), {code});
    if (!r)
        throw Refusal(code.isEmpty()
                          ? QStringLiteral("Aucun club dans l'installation : les factures d'essai "
                                           "ont besoin d'un facturé.")
                          : QStringLiteral("Le club %1 n'existe pas.").arg(format::echoed(code)));
    InvoiceParty p;
    p.account = text(*r, QStringLiteral("club_code")).trimmed();
    p.name = text(*r, QStringLiteral("club_nom"));
    p.president = text(*r, QStringLiteral("club_president"));
    p.address1 = text(*r, QStringLiteral("club_ad1"));
    p.address2 = text(*r, QStringLiteral("club_ad2"));
    p.address3 = text(*r, QStringLiteral("club_ad3"));
    p.address4 = text(*r, QStringLiteral("club_ad4"));
    p.postcodeTown = text(*r, QStringLiteral("club_cp")) + QStringLiteral(" ") +
                     text(*r, QStringLiteral("club_ville"));
    p.mail1 = text(*r, QStringLiteral("club_mail1"));
    p.mail2 = text(*r, QStringLiteral("club_mail2"));
    return p;
}

// Filed as a miscellaneous invoice, as a clerk's invoice to a club is.
InvoiceHeader miscHeader(const store::Store& s, const InvoiceParty& billed, const QDate& today) {
    const auto c =
        s.selectOne(QStringLiteral("SELECT * FROM strcompetition WHERE c_index = ?"), {kMiscIndex});
    if (!c)
        throw Refusal(QStringLiteral("La compétition %1 (Facture Divers) manque : connectez-vous "
                                     "une fois pour la créer.")
                          .arg(kMiscIndex));
    InvoiceHeader h;
    h.dateText = format::displayDate(today);
    h.dueDateText = format::displayDate(today.addDays(30));
    h.nature = text(*c, QStringLiteral("c_nature")).trimmed();
    h.competitionIndex = kMiscIndex;
    h.competitionTitle = text(*c, QStringLiteral("c_intitule")).trimmed();
    h.codification = text(*c, QStringLiteral("c_codification"));
    h.billed = billed;
    return h;
}

// Three priced articles of the installation, at their latest tariff.
std::vector<InvoiceLine> threeLines(const store::Store& s) {
    const auto rows = s.select(QStringLiteral(
        "SELECT a_index, a_libelle, (SELECT t_tarif FROM strtarifsaison WHERE t_article = a_index "
        "ORDER BY t_saison DESC LIMIT 1) FROM strarticle WHERE a_index IN (SELECT t_article FROM "
        "strtarifsaison) ORDER BY a_index LIMIT 3"));
    if (rows.size() < 3)
        throw Refusal(
            QStringLiteral("Il faut au moins trois articles avec un tarif pour les "
                           "factures d'essai."));
    std::vector<InvoiceLine> lines;
    qint64 quantity = 0;
    for (const auto& r : rows)
        lines.push_back({r.value(0).toString(), r.value(1).toString(), ++quantity,
                         Money::fromVariant(r.value(2))});
    return lines;
}

// One invoice as the entry screen leaves it: the header with its "à définir"
// line, the real lines, then the placeholder removed. All of it in one
// transaction, so that a failure leaves no header without its lines.
QString makeInvoice(store::Store& s, const InvoiceHeader& header,
                    const std::vector<InvoiceLine>& lines, const QDate& today) {
    store::Transaction tx(s);
    const QString number = createInvoice(s, header, today);
    for (const auto& line : lines) appendLine(s, number, line);
    removeLine(s, number, QStringLiteral("01"));
    tx.commit();
    return number;
}

int trialInvoices(app::BatchContext& c) {
    const QString countText = app::requiredArgument(c.positional(), 0, kUsage);
    bool ok = false;
    const int count = countText.toInt(&ok);
    if (!ok || count <= 0)
        throw Refusal(QStringLiteral("Le nombre de factures « %1 » n'est pas valide. Usage : "
                                     "orve-batch %2")
                          .arg(format::echoed(countText), kUsage));
    app::Session& session = c.session();
    store::Store& s = session.store();
    const QDate today = session.today();
    const InvoiceParty club = clubParty(s, c.option(QStringLiteral("--club")).trimmed());
    const InvoiceHeader header = miscHeader(s, club, today);
    const std::vector<InvoiceLine> lines = threeLines(s);

    QElapsedTimer total;
    total.start();
    qint64 slowest = 0;
    int retries = 0;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer one;
        one.start();
        // The retry lives here, around the whole invoice, and not in the store:
        // once the engine refuses a statement because another workstation holds
        // the data, the transaction around it is rolled back, and the number read
        // in it may already belong to that workstation. Only the caller knows the
        // whole operation, so only it can start again from a fresh transaction and
        // a fresh number. Repeating the one statement in the store would write it
        // into a transaction that no longer exists.
        for (int attempt = 1;; ++attempt) {
            try {
                makeInvoice(s, header, lines, today);
                break;
            } catch (const StoreError& e) {
                if (!e.busy() || attempt == kAttempts) throw;
                ++retries;
                // Spread out, so that the workstations that collided do not meet again.
                const int pause = kFirstPauseMs << (attempt - 1);
                QThread::msleep(pause + QRandomGenerator::global()->bounded(pause));
            }
        }
        slowest = std::max(slowest, one.elapsed());
    }
    c.out() << count << " facture(s) d'essai créée(s) pour " << club.account << " en "
            << total.elapsed() << " ms ; la plus lente : " << slowest
            << " ms ; reprise(s) après conflit : " << retries << "\n";
    return 0;
}

}  // namespace

void registerInvoiceLoadCommand(app::BatchRegistry& r) {
    r.add({QStringLiteral("factures-essai"), kUsage + QStringLiteral(" --as LOGIN"), trialInvoices,
           app::entryRights(QStringLiteral("mnu_facturation_diverses"))});
}

}  // namespace orve::invoicing
