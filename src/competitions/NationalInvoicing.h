#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "competitions/RowInvoicing.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Condition.h"
#include "store/Money.h"
#include "store/Store.h"

// Batch invoicing of the imported competitions: the national club
// championship (one master row per club and gender, lines at levels N1 to N3)
// and the private competitions (a fixed part and a fee per player). One
// invoice per master row, made out to the party its c_codification names;
// the row goes " " → "C" (calculation) → "A" (invoice written) → "F"
// (document on disk), as the competition window's party rows do.
namespace orve::competitions {

enum class BatchKind { Championship, Private };

// Limits that belonged to the data of one season: in 2018 the championship
// keys from "8FD00480" on and the private competitions dated from September
// 2018 on were invoiced otherwise. Other seasons have no such limit.
inline const QString kLimitedSeason = QStringLiteral("2018");
inline const QString kChampionshipKeyLimit = QStringLiteral("8FD00480");
inline const QString kPrivateDateLimit = QStringLiteral("20180900");

// The codification of a row that names nobody to invoice.
inline const QString kNoParty = QStringLiteral("CL99999");

// The championship's natures begin "CDCN"; "CDCNH" is the men's.
inline const QString kChampionshipNaturePrefix = QStringLiteral("CDCN");
inline const QString kMenChampionship = QStringLiteral("CDCNH");
inline const QString kWomenChampionship = QStringLiteral("CDCND");
inline const QString kPrivateType = QStringLiteral("PR");
inline const QString kPrivateNature = QStringLiteral("PRIVE");

// Tariff articles of the private lines (the championship's lines are lines:
// kLineFeeArticle).
inline const QString kFixedPartArticle = QStringLiteral("99999992");
inline const QString kPlayerFeeArticle = QStringLiteral("99999993");

// Every master row of one kind and season, whatever its state.
store::Condition batchRowsCondition(BatchKind kind, const QString& season);
// The master rows of a season not yet calculated (the window's grid), and
// those the calculation marked "C", by key.
store::Query openBatchRowsQuery(BatchKind kind, const QString& season);
store::Query calculatedBatchRowsQuery(BatchKind kind, const QString& season);

// What the calculation and the lines read of one imported row.
struct BatchRow {
    QString index;                  // c_index
    QString season;                 // c_saison
    QString codification;           // c_codification
    QString nature;                 // c_nature
    QString sortDate;               // c_tri_finale
    qint64 n1 = 0, n2 = 0, n3 = 0;  // c_cod3..c_cod5: lines at each level
    Money fixedPart;                // c_nb_equipe_eliminatoire, in cents as every amount
    qint64 players = 0;             // c_nb_equipe_finale
};
BatchRow batchRowOf(const store::Row& row);

// Whether a row is to be invoiced: never "CL99999"; a championship row with
// lines at some level, below "8FD00480" in season 2018; a private row with a
// fixed part or players, dated before September 2018 in season 2018.
bool batchRowOwes(BatchKind kind, const BatchRow& row);

// Marks "C" the open rows of the season that owe something, after putting
// back to " " the rows a previous calculation of this kind marked. Returns
// the rows marked. One transaction.
int calculateBatch(store::Store& store, BatchKind kind, const QString& season);

// What the window asks before generating: the prices its rows need.
struct BatchPlan {
    BatchKind kind = BatchKind::Championship;
    QString season;
    int rows = 0;  // rows "C"
    bool asksMenPrice = false, asksWomenPrice = false, asksPlayerPrice = false;
    Money menTariff, womenTariff, playerTariff;  // the season's (0 when none)
};
// Refusal "Aucune facture à émettre." when no row of the season is "C".
BatchPlan planBatch(const store::Store& store, BatchKind kind, const QString& season);

struct BatchPrices {
    Money menLine;    // one line of the men's championship
    Money womenLine;  // one line of the women's
    Money player;     // per player of a private competition
};

// The lines of one row (pure). A level, a fixed part or a player count of 0
// gives no line.
std::vector<invoicing::InvoiceLine> championshipLines(const BatchRow& row, Money linePrice);
std::vector<invoicing::InvoiceLine> privateLines(const BatchRow& row, Money playerPrice);

// The party a codification names by its prefix: "CL" a club, "CD" a
// committee ("CD13" is "CD013"), "BOW" a bowling centre at its invoicing
// address, "LR" a league. Refusal naming the row for any other or a party
// that does not exist.
invoicing::InvoiceParty codificationParty(const store::Store& store, const QString& codification,
                                          const QString& rowName);

// Invoices every "C" row of the season: header and numbering as the
// competition window's, due at the end of the month (or the 15th of the next)
// for every operator, the national title followed by "-Hommes" or "-Dames".
// The run holds the season's rows (a lease in the name of `login`) and
// first finishes what an interrupted run left. Everything is read and
// checked first; then as writeRowInvoices. Refusal
// "Aucune facture à émettre." when nothing is owed, "Veuillez saisir un
// tarif" for a price needed that is not above 0.
InvoicingOutcome invoiceBatch(store::Store& store, const invoicing::DocumentSettings& settings,
                              BatchKind kind, const QString& season, const BatchPrices& prices,
                              const QDate& today, const InvoicingProgress& progress = {},
                              const QString& login = {});

}  // namespace orve::competitions
