#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::competitions {

class BatchInvoicingPanel;

// The batch invoicing of the private competitions of a season, invoiced by their fixed part and
// their players.
class ORVE_facture_jkv : public QWidget {
    Q_OBJECT
  public:
    ORVE_facture_jkv(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    BatchInvoicingPanel* m_panel;
};

}  // namespace orve::competitions
