#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "store/Condition.h"
#include "store/Store.h"

// The named texts that the mailing of invoices offers as the body of its
// messages (strmail): kept by the mail-text window and orve-batch mail-text.
namespace orve::invoicing {

struct MailText {
    QString name;  // mail_nom, "Descriptif"
    QString body;  // mail_memo, "Texte"
};

// The body offered when the installation keeps no text of its own.
inline const QString kBuiltInMailText = QStringLiteral(
    "Nous vous prions de bien vouloir trouver ci-joint, la facture correspondant à la "
    "compétition dont vous avez bien voulu assurer l'organisation.  Bien entendu, si le "
    "règlement a déjà été effectué, veuillez considérer ce document comme simple justificatif. "
    "Restant à votre disposition. Bien Cordialement.");

inline const QString kNameRequired = QStringLiteral("Saisir un libelle");

// Every text by name, as the grids list them.
store::Query mailTextsQuery();
std::vector<MailText> mailTexts(const store::Store& store);
// The text of a name, compared without regard to case.
std::optional<MailText> findMailText(const store::Store& store, const QString& name);

// Saves a text under its name: a text of the same name (in any case) is
// replaced, else one is added. Refusal "Saisir un libelle" for an empty
// name. Returns true when an existing text was replaced.
bool saveMailText(store::Store& store, const QString& name, const QString& body);

// The body a mailing starts from for an operator: the text named after the
// operator's league or committee when the installation keeps one (regions
// keep their own wording and signature so), else the first text by name,
// else the built-in text.
QString defaultMailText(const store::Store& store, const QString& league);

}  // namespace orve::invoicing
