#pragma once

#include <vector>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceDocument.h"

class QPainter;
class QPagedPaintDevice;

// The invoice document's pages: A4 laid out in twips (1440 per inch), the
// same drawing for the PDF file and for a printer.
namespace orve::invoicing {

// How many lines each page takes, so that the totals, the notice and the
// slip fit under the last ones. `firstPageHeadY` is where the first page's
// table heads stand.
std::vector<int> paginateLines(int lineCount, int firstPageHeadY);

// Paints the whole document on a paged device at 1440 dpi (PDF or printer).
void paintInvoiceDocument(QPainter& painter, QPagedPaintDevice& device,
                          const InvoiceDocumentData& doc, const DocumentSettings& settings);

}  // namespace orve::invoicing
