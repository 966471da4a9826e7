#include "competitions/ui/PriceFrame.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/ui/ScreenSupport.h"
#include "competitions/CompetitionInvoicing.h"
#include "store/Formats.h"

namespace orve::competitions {

PriceFrame::PriceFrame(app::Dialogs& dialogs, const QString& frameName, const QString& title,
                       const QString& boxName, const QString& buttonName, QWidget* parent)
    : QGroupBox(title, parent), m_dialogs(dialogs) {
    setObjectName(frameName);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 4);
    m_price = new QLineEdit(this);
    m_price->setObjectName(boxName);
    m_price->setAlignment(Qt::AlignRight);
    m_price->setMaximumWidth(90);
    m_confirm = new QPushButton(QStringLiteral("Valider"), this);
    m_confirm->setObjectName(buttonName);
    layout->addWidget(m_price);
    layout->addWidget(new QLabel(QStringLiteral("€"), this));
    layout->addWidget(m_confirm);
    layout->addStretch(1);
    connect(m_confirm, &QPushButton::clicked, this, &PriceFrame::confirm);
    connect(m_price, &QLineEdit::returnPressed, this, &PriceFrame::confirm);
    hide();
}

void PriceFrame::ask(Money tariff) {
    m_price->setText(format::fileAmount(tariff));
    m_price->setEnabled(true);
    m_confirm->setEnabled(true);
    show();
    m_price->setFocus();
    m_price->selectAll();
}

void PriceFrame::dismiss() {
    m_confirm->setEnabled(false);
    hide();
}

void PriceFrame::confirm() {
    if (!m_confirm->isEnabled()) return;
    Money price;
    if (!app::guarded(m_dialogs, [&] { price = confirmPrice(m_price->text()); })) {
        m_price->setFocus();
        return;
    }
    // Confirmed once: the price stays shown while the invoices are made.
    m_confirm->setEnabled(false);
    m_price->setEnabled(false);
    emit confirmed(price);
}

}  // namespace orve::competitions
