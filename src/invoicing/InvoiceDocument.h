#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Money.h"
#include "store/Store.h"

// The invoice document's content: one stored invoice or credit note read as
// the document prints it. The layout (InvoiceLayout.h) draws it, the file
// output (InvoiceFiles.h) writes it and marks the records.
namespace orve::invoicing {

// An invoice as the document prints it.
struct InvoiceDocumentData {
    QString number;  // ent_fact_no
    bool creditNote = false;
    // The invoice a credit note cancels, and that invoice's date.
    QString cancelledNumber, cancelledDate;
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

}  // namespace orve::invoicing
