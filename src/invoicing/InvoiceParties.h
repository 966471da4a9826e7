#pragma once

#include <QString>
#include <QStringList>

#include "app/ListItems.h"
#include "invoicing/InvoiceRecords.h"
#include "reference/PartyRecords.h"
#include "store/Store.h"

// The invoiced party chosen on the invoice entry screen: what each list offers
// and what each choice writes into the seven address lines and the two mails.
//
// Account or entity code: a party of the reference tables is filed under its
// account (ent_tiers_fact) — the league's code, "CD" + the committee's number
// ("CD013": the accounting finds a committee by the last three characters),
// the club's code, the centre's account. A party without an account is filed
// under an entity code (ent_fact_entite): "AUTRE" for an address typed by the
// operator, "LIC" + the licence number for a licensee, so that no licence
// number can pass for a committee in the accounting. One or the other, never
// both; the document's file name and the mailing both take the entity code
// when there is one, else the account.
//
// "Pour le compte de": the operator picks which block a choice fills (the
// party invoiced, or the one on whose behalf). A block "pour le compte de"
// left empty repeats the party invoiced, as the batch runs write it. A
// committee invoiced through its league is the league in the billing block
// and itself in "pour le compte de", so the league sees for whom it pays.
namespace orve::invoicing {

// A party read from its table, laid out in an invoice's block: its name, four
// lines, postcode and town joined by `separator` (each way of invoicing has
// its own), and its mails; the caller adds the president's line.
InvoiceParty partyFromBlock(const reference::PostalBlock& block, const QString& account,
                            const QString& separator);

// Which address block of the header a choice fills.
enum class AddressBlock { Billing, OnBehalfOf };

// The lists, without their first item "Choisir": every league, committee,
// club and centre, whatever the operator's level (a league invoices a club
// of another league). Leagues and committees are listed key first ("LR06 #
// Ligue …"), by key; clubs, centres and licensees name first: their items
// read nameFirstText().
app::ListItems leagueItems(const store::Store& store);
app::ListItems committeeItems(const store::Store& store);
// The clubs of a department as typed ("13" is "013"), by name.
app::ListItems clubItems(const store::Store& store, const QString& department);
// The centres of a department, by town.
app::ListItems centreItems(const store::Store& store, const QString& department);
// The licensees whose name contains the text, or begins with it when the text
// begins with "%"; by name and first name. Keys are season + "-" + number.
app::ListItems licenseeItems(const store::Store& store, const QString& typed);

// "name # key" of the name-first lists, and the key read back from such an
// item (what follows the last "#"; empty for "Choisir").
QString nameFirstText(const app::ListItem& item);
QString nameFirstKey(const QString& itemText);

// "L.R. " + name, the president's line, the league's address. Refusal when
// the league does not exist.
InvoiceParty leagueParty(const store::Store& store, const QString& code);

// "C.D. " + name, in the billing block as its invoicing entity says: itself,
// another committee ("CD" + number), or a league, whose address it then takes
// (leagueParty) with the line of the league's CSR ("C.S.R. " + title + " " +
// name) for the president's. `invoiceNumber` (empty for a new invoice) names the invoice
// in the refusals: "Impossible d'éditer la facture N - compléter le dept : …"
// (no invoicing entity), "… - veuillez créer la region : …", "… - veuillez
// créer le dept : …". In "pour le compte de" the committee is always itself.
InvoiceParty committeeParty(const store::Store& store, const QString& number, AddressBlock block,
                            const QString& invoiceNumber = {});

InvoiceParty clubParty(const store::Store& store, const QString& code);
// "BOWLING de : " + town, the centre's address.
InvoiceParty centreParty(const store::Store& store, const QString& account);
// By the key of licenseeItems().
InvoiceParty licenseeParty(const store::Store& store, const QString& key);
// An address typed by the operator: the seven lines (missing ones are blank)
// and the two mails, entity "AUTRE".
InvoiceParty otherParty(const QStringList& lines, const QString& mail1, const QString& mail2);

// "Pour le compte de" as the header keeps it: the party chosen for it, or the
// party invoiced when none was.
InvoiceParty onBehalfOf(const InvoiceParty& billed, const InvoiceParty& chosen);

}  // namespace orve::invoicing
