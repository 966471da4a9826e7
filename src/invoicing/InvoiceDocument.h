#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "invoicing/InvoiceRecords.h"
#include "store/Money.h"
#include "store/Store.h"

class QPainter;
class QPagedPaintDevice;

namespace orve::app {
class Session;
}

// The invoice document: one stored invoice or credit note laid out on A4 in
// twips (1440 per inch) and written to its PDF file in the invoice folder.
namespace orve::invoicing {

// Installation data printed on every document, from orve.ini.
struct Letterhead {
    QString name = QStringLiteral("FEDERATION KVARN");
    QString address;
    QString telephone;
    QString fax;
    QString registration;
    QString bank;
    QString iban;
    QString bic;
    QString logo = QStringLiteral(":/images/logo.png");
    QString background = QStringLiteral(":/images/papier_facture.jpg");
    QString printer;       // also send each document made from a screen to it; "" for none
    bool openPdf = false;  // open each document made from a screen in the PDF viewer
    static Letterhead fromSettings(const QString& iniPath);
    // Address, telephone, fax and registration joined on one line.
    QString footerLine() const;
};

// Everything the layout needs besides the invoice itself.
struct DocumentSettings {
    QString invoiceFolder;
    Letterhead letterhead;
    QString operatorLogin;   // "" when nobody is signed in (a batch without --as)
    QString operatorLeague;  // the operator's entity code (par_region)
    // Below the national level the documents are printed on the league paper.
    bool nationalLetterhead() const { return operatorLeague == QStringLiteral("JKV"); }
    // A committee operator: login or entity code beginning "CD".
    bool committeeOperator() const;
};
DocumentSettings documentSettings(const app::Session& session);

// An invoice as the document prints it.
struct InvoiceDocumentData {
    QString number;  // ent_fact_no
    bool creditNote = false;
    QString date, dueDate;
    QString account, entity;  // ent_tiers_fact, ent_fact_entite
    QStringList billed;       // name, president, address lines, postcode and town
    QString billedName;
    QString clientAccount;
    QStringList client;
    QString competitionTitle;
    QString competitionDate, season, code1, code2;  // from the competition row
    Money deposit;
    std::vector<StoredLine> lines;
    Money total() const;
};

// Reads a header, its lines and its competition. Refusal when the invoice
// does not exist or has no line ("aucune ligne sur cette facture").
InvoiceDocumentData loadInvoiceDocument(const store::Store& store, const QString& number);

// The party block "Client concerné : " is printed unless the invoiced party is
// a committee ("CD…"), a club ("CL…") or a centre ("BOW…"), or the operator
// is a committee.
bool showsClientBlock(const QString& account, const DocumentSettings& settings);

// invoice folder / (entity code when not blank, else account) + "_FN_" +
// eight-digit number + ".pdf": the mailing builds the same name.
QString invoicePdfPath(const QString& invoiceFolder, const QString& account, const QString& entity,
                       const QString& number);

// How many lines each page takes, so that the totals, the notice and the
// slip fit under the last ones. `firstPageHeadY` is where the first page's
// table heads stand.
std::vector<int> paginateLines(int lineCount, int firstPageHeadY);

// Paints the whole document on a paged device at 1440 dpi (PDF or printer).
void paintInvoiceDocument(QPainter& painter, QPagedPaintDevice& device,
                          const InvoiceDocumentData& doc, const DocumentSettings& settings);

// Writes the PDF of a stored invoice or credit note, replacing an older file,
// then marks the header (ent_fact_edt "O", ent_montant) and the competition
// row that carries its number (c_facture "F", c_edt_fact "OUI", c_add_tiers
// "N", c_envoi_mail "N") in one transaction. Returns the file's path.
QString generateInvoicePdf(store::Store& store, const DocumentSettings& settings,
                           const QString& number);

// The documents of the credit notes numbered first to last (by value); each
// header gets ent_fact_edt "O". Returns the files written.
std::vector<QString> generateCreditNotePdfs(store::Store& store, const DocumentSettings& settings,
                                            const QString& first, const QString& last);

// Position of the first printer whose name matches `name` without regard to
// case, "*" and "?" as wildcards; -1 when none.
int findPrinter(const QStringList& printerNames, const QString& name);
QString printerNotFoundMessage(const QString& name);

}  // namespace orve::invoicing
