#pragma once

#include <QWidget>
#include <array>

#include "invoicing/InvoiceParties.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace orve::invoicing {

// The invoice's header: "pour le compte de" lines, which block a party choice
// fills, the date, the number, and in LI and JORE the invoice's own
// competition data (Frame13).
class InvoiceHeaderBox : public QWidget {
    Q_OBJECT
  public:
    explicit InvoiceHeaderBox(bool asksCompetitionData, QWidget* parent = nullptr);

    AddressBlock block() const;
    QString dateText() const;
    void setDateText(const QString& text);
    void setNumber(const QString& number, const QString& documentName);
    QString documentName() const;
    void setTotal(const QString& text);
    void showClient(const InvoiceParty& party);
    QString competitionNumber() const;
    QString competitionTitle() const;
    void setCompetition(const QString& number, const QString& title);

  signals:
    void validateRequested();
    void cancelRequested();
    void competitionDataValidated();
    // Option1 changed: the next party chosen goes to the other block.
    void blockChanged();

  private:
    std::array<QLineEdit*, 7> m_client{};
    QRadioButton* m_onBehalf;
    QRadioButton* m_billing;
    QLineEdit* m_date;
    QLineEdit* m_number;
    QLineEdit* m_document;
    QLabel* m_total;
    QGroupBox* m_competition;
    QLineEdit* m_competitionNumber;
    QLineEdit* m_competitionTitle;
};

}  // namespace orve::invoicing
