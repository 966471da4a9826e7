#pragma once

#include <QGroupBox>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "invoicing/InvoiceMailing.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;

namespace orve::invoicing {

// "Paramétrage des envois mail" (Frame9): the procedure, the addresses, the
// subject, the attachment or web address, the body chosen among the mail
// texts, and which server will carry the messages (Label35).
class InvoiceMailPanel : public QGroupBox {
    Q_OBJECT
  public:
    explicit InvoiceMailPanel(app::Dialogs& dialogs, QWidget* parent = nullptr);

    // Puts every control back to its starting value: real procedure, the
    // parties' addresses, "[Facture]", the PDF attached, the given body.
    void prepare(store::Store& store, const QString& body, const QString& testTo,
                 const QString& route);
    MailRunOptions options() const;
    app::DataGrid* texts() const { return m_texts; }

  signals:
    void sendRequested();    // cmdValideMail
    void cancelRequested();  // cmdAnnulMail

  private:
    void chooseText();
    void followChoices();

    app::Dialogs& m_dialogs;
    QRadioButton* m_real;
    QRadioButton* m_test;
    QRadioButton* m_partyAddresses;
    QRadioButton* m_testAddresses;
    QLineEdit* m_testTo;
    QLineEdit* m_testCopy;
    QLineEdit* m_subject;
    QCheckBox* m_competition;
    QRadioButton* m_attach;
    QRadioButton* m_link;
    QLineEdit* m_web;
    app::DataGrid* m_texts;
    QPlainTextEdit* m_body;
    QLabel* m_route;
};

}  // namespace orve::invoicing
