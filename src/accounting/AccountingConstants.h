#pragma once

#include <QString>

#include "invoicing/RecordStates.h"

// What the accounting transfer, the sales journal and the statistics fix in
// the program: default accounts, file names, and the operator's messages.
namespace orve::accounting {

// Accounts and analysis codes used when the data give none.
inline const QString kDefaultSalesAccount = QStringLiteral("700000000");
inline const QString kDefaultAnalysisCode = QStringLiteral("000");
inline const QString kDefaultCustomerAccount = QStringLiteral("999999");
// Articles whose analysis code comes from the article itself.
inline const QString kLicenceNature = QStringLiteral("LIC");
inline const QString kMiscNature = QStringLiteral("DIV");
// A club's account code begins so; any other party is a committee.
inline const QString kClubPrefix = QStringLiteral("CL");

// Transfer files in the data folder: "Transfert_20261121.csv" (national, one
// a day) and "Transfert_2_20261121.csv" (league, never overwritten).
inline const QString kTransferPrefix = QStringLiteral("Transfert_");
inline const QString kTransferSuffix = QStringLiteral(".csv");
// What a transfer leaves beside its file while it is being written.
inline const QString kTransferTemporarySuffix = QStringLiteral(".tmp");
// Due date written for an invoice whose header is missing.
inline const QString kNoDueDate = QStringLiteral("00000000");

inline const QString kNationalHeader = QStringLiteral(
    "N° Facture;Date Facture;Date Echeance;Compte Tiers;Index Competition;Num Tournoi;Nature;"
    "CODE2;Intitule Competition;Montant;KVARN;JKV;");
inline const QString kLeagueHeader = QStringLiteral(
    "N Facture;Date Facture;Date Echeance;N compte;Intitule Competition;Montant;"
    "sens;analytique");
inline const QString kCredit = QStringLiteral("C");
inline const QString kDebit = QStringLiteral("D");

// Transfer states of an invoice header (ent_compta): its yes and no.
inline const QString& kTransferred = invoicing::kYes;
inline const QString& kNotTransferred = invoicing::kNo;

// Who to call when a cancelled file names an invoice that is gone; orve.ini
// [support] contact replaces it.
inline const QString kDefaultSupportContact = QStringLiteral("l'assistance ORVE");

inline const QString kNothingToTransfer = QStringLiteral("aucune facture à transférer");
inline const QString kTransferWritten = QStringLiteral("le fichier de transfert a été généré : ");
inline const QString kNoSuchFile = QStringLiteral("ce fichier n'existe pas");
inline const QString kEmptyTransferFile = QStringLiteral("Aucun anregistrement sur ce fichier");
inline const QString kConfirmCancel = QStringLiteral(
    "Etes-vous certain de vouloir annuler ce transfert et repositionner les factures pour un "
    "transfert ultérieur ?");
inline const QString kMissingHeader = QStringLiteral("l'entete de la facture N° ");
inline const QString kMissingHeaderEnd = QStringLiteral(" n'existe plus !!! Problème-- voir ");
inline const QString kDone = QStringLiteral("traitement terminé");

// Statistics.
inline const QString kPrivateNature = QStringLiteral("PRIVE");
inline const QString kPrivateTitle = QStringLiteral("Tournois Privés");
inline const QString kCumulative = QStringLiteral("CUM");
inline const QString kCumulativeTitle = QStringLiteral("Cumul de la facturation");
inline const QString kCumulativeState = QStringLiteral("C");
inline const QString kFiller = QStringLiteral("-");
inline const QString kNoSortDate = QStringLiteral("00000000");
inline const QString kNothingKept =
    QStringLiteral("aucune ligne de facturation correspond à votre demande");

}  // namespace orve::accounting
