#include "invoicing/ui/InvoiceOutput.h"

#include <QDesktopServices>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QUrl>

#include "app/Session.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceLayout.h"
#include "invoicing/PrinterLookup.h"
#include "store/Refusal.h"

namespace orve::invoicing {

namespace {

QPrinterInfo printerByName(const QString& name) {
    const QList<QPrinterInfo> printers = QPrinterInfo::availablePrinters();
    QStringList names;
    for (const auto& p : printers) names << p.printerName();
    const int i = findPrinter(names, name);
    if (i < 0) throw Refusal(printerNotFoundMessage(name));
    return printers[i];
}

}  // namespace

void printInvoiceDocument(const QString& printerName, const InvoiceDocumentData& doc,
                          const DocumentSettings& settings) {
    QPrinter printer(printerByName(printerName), QPrinter::HighResolution);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setFullPage(true);
    printer.setDocName(QStringLiteral("Facture ") + doc.number);
    QPainter painter;
    if (!painter.begin(&printer))
        throw StoreError(QStringLiteral("Impossible d'imprimer sur %1.").arg(printerName));
    // The layout is drawn in twips.
    const qreal scale = printer.resolution() / 1440.0;
    painter.scale(scale, scale);
    paintInvoiceDocument(painter, printer, doc, settings);
    painter.end();
}

void checkInvoicePrinter(const DocumentSettings& settings) {
    if (!settings.letterhead.printer.isEmpty()) printerByName(settings.letterhead.printer);
}

void deliverInvoiceDocument(const store::Store& store, const DocumentSettings& settings,
                            const QString& number, const QString& path) {
    const QString printer = settings.letterhead.printer;
    if (!printer.isEmpty())
        printInvoiceDocument(printer, loadInvoiceDocument(store, number), settings);
    if (settings.letterhead.openPdf) QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

QString produceInvoiceDocument(app::Session& session, const QString& number) {
    const DocumentSettings settings = documentSettings(session);
    checkInvoicePrinter(settings);
    const QString path = generateInvoicePdf(session.store(), settings, number);
    deliverInvoiceDocument(session.store(), settings, number, path);
    return path;
}

}  // namespace orve::invoicing
