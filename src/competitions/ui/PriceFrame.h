#pragma once

#include <QGroupBox>

#include "app/Dialogs.h"
#include "store/Money.h"

class QLineEdit;
class QPushButton;

namespace orve::competitions {

// One unit price the operator confirms before the invoices are made (the
// entry fee per player, the price of a line): preset with the season's
// tariff, confirmed by its button, refused while it is not above 0.
class PriceFrame : public QGroupBox {
    Q_OBJECT
  public:
    PriceFrame(app::Dialogs& dialogs, const QString& frameName, const QString& title,
               const QString& boxName, const QString& buttonName, QWidget* parent = nullptr);

    // Shows the frame with the tariff and waits for the confirmation.
    void ask(Money tariff);
    // Puts the frame away without a confirmation.
    void dismiss();

  signals:
    void confirmed(Money price);

  private:
    void confirm();

    app::Dialogs& m_dialogs;
    QLineEdit* m_price;
    QPushButton* m_confirm;
};

}  // namespace orve::competitions
