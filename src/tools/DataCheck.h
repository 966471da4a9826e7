#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "store/Store.h"

// The integrity of the federation's data, checked in one pass: what the
// repair tools once mended by hand, and more. Reads only, as of one moment.
namespace orve::tools {

struct CheckResult {
    QString title;
    QStringList findings;  // one line per fault found
};

struct DataCheckReport {
    std::vector<CheckResult> checks;  // every check, in a fixed order, found something or not
    int findings() const;
    // "Vérification des données : 3 anomalies" (or "aucune anomalie").
    QString summary() const;
    // Grouped by check, each with its count, its findings indented below.
    QStringList lines() const;
    // The findings of one check, by its title; empty when it found nothing.
    QStringList findingsOf(const QString& title) const;
};

// Titles of the checks, in report order.
namespace check {
inline const QString kUnknownCompetition =
    QStringLiteral("Lignes de facture dont la compétition est inconnue");
inline const QString kOtherInvoice =
    QStringLiteral("Lignes de facture dont la compétition porte une autre facture");
inline const QString kDuplicateNumbers = QStringLiteral("Numéros de facture en double");
inline const QString kHeadersWithoutLines = QStringLiteral("Factures sans aucune ligne");
inline const QString kLinesWithoutHeader = QStringLiteral("Lignes sans en-tête de facture");
inline const QString kTotals =
    QStringLiteral("Factures dont le total enregistré diffère de la somme des lignes");
inline const QString kCreditNotes = QStringLiteral("Avoirs dont la facture annulée n'existe pas");
inline const QString kInvoicedWithoutInvoice =
    QStringLiteral("Compétitions facturées (F) sans facture");
inline const QString kOrphanPartyRows =
    QStringLiteral("Lignes de compétition dont la compétition principale n'existe pas");
inline const QString kClubDepartments = QStringLiteral("Clubs dont le département est inconnu");
inline const QString kLinesOutOfStep =
    QStringLiteral("Lignes dont le facturé, le client ou la nature diffère de l'en-tête");
inline const QString kWithoutDocument =
    QStringLiteral("Compétitions facturées dont la facture n'a pas été générée en PDF");
inline const QString kHeadersUnknownCompetition =
    QStringLiteral("Factures rattachées à une compétition inconnue");
inline const QString kTypes =
    QStringLiteral("Factures dont le type (F ou A) ne correspond pas au signe du total");
inline const QString kRowsLeftWritten =
    QStringLiteral("Lignes de compétition facturées dont le document n'a pas été fait (état A)");
inline const QString kPrintedWithoutFile =
    QStringLiteral("Factures marquées imprimées dont le fichier PDF est absent ou illisible");
}  // namespace check

// Runs every check. Writes nothing. With the invoice folder, the documents
// of the invoices marked printed are looked for there too.
DataCheckReport checkData(const store::Store& store, const QString& invoiceFolder = {});

}  // namespace orve::tools
