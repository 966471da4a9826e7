#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "invoicing/InvoiceHomes.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// Invoice headers (strentete) and lines (strfacture): how they are numbered,
// written, totalled and copied. Every screen and batch run that makes an
// invoice goes through these functions, each one a single transaction.
namespace orve::invoicing {

// Article codes with a meaning of their own, kept with their different lengths.
inline const QString kFirstLineArticle = QStringLiteral("999999999");
inline const QString kFreeTextArticle = QStringLiteral("99999999");
inline const QString kAddedLineArticle = QStringLiteral("00000001");
inline const QString kUndefinedText = QStringLiteral("à définir");
// Line number given to copied lines until they are renumbered.
inline const QString kCopyLineNumber = QStringLiteral("99");

// The numbering series every invoice and credit note takes its number from.
inline const QString kInvoiceSeries = QStringLiteral("strentete.ent_fact_no");

inline const QString kInvoiceType = QStringLiteral("F");
inline const QString kCreditNoteType = QStringLiteral("A");

// Name and address of a party as the header keeps it. A party is either a
// third party with an account (`account`) or a free address known by an
// entity code (`entity`); the unused one is stored as one blank.
// The entity code of an address typed by hand.
inline const QString kOtherEntity = QStringLiteral("AUTRE");

struct InvoiceParty {
    QString account;
    QString entity;
    QString name;
    QString president;
    QString address1, address2, address3, address4;
    QString postcodeTown;
    QString mail1, mail2;
    bool isChosen() const { return !account.trimmed().isEmpty() || !entity.trimmed().isEmpty(); }
    // Some line of name or address is written.
    bool hasAddress() const;
};

// What the operator (or a batch run) gives to make or change a header.
struct InvoiceHeader {
    QString dateText;          // "dd/mm/yyyy" as typed
    QString dueDateText;       // "dd/mm/yyyy"; empty: the invoice date
    QString nature;            // nature code of the invoice (ent_nature, f_nature)
    QString competitionIndex;  // c_index the invoice is filed under
    QString competitionTitle;
    QString codification;
    InvoiceParty billed;  // "Adresse de facturation"
    InvoiceParty client;  // "pour le compte de"
    Money deposit;
    QString type = kInvoiceType;
    // The level that issues it (ent_niveau), set at creation only: its
    // accounting transfer and its cancellation belong to that level.
    QString level = QStringLiteral("JKV");
};

// One line as written by a run or edited by the operator.
struct InvoiceLine {
    QString article;
    QString text;
    qint64 quantity = 0;
    Money unitPrice;
    Money amount() const { return unitPrice * quantity; }
};

// A line as stored.
struct StoredLine {
    QString number;  // f_num_lig
    QString article;
    QString text;
    qint64 quantity = 0;
    Money unitPrice;
    Money amount;
};

struct InvoiceTotal {
    Money total;
    QString type;  // "A" when the total is negative, else "F"
};

// The header of an invoice as stored; refuses a number that has none ("La
// facture N° … n'existe pas.").
store::Row requireHeader(const store::Store& store, const QString& number);

// The eight-digit form used by the lines and the file names.
QString paddedInvoiceNumber(const QString& number);

// The number the next header will take: the highest number in use, by its
// numeric value, plus one. Numbers of different lengths ("999", "1000") and a
// renumbering marker are taken as numbers, never as text.
QString nextInvoiceNumber(const store::Store& store);

// Checks the header as typed: "date obligatoire", "la date : … n'est pas
// valide", "veuillez sélectionner un facturé", "Adresse de facturation
// obligatoire" (an address typed by hand left blank). Throws Refusal.
QDate validateHeader(const InvoiceHeader& header);

// Writes a new header under the next number with its first line ("999999999",
// "à définir") and returns the number. One transaction: the number is read
// inside it, so it is never given twice.
QString createInvoice(store::Store& store, const InvoiceHeader& header, const QDate& today);

// Rewrites the header fields of an existing invoice; the number stays.
void modifyInvoice(store::Store& store, const QString& number, const InvoiceHeader& header);

// Adds an "à définir" line ("00000001") after the last one; returns its number.
QString addLine(store::Store& store, const QString& number);

// Writes a line with its content after the last one (batch runs, demo);
// returns its number. The total and type are brought up to date.
QString appendLine(store::Store& store, const QString& number, const InvoiceLine& line);

// Changes the content of one line and brings the total and type up to date.
void updateLine(store::Store& store, const QString& number, const QString& lineNumber,
                const InvoiceLine& line);

// Removes one line (the first-line placeholder once real lines exist, say).
void removeLine(store::Store& store, const QString& number, const QString& lineNumber);

// Sums the lines and writes the type: "A" when negative, "F" otherwise.
InvoiceTotal updateTotal(store::Store& store, const QString& number);

// The total of the lines and the type as stored; writes nothing (a screen
// showing an invoice must not change it).
InvoiceTotal readTotal(const store::Store& store, const QString& number);

// Lines in line-number order.
std::vector<StoredLine> readLines(const store::Store& store, const QString& number);
// The same lines as a grid lists them.
store::Query linesQuery(const QString& number);

// Copies every line of `fromNumber` into `toNumber` (quantities and amounts
// multiplied by `sign`, dated `date`) through the reserved line number "99",
// then renumbers them after the lines already there. Returns how many were copied.
int copyLines(store::Store& store, const QString& fromNumber, const QString& toNumber, int sign,
              const QDate& date);

// Renumbers the lines "99" of an invoice after its other lines.
void renumberCopiedLines(store::Store& store, const QString& number);

// The competition row follows its invoice: state "A", number and dates.
void markCompetitionInvoiced(store::Store& store, const QString& competitionIndex,
                             const QString& number, const QDate& date);

// Makes the competition rows of cancelled invoices invoiceable again.
int resetCompetitionInvoicing(store::Store& store, const std::vector<QString>& numbers);

}  // namespace orve::invoicing
