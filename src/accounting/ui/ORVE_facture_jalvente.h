#pragma once

#include <QWidget>
#include <vector>

#include "accounting/SalesJournal.h"
#include "app/Dialogs.h"
#include "app/Session.h"

class QRadioButton;

namespace orve::app {
class DataGrid;
}

namespace orve::invoicing {
class SelectionPanel;
}

namespace orve::accounting {

class SelectionSummary;

// "Le Journal des Ventes": the invoiced lines of the competitions the panel
// chooses, optionally of one month, with their totals; saved as CSV on demand.
class ORVE_facture_jalvente : public QWidget {
    Q_OBJECT
  public:
    ORVE_facture_jalvente(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void refresh();
    void exportJournal();
    InvoicingStatus status() const;

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    invoicing::SelectionPanel* m_panel;
    std::vector<QRadioButton*> m_status;  // Option1_0 .. Option1_5
    app::DataGrid* m_grid;
    SelectionSummary* m_summary;
};

}  // namespace orve::accounting
