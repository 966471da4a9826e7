#pragma once

#include <QGroupBox>
#include <array>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "invoicing/InvoiceParties.h"

class QComboBox;
class QLineEdit;
class QRadioButton;

namespace orve::invoicing {

// "Adresse de facturation " (Frame8): the lists of parties, the seven address
// lines and the two mails. A choice is reported as the party it makes; the
// window decides which block of the header it fills.
class InvoicePartyChooser : public QGroupBox {
    Q_OBJECT
  public:
    InvoicePartyChooser(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    // Fills the league and committee lists. Throws StoreError.
    void load();
    // The block the next choice fills, and the invoice it belongs to (named
    // in the committee's refusals).
    void setTarget(AddressBlock block, const QString& invoiceNumber);
    // "Autres - Adresse de tiers à saisir" is chosen: the lines are typed.
    bool typing() const;
    // The address typed in the lines, as a free address.
    InvoiceParty typedParty() const;
    void showParty(const InvoiceParty& party);
    void clear();

  signals:
    void partyChosen(const InvoiceParty& party, AddressBlock block);

  private:
    void choose(QComboBox* combo, const std::function<InvoiceParty(const QString&)>& make);
    void fillNameFirst(QComboBox* combo, const app::ListItems& items);

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    AddressBlock m_block = AddressBlock::Billing;
    QString m_invoiceNumber;
    QComboBox* m_leagues;
    QComboBox* m_committees;
    QLineEdit* m_clubDept;
    QComboBox* m_clubs;
    QLineEdit* m_centreDept;
    QComboBox* m_centres;
    QLineEdit* m_licenseeName;
    QComboBox* m_licensees;
    QRadioButton* m_other;
    std::array<QLineEdit*, 7> m_lines{};
    QLineEdit* m_mail1;
    QLineEdit* m_mail2;
};

}  // namespace orve::invoicing
