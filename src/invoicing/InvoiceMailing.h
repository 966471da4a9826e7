#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "invoicing/MailMessage.h"
#include "invoicing/MailTransport.h"
#include "store/Condition.h"
#include "store/Store.h"

// Mailing invoices: the list of the invoices of a nature not yet mailed, the
// workstation's ticks on it, and the run that sends each ticked invoice's PDF
// to its party and marks it mailed once the server (or the outbox) took it.
namespace orve::invoicing {

inline const QString kDefaultMailSubject = QStringLiteral("[Facture]");
inline const QString kMailingListCaption =
    QStringLiteral(" LISTE DES FACTURES A EXPEDIER PAR MAIL");
inline const QString kNatureRequired = QStringLiteral("Veuillez sélectionner la nature");
inline const QString kNothingTicked = QStringLiteral("Aucune facture de sélectionnée");
inline const QString kTestAddressRequired =
    QStringLiteral("si Procédure TEST --> adresses de mails de tests (obligatoire)");
inline const QString kMailConfirmation =
    QStringLiteral("Confirmez-vous vouloir envoyer par mails la(es) facture(s)  affichée(s)  ?");
inline const QString kInvoiceAgainQuestion = QStringLiteral(
    "Voudrez-vous refaire ultérieurement la facturation correspondant à ces factures  ?");

// ---- The list ---------------------------------------------------------------

// The invoices (and credit notes) of a nature not yet mailed, by number.
// Refusal kNatureRequired for an empty nature.
std::vector<QString> unsentInvoices(const store::Store& store, const QString& nature);

// Refills the workstation's mailing list with those invoices, unticked;
// returns how many there are.
int fillMailingList(store::Store& store, const QString& nature);
store::Query mailingListQuery();
void setMailingTick(store::Store& store, const QString& invoice, bool ticked);
// "TOUTES": every invoice of the list.
void tickWholeMailingList(store::Store& store);
std::vector<QString> tickedForMailing(const store::Store& store);

// Whether any of these documents is a credit note: mailing them asks
// whether the cancelled competitions are to be invoiced again.
bool includesCreditNotes(const store::Store& store, const std::vector<QString>& numbers);

// ---- The run ----------------------------------------------------------------

// The panel's choices.
struct MailRunOptions {
    bool realProcedure = true;   // Option2: "Réel" marks what was sent, "Test" marks nothing
    bool testAddresses = false;  // Option3: the two test addresses instead of the parties'
    QString testTo;              // txt_test_mail1
    QString testCopy;            // txt_test_mail2
    QString subject = kDefaultMailSubject;  // txt_titre_mail
    bool addCompetition = false;            // Option4
    bool attachPdf = true;                  // Option5: the PDF, or a web address in the text
    QString webAddress;                     // txt_chemin_http
    QString body;                           // txt_message_mail
    // Real procedure: the competitions the run's credit notes cancel become
    // invoiceable again, each credit note mailed or not.
    bool invoiceAgain = false;
};

// Where the run is: the invoice folder, the operator's own address (sent a
// copy of each message), the From address.
struct MailRunContext {
    QString invoiceFolder;
    QString operatorMail;
    QString sender;
};

// One invoice's message, or why it is not sent.
struct PreparedMail {
    QString invoice;
    std::optional<MailMessage> message;
    QString skipped;    // the reason, when there is no message
    QString fileName;   // the document's file name
    QString cancelled;  // for a credit note: the invoice it cancels
};
PreparedMail prepareInvoiceMail(const store::Store& store, const MailRunContext& context,
                                const MailRunOptions& options, const QString& invoice);

enum class MailOutcome { Sent, Skipped, Failed };

struct MailResult {
    QString invoice;
    MailOutcome outcome = MailOutcome::Failed;
    QString detail;  // the recipients, the reason skipped, or the server's answer
    // The line a report or orve-batch prints for it.
    QString line() const;
};

struct MailRunReport {
    std::vector<MailResult> results;
    int sent = 0;
    int skipped = 0;
    int failed = 0;
    int notTried = 0;  // left when the run stopped or was cancelled
    bool cancelled = false;
    QString stopped;  // why the run stopped before its end, else empty
    QString outbox;   // the folder the messages went to, else empty
    // The final message: how it went, the counts, then each invoice not sent.
    QString summary() const;
};

// Told before each message (1-based) and of each result. Returning false
// from `before` cancels the run there: the message in hand is not sent.
struct MailRunListener {
    std::function<bool(int index, int total, const QString& invoice)> before;
    std::function<void(const MailResult& result)> done;
};

// Refusals before anything is sent: no invoice (kNothingTicked), test
// addresses chosen and missing (kTestAddressRequired) or implausible
// ("adresse mail invalide : …").
void checkMailRun(const MailRunOptions& options, const std::vector<QString>& invoices);

// Sends the invoices in number order through `transport`. Each invoice
// accepted is marked mailed (real procedure only), in its own transaction;
// a skipped or failed one is reported and the run goes on, unless nothing
// else could get through (the server cannot be reached).
MailRunReport sendInvoiceMails(store::Store& store, MailTransport& transport,
                               const MailRunContext& context, const MailRunOptions& options,
                               const std::vector<QString>& invoices,
                               const MailRunListener& listener = {});

}  // namespace orve::invoicing
