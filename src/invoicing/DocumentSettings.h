#pragma once

#include <QString>
#include <QStringList>

namespace orve::app {
class Session;
}

// What an invoice document takes from the installation and the operator
// rather than from the invoice: the letterhead of orve.ini, the invoice
// folder, and who is signed in.
namespace orve::invoicing {

// Installation data printed on every document, from orve.ini: the group
// [federation] (who issues the documents, the bank, the payment notices) and
// the legal mentions of the group [mentions].
struct Letterhead {
    QString name = QStringLiteral("FEDERATION KVARN");
    QString address;
    QString telephone;
    QString fax;
    QString registration;
    QString bank;
    QString iban;
    QString bic;
    // The payment notices under the totals ([federation] ordre_reglement, avis_virement).
    QString paymentOrder =
        QStringLiteral("Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N.");
    QString transferNotice = QStringLiteral("GAGNEZ DU TEMPS ! Règlez par virement bancaire.");
    // Legal mentions under the totals ([mentions] tva, penalites, indemnite);
    // an empty one is not printed. The late-payment ones belong to invoices only.
    QString vatMention = QStringLiteral("TVA NON APPLICABLE");
    QString latePenalties;
    QString recoveryFee;
    QString logo = QStringLiteral(":/images/logo.png");
    QString background = QStringLiteral(":/images/papier_facture.jpg");
    QString printer;       // also send each document made from a screen to it; "" for none
    bool openPdf = false;  // open each document made from a screen in the PDF viewer
    static Letterhead fromSettings(const QString& iniPath);
    // Address, telephone, fax and registration joined on one line.
    QString footerLine() const;
    // The address printed beside the logo, and the telephone when known.
    QStringList issuerLines() const;
};

// Everything the layout needs besides the invoice itself.
struct DocumentSettings {
    QString invoiceFolder;
    Letterhead letterhead;
    QString operatorLogin;   // "" when nobody is signed in (a batch without --as)
    QString operatorLeague;  // the operator's entity code (par_region)
    // Below the national level the documents are printed on the league paper.
    bool nationalLetterhead() const;
    // A committee operator, by its login or by its entity code.
    bool committeeOperator() const;
};
DocumentSettings documentSettings(const app::Session& session);

}  // namespace orve::invoicing
