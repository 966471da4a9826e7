#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "competitions/RowInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceRecords.h"
#include "reference/Visibility.h"
#include "store/Money.h"
#include "store/Store.h"

// Turns the "C" party rows of a competition into invoices, prints them and
// closes the rows: " " → "C" → "A" (invoice written) → "F" (document on disk).
namespace orve::competitions {

// What the window asks before generating.
struct InvoicingPlan {
    QString index;
    QString season;
    int rows = 0;                 // rows in state "C"
    bool asksEntryPrice = false;  // entry fees billed: Frame3
    bool asksLinePrice = false;   // lines billed: Frame4
    Money entryTariff;            // the season's tariff of 99999991 (0 when none)
    Money lineTariff;             // the season's tariff of 99999990
};
// Refusal "Aucune facture à émettre." when no row is "C".
InvoicingPlan planInvoicing(const store::Store& store, const QString& index);

// A confirmed price: Refusal "Veuillez saisir un tarif" unless above 0.
Money confirmPrice(const QString& typed);

struct InvoicingPrices {
    Money entry;  // per player
    Money line;   // one line
};

// The due date of an invoice made on `today` by an operator of `league`.
QDate competitionDueDate(const QDate& today, const QString& league);

// One party row with what the lines need.
struct PartyRowCounts {
    qint64 teams = 0, eliminatory = 0, finals = 0;
    qint64 eliminatoryLines = 0, finalLines = 0;  // per player
};
// The lines of one party row's invoice (pure): national natures with their
// fixed prices, else entry fees and lines as billed.
std::vector<invoicing::InvoiceLine> competitionInvoiceLines(
    const PartyRowCounts& row, const QString& nature, int playersPerTeam, bool billEntry,
    bool billLines, bool national, const QString& competitionTitle, const InvoicingPrices& prices);

// Writes one invoice per "C" row (each invoice with its lines in one
// transaction, then its row "A"), then renders the documents on every core
// and marks each row "F" once its file is on disk; the competition closes
// ("F") when a run leaves every party row "F". An invoice a killed run wrote
// without reaching its row is taken over, not written twice. A cancel stops
// between whole invoices. Refusal "Aucune facture à émettre." when no row
// owes anything, "Veuillez saisir un tarif" for a price billed that is not
// above 0. Throws StoreError or a file error; what was done stays done.
InvoicingOutcome invoiceCompetition(store::Store& store, const reference::Viewer& viewer,
                                    const invoicing::DocumentSettings& settings,
                                    const QString& index, const InvoicingPrices& prices,
                                    const QDate& today, const InvoicingProgress& progress = {});

}  // namespace orve::competitions
