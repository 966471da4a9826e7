#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include "store/Store.h"

// The one-off repairs of the "&Outils" menu. Most are fixed to the seasons,
// invoices and competitions they once repaired at the federation, and are kept
// so: the same damage may still sit in data brought over from an older
// installation. Each repair is one transaction (all its changes or none) and
// returns what it changed; each has a count of the same records, made
// without writing, for the question asked first.
namespace orve::tools {

// The fixed targets, kept as they were.
inline const QString kDeletedSeason = QStringLiteral("2014");
inline const QString kResetSeason = QStringLiteral("2013");
inline const QString kResetDocuments = QStringLiteral("Facture_2013*.pdf");
inline const QString kMerignacCompetition = QStringLiteral("00019746");
inline const QString kLeagueType = QStringLiteral("LI");
inline const QString kLeagueNature = QStringLiteral("LIA");
inline const QString kMonacoCommittee = QStringLiteral("098");
inline const QStringList kInvoices121 = {QStringLiteral("2014000121"), QStringLiteral("2014000122"),
                                         QStringLiteral("2014000124")};
inline const QStringList kInvoices123 = {QStringLiteral("2014000140"), QStringLiteral("2014000141"),
                                         QStringLiteral("2014000123"),
                                         QStringLiteral("2014000017")};
inline const QString kCompetition123 = QStringLiteral("00021810");
inline const QStringList kInvoices260 = {QStringLiteral("2014000260")};
inline const QString kCompetition260 = QStringLiteral("00022625");
inline const QString kStrayCompetition = QStringLiteral("00024967");
inline const QString kChallengeTitle = QStringLiteral("CHALLENGE FÉDÉRAL");

// What a repair changed, or would change.
struct Changes {
    int competitions = 0;  // competition rows reset, renamed or deleted
    int headers = 0;       // invoice headers deleted or changed
    int lines = 0;         // invoice lines deleted or changed
    int others = 0;        // licensees, committees
    int documents = 0;     // invoice documents taken out of the invoice folder
    int records() const { return competitions + headers + lines + others; }
    int total() const { return records() + documents; }
};

// mnu_outils_1: each line takes its header's invoiced party, customer and nature.
Changes countLinesToAlign(const store::Store& store);
Changes alignLinesWithHeaders(store::Store& store);

// mnu_outils_13: competitions invoiced ("F") whose document was never made
// ("NON"): their invoice (header and lines) is deleted and they go back to
// "not invoiced".
Changes countUnprintedInvoices(const store::Store& store);
Changes resetUnprintedInvoices(store::Store& store);

// mnu_outils_2: the competitions of season 2014 are deleted.
Changes countCompetitions2014(const store::Store& store);
Changes deleteCompetitions2014(store::Store& store);

// mnu_outils_4: the invoiced competitions of season 2013 lose their invoices
// and go back to "not invoiced"; the documents "Facture_2013*.pdf" leave the
// invoice folder for `keepFolder` (the backup made first), once the data are
// written.
Changes count2013Invoices(const store::Store& store, const QString& invoiceFolder);
Changes reset2013Invoices(store::Store& store, const QString& invoiceFolder,
                          const QString& keepFolder);

// mnu_outils_6: competition 00019746 of season 2013 goes back to "not invoiced".
Changes countMerignacInvoice(const store::Store& store);
Changes resetMerignacInvoice(store::Store& store);

// mnu_outils_5: the season-2013 competitions of type "LI" take the nature "LIA".
Changes countLeagueCompetitions2013(const store::Store& store);
Changes setLeagueNature2013(store::Store& store);

// mnu_outils_7: every licensed player is deleted.
Changes countLicensees(const store::Store& store);
Changes deleteLicensees(store::Store& store);

// mnu_outils_3: committee 098 "MONACO", 98000, invoiced to league LR21; a
// committee 098 already there is left as it is (nothing changed).
Changes countCommitteeToAdd(const store::Store& store);
Changes addMonacoCommittee(store::Store& store, const QDate& today);

// mnu_outils_8: invoices 2014000121, 2014000122 and 2014000124 are deleted
// with their lines.
Changes countInvoices121(const store::Store& store);
Changes deleteInvoices121(store::Store& store);

// mnu_outils_10: invoices 2014000140, 2014000141, 2014000123 and 2014000017
// are deleted with their lines; competition 00021810 goes back to "not invoiced".
Changes countInvoices123(const store::Store& store);
Changes deleteInvoices123(store::Store& store);

// mnu_outils_12: invoice 2014000260 is deleted with its lines; competition
// 00022625 goes back to "not invoiced".
Changes countInvoice260(const store::Store& store);
Changes deleteInvoice260(store::Store& store);

// mnu_outils_11: each invoiced competition takes its invoice's mailed flag.
Changes countMailFlagsToCopy(const store::Store& store);
Changes copyMailFlagsToCompetitions(store::Store& store);

// mnu_outils_9 ("espion"): every invoice line whose competition is unknown
// ("index inconnu") or carries another invoice number ("ligne mal affectée :
// … au lieu de …"). The pseudo-competitions group many invoices under no
// number and are not checked. Writes nothing.
QStringList spyInvoiceLines(const store::Store& store);

// mnu_outils_14: the invoice lines filed under competition 00024967 are deleted.
Changes countStrayLines(const store::Store& store);
Changes deleteStrayLines(store::Store& store);

// mnu_outils_15 ("doublon"): "doublon " + number for each header whose number
// equals the previous one's in number order. Writes nothing.
QStringList duplicateInvoiceNumbers(const store::Store& store);

// mnu_outils_16: the invoices of the "CHALLENGE FÉDÉRAL" not already waiting
// for the accounting transfer are put back in it ("N").
Changes countChallengeInvoices(const store::Store& store);
Changes retransferChallengeInvoices(store::Store& store);

}  // namespace orve::tools
