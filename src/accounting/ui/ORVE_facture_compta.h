#pragma once

#include <QWidget>

#include "accounting/TransferLayout.h"
#include "app/Dialogs.h"
#include "app/Session.h"

class QStackedWidget;

namespace orve::app {
class DataGrid;
}

namespace orve::invoicing {
class SelectionPanel;
}

namespace orve::accounting {

class SelectionSummary;
class TransferFileBox;

// The transfer of invoices to accounting: the lines not yet transferred of
// the competitions the panel chooses, with their accounts (DBGrid1); CmdCompta
// writes the file of the operator's layout and marks its invoices;
// Cmdaffichage opens the frame that shows a transfer file again and cancels it.
class ORVE_facture_compta : public QWidget {
    Q_OBJECT
  public:
    ORVE_facture_compta(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void refresh();
    void transfer();
    void showFileFrame(bool shown);

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    TransferLayout m_layout;
    invoicing::SelectionPanel* m_panel;
    QStackedWidget* m_pages;
    app::DataGrid* m_grid;
    TransferFileBox* m_fileBox;
    SelectionSummary* m_summary;
};

}  // namespace orve::accounting
