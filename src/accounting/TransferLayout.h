#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "store/Money.h"

// The two layouts of a transfer file as the accounting package reads them:
// text in Windows-1252 with CRLF line ends, every field followed by ";".
// Pure text work: the rows come from the transfer's statement.
namespace orve::accounting {

enum class TransferLayout { National, League };

// The national layout belongs to the user league "JKV", every other league
// writes the league layout.
TransferLayout transferLayoutOf(const QString& userLeague);

// One line of the national layout, a field per column of the file. The
// transfer's statement has already summed the invoice lines of the same
// invoice, account and code (compared without regard to case) into it.
struct NationalLine {
    QString invoiceKey;   // "N° Facture": the season and the number's last four digits
    QString invoiceDate;  // "Date Facture", dd/mm/yyyy
    // "Date Echeance"; nothing when the line's header is missing, which the
    // file writes as kNoDueDate with no party and no competition index.
    std::optional<QString> dueDate;
    QString customerAccount;              // "Compte Tiers"
    QString competitionIndex;             // "Index Competition"
    QString tournament;                   // "Num Tournoi": c_numero, a number written "000"
    QString nature;                       // "Nature"
    QString code2;                        // "CODE2"
    QString title;                        // "Intitule Competition"
    Money amount;                         // "Montant"
    QString account;                      // "KVARN": t_kvarn
    QString analysis;                     // "JKV": t_jkv
    std::optional<QString> headerNumber;  // the header the line marks (not written)
};

// One invoice line to transfer in the league layout.
struct LeagueLine {
    QString number;       // "N Facture": the whole invoice number, eight digits at least
    QString invoiceDate;  // "Date Facture", dd/mm/yyyy
    QString dueDate;      // "Date Echeance" of the header
    QString billedParty;  // f_tiers_fact
    Money amount;
    QString account;   // t_kvarn
    QString analysis;  // t_jkv
    std::optional<QString> headerNumber;
};

// The customer accounts of the league layout: clubs by code, committees by
// number; a party found in neither takes "999999".
class CustomerAccounts {
  public:
    void addClub(const QString& code, const QString& account);
    void addCommittee(const QString& number, const QString& account);
    QString accountOf(const QString& billedParty) const;

  private:
    QHash<QString, QString> m_clubs;
    QHash<QString, QString> m_committees;
};

struct TransferContent {
    QByteArray bytes;
    int lines = 0;  // data lines, header line not counted
    // The headers that the file takes, each once, in the file's order.
    std::vector<QString> invoices;
    Money amount;  // what the file transfers (credit side)
};

// National layout: a file line per line given, in the order given.
TransferContent nationalTransfer(const std::vector<NationalLine>& lines);
// League layout: rows in (number, line) order; a credit line per row, a
// customer line after each invoice.
TransferContent leagueTransfer(const std::vector<LeagueLine>& rows,
                               const CustomerAccounts& accounts);

// "N° Facture" of the national layout: the season followed by the last four
// characters of the number ("2021" and "2021000012" give "20210012").
QString nationalInvoiceKey(const QString& season, const QString& number);

// A transfer file read back: its captions and, per data line, its fields
// x_1..x_12 (empty when missing).
struct TransferFileRows {
    TransferLayout layout = TransferLayout::National;
    QStringList captions;
    std::vector<QStringList> rows;
    Money amount;  // what the file transfers, read back from its amounts
};
// Refusals: "ce fichier n'existe pas", "Aucun anregistrement sur ce fichier".
TransferFileRows readTransferFile(const QString& path);

// Text as the accounting package's files carry it.
QByteArray toWindows1252(const QString& text);
// Windows-1252, or UTF-8 when the bytes are (a file opened and saved again
// by another program, say).
QString fromTransferBytes(const QByteArray& bytes);

}  // namespace orve::accounting
