#include <QDir>

#include "app/BatchCommands.h"
#include "invoicing/CreditNotes.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoicingBatch.h"
#include "reference/Visibility.h"
#include "store/Refusal.h"

namespace orve::invoicing {

namespace {

const QString kUsage = QStringLiteral("pdf NUMERO... | pdf --credit-notes PREMIER DERNIER");

int pdf(app::BatchContext& c) {
    const QStringList numbers = c.positional({QStringLiteral("--credit-notes")});
    app::Session& session = c.session();
    const DocumentSettings settings = documentSettings(session);
    if (c.hasFlag(QStringLiteral("--credit-notes"))) {
        if (numbers.size() != 2)
            throw Refusal(QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(kUsage));
        const auto written =
            generateCreditNotePdfs(session.store(), settings, numbers[0], numbers[1]);
        for (const QString& path : written)
            c.out() << "document écrit : " << QDir::toNativeSeparators(path) << "\n";
        c.out() << written.size() << " avoir(s) édité(s)\n";
        return 0;
    }
    if (numbers.isEmpty())
        throw Refusal(QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(kUsage));
    if (numbers.size() == 1) {
        const QString path = generateInvoicePdf(session.store(), settings, numbers.front());
        c.out() << "document écrit : " << QDir::toNativeSeparators(path) << "\n";
        return 0;
    }
    // Many documents are drawn on every core.
    const auto written =
        generateInvoicePdfs(session.store(), settings, {numbers.begin(), numbers.end()});
    for (const QString& path : written)
        c.out() << "document écrit : " << QDir::toNativeSeparators(path) << "\n";
    return 0;
}

const QString kCreditNoteUsage = QStringLiteral("avoir NUMERO...");

// What the invoice screen's credit-note button does for the invoices ticked:
// the same rule and refusals; with no operator to agree to leave some out, a
// list with any refusal writes nothing.
int creditNotes(app::BatchContext& c) {
    const QStringList numbers = c.positional();
    if (numbers.isEmpty())
        throw Refusal(
            QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(kCreditNoteUsage));
    app::Session& session = c.session();
    const auto issued = issueCreditNotesWithDocuments(
        session.store(), documentSettings(session), {numbers.begin(), numbers.end()},
        session.today(),
        [&c](const IssuedCreditNote& note, const QString& file, int, int) {
            // Printed as each is committed: a later failure
            // leaves these made, and the output says so.
            c.out() << "avoir N° " << note.creditNote << " : facture N° " << note.invoice
                    << " annulée\n"
                    << "document écrit : " << QDir::toNativeSeparators(file) << "\n";
            c.out().flush();
            return true;
        },
        reference::Viewer::of(session).level());
    c.out() << issued.size() << " avoir(s) généré(s)\n";
    return 0;
}

}  // namespace

void registerInvoicingBatchCommands(app::BatchRegistry& r) {
    r.add({QStringLiteral("pdf"), kUsage + QStringLiteral(" --as LOGIN"), pdf,
           app::entryRights(QStringLiteral("mnu_facturation_globale"))});
    r.add({QStringLiteral("avoir"), kCreditNoteUsage + QStringLiteral(" --as LOGIN"), creditNotes,
           app::entryRights(QStringLiteral("mnu_facturation_globale"))});
}

}  // namespace orve::invoicing
