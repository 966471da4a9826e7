#pragma once

#include <vector>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceDocument.h"

class QPainter;
class QPagedPaintDevice;

// The invoice document's pages: A4 laid out in twips (1440 per inch), the
// same drawing for the PDF file and for a printer. Nothing printed is cut: a
// text longer than its place goes on to further lines (on the remittance slip
// it is made smaller). The layout keeps no state between documents, so
// documents may be drawn on several threads at once.
namespace orve::invoicing {

// How many rows each page takes, given the height of each row, so that the
// totals, the notices and the slip fit under the last ones. `firstPageHeadY`
// is where the first page's table heads stand, `lastTableBottom` the lowest
// the table may end on the last page.
std::vector<int> paginateRows(const std::vector<int>& rowHeights, int firstPageHeadY,
                              int lastTableBottom);
// The same for rows of one line each, with the usual closing part.
std::vector<int> paginateLines(int lineCount, int firstPageHeadY);

// Paints the whole document on a paged device (PDF or printer) whose painter
// draws in twips.
void paintInvoiceDocument(QPainter& painter, QPagedPaintDevice& device,
                          const InvoiceDocumentData& doc, const DocumentSettings& settings);

}  // namespace orve::invoicing
