#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::competitions {

class BatchInvoicingPanel;

// The batch invoicing of the national club championship of a season (two rows per club, men and
// women), invoiced by the lines played at levels N1 to N3.
class ORVE_facture_cdc : public QWidget {
    Q_OBJECT
  public:
    ORVE_facture_cdc(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    BatchInvoicingPanel* m_panel;
};

}  // namespace orve::competitions
