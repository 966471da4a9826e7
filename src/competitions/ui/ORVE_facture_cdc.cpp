#include "competitions/ui/ORVE_facture_cdc.h"

#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/ui/BatchInvoicingPanel.h"

namespace orve::competitions {

ORVE_facture_cdc::ORVE_facture_cdc(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent) {
    const QString title = QStringLiteral("Facturation CDC National");
    app::makeScreenWindow(this, QStringLiteral("ORVE_facture_cdc"), title);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    m_panel = new BatchInvoicingPanel(session, dialogs, BatchKind::Championship, title, this);
    layout->addWidget(m_panel);
    resize(1300, 600);
}

}  // namespace orve::competitions
