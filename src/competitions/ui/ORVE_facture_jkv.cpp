#include "competitions/ui/ORVE_facture_jkv.h"

#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/ui/BatchInvoicingPanel.h"

namespace orve::competitions {

ORVE_facture_jkv::ORVE_facture_jkv(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent) {
    const QString title = QStringLiteral("Facturation des compétitions privées");
    app::makeScreenWindow(this, QStringLiteral("ORVE_facture_jkv"), title);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    m_panel = new BatchInvoicingPanel(session, dialogs, BatchKind::Private, title, this);
    layout->addWidget(m_panel);
    resize(1300, 600);
}

}  // namespace orve::competitions
