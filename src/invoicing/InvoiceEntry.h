#pragma once

#include <QDate>
#include <QString>
#include <optional>
#include <vector>

#include "app/ListItems.h"
#include "invoicing/InvoiceRecords.h"
#include "invoicing/SelectionFilter.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// The invoice entry screen's rules ("FACTURATION DIRECTE"): what each mode
// invoices, the list of the invoices already made, the articles and prices of
// the line editor, and the header as the operator fills it.
namespace orve::invoicing {

// What a menu entry asks of the entry screen.
struct EntryMode {
    QString code;               // "LIC", "DIV", "LI", "JORE", "PRIVE", "COMPET"
    QString natureType;         // the panel's natures: "LI", "DV", "JO", "PR", "FD"
    QString nature;             // nature of the invoices and their articles; "" = the competition's
    QString competitionIndex;   // pseudo-competition filed under; "" = the competition chosen
    QString competitionFilter;  // c_facture of the competitions listed
    bool manual = false;        // a line validated offers to add another
    bool asksCompetitionData = false;  // LI and JORE: number and title typed first
    QString presetText;                // free text preset in the line editor
};

inline const QString kLicenceSlipText = QStringLiteral("Bordereau N° ");
inline const QString kChooseArticle = QStringLiteral("Choisir votre article à facturer");
inline const QString kFreeTextLabel = QStringLiteral("Texte libre");
// Articles offered in every mode besides those of its nature.
inline const QString kTaxNature = QStringLiteral("TX");

// Refusal for a code no menu entry gives.
EntryMode entryMode(const QString& code);

// ---- The invoice list -------------------------------------------------------

struct ListingTotals {
    Money amount;
    qint64 quantity = 0;
    int rows = 0;
};

// Refills the workstation's listing (scratch strcompetition) with one row per
// line of each invoice filed under the competitions the panel chooses for the
// mode: the competition's fields, the invoice's number, the line's date,
// text, quantity, price and amount, and whether the invoice was mailed.
// Credit notes are listed like invoices, their negative amounts taking their
// invoices off the totals. Ticks are cleared.
ListingTotals refreshInvoiceListing(store::Store& store, const EntryMode& mode,
                                    const SelectionCondition& selection);

// The listing as the grid reads it: by invoice number, highest first; with
// `tickedOnly` the ticked invoices alone.
store::Query invoiceListingQuery(bool tickedOnly = false);

// Ticks (or unticks) every row of one invoice in the listing.
void setListingTick(store::Store& store, const QString& invoiceNumber, bool ticked);
// The ticked invoices, each once, oldest first.
std::vector<QString> tickedInvoices(const store::Store& store);

// "Montant facturé : 1 234,50 €" and "Quantité facturée : 12".
QString totalAmountText(Money amount);
QString totalQuantityText(qint64 quantity);

// ---- The line editor --------------------------------------------------------

// The articles of a nature and the taxes, by index, then the free-text line.
app::ListItems articleItems(const store::Store& store, const QString& nature);
// The season's price of an article for a nature; a tax takes its own price
// whatever the nature. Nothing when none is set.
std::optional<Money> articleTariff(const store::Store& store, const QString& article,
                                   const QString& season, const QString& nature);

// The line as the editor holds it. The free-text article takes the typed
// text, any other article its name. Refusal for no article, a quantity or a
// price that is not a number.
InvoiceLine editedLine(const store::Store& store, const QString& article,
                       const QString& quantityText, const QString& priceText,
                       const QString& freeText);

// Writes the edited line over `lineNumber` and brings the total and type up
// to date, in one transaction.
InvoiceTotal writeEditedLine(store::Store& store, const QString& number, const QString& lineNumber,
                             const InvoiceLine& line);

// ---- The header -------------------------------------------------------------

// The header as the screen holds it.
struct EntryHeaderState {
    QString dateText;
    InvoiceParty billed;
    InvoiceParty client;        // empty: the party invoiced
    QString competitionIndex;   // modes without a pseudo-competition: the chosen one
    QString competitionNumber;  // LI, JORE: "N° Fiche de compétition KVARN"
    QString competitionTitle;   // LI, JORE: "Nom et date de la ligue"
    QString depositText = QStringLiteral("0");
    QString dueDateText;  // an invoice brought back keeps its own; empty: the invoice date
    QString level = QStringLiteral("JKV");  // the operator's level, which issues a new invoice
};

// LI and JORE: the competition title typed in the invoice's own data
// ("Nom et date de la ligue") is required; Refusal otherwise.
void checkCompetitionData(const EntryMode& mode, const QString& title);

// The header to write: the competition's index, title, nature and
// codification (LI and JORE take the typed number and title). Refusal for a
// missing date, party, competition or LI/JORE data, or a bad deposit.
InvoiceHeader entryHeader(const store::Store& store, const EntryMode& mode,
                          const EntryHeaderState& state);

// Creates the invoice (empty `number`) with its first line, or rewrites the
// header of an existing one, whose type still follows its lines (a credit
// note stays one). Returns the number.
QString saveEntryHeader(store::Store& store, const EntryMode& mode, const EntryHeaderState& state,
                        const QString& number, const QDate& today);

// A stored invoice brought back into the screen.
struct EntryInvoice {
    QString number;
    QString type;
    EntryHeaderState state;
    QString nature;
    std::vector<StoredLine> lines;
};
// Refusal when there is no such invoice.
EntryInvoice loadEntryInvoice(const store::Store& store, const QString& number);

// The name of the invoice's document in the invoice folder ("Edition"), or
// empty when it has not been made there yet.
QString existingDocumentName(const store::Store& store, const QString& invoiceFolder,
                             const QString& number);

}  // namespace orve::invoicing
