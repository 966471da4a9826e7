#include "competitions/ui/GenerationOutput.h"

#include <QDir>
#include <QPrinterInfo>
#include <QStringList>

#include "app/Session.h"
#include "app/ui/ScreenSupport.h"
#include "competitions/InvoicingRuns.h"
#include "invoicing/InvoiceDocument.h"
#include "invoicing/PrinterLookup.h"
#include "invoicing/ui/InvoiceOutput.h"
#include "store/Refusal.h"

namespace orve::competitions {

void checkDocumentPrinter(const QString& printer) {
    if (printer.isEmpty()) return;
    QStringList names;
    for (const QPrinterInfo& p : QPrinterInfo::availablePrinters()) names << p.printerName();
    if (invoicing::findPrinter(names, printer) < 0)
        throw Refusal(invoicing::printerNotFoundMessage(printer));
}

QString generationMessage(const InvoicingOutcome& outcome, const QString& invoiceFolder) {
    const QString where = QDir::toNativeSeparators(invoiceFolder);
    const int made = static_cast<int>(outcome.numbers.size());
    QString text = outcome.cancelled ? QStringLiteral("Génération interrompue. ") : QString();
    if (made == 0) {
        text += QStringLiteral("Aucune facture n'a été générée.");
        if (const QString notes = outcomeNotes(outcome); !notes.isEmpty())
            text += QChar('\n') + notes;
        return text;
    }
    text += made == 1 ? QStringLiteral("Facture générée : 1 (N° %1).").arg(outcome.numbers.front())
                      : QStringLiteral("Factures générées : %1 (N° %2 à %3).")
                            .arg(made)
                            .arg(outcome.numbers.front(), outcome.numbers.back());
    text += QStringLiteral("\nDocuments (%1) dans le dossier : %2")
                .arg(outcome.files.size())
                .arg(where);
    if (const QString notes = outcomeNotes(outcome); !notes.isEmpty()) text += QChar('\n') + notes;
    return text;
}

void resumeInterruptedWork(app::Session& session, app::Dialogs& dialogs) {
    FinishedRows finished;
    app::guarded(dialogs, [&] {
        releaseCalculatedRows(session.store());
        finished = finishInterruptedRows(session.store(), invoicing::documentSettings(session));
    });
    if (!finished.empty()) dialogs.inform(finished.report());
}

void printGenerated(const store::Store& store, app::Dialogs& dialogs,
                    const invoicing::DocumentSettings& settings,
                    const std::vector<QString>& numbers) {
    if (settings.letterhead.printer.isEmpty()) return;
    app::guarded(dialogs, [&] {
        for (const QString& number : numbers)
            invoicing::printInvoiceDocument(settings.letterhead.printer,
                                            invoicing::loadInvoiceDocument(store, number),
                                            settings);
    });
}

}  // namespace orve::competitions
