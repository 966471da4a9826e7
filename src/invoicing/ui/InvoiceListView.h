#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "invoicing/ui/SelectionPanel.h"

class QGroupBox;
class QLabel;

namespace orve::invoicing {

// The invoices already made: the selection criteria (Frame1) with their
// buttons, the list (DBGrid1) and its summary.
class InvoiceListView : public QWidget {
    Q_OBJECT
  public:
    InvoiceListView(app::Dialogs& dialogs, QWidget* parent = nullptr);

    SelectionPanel* panel() const { return m_panel; }
    app::DataGrid* grid() const { return m_grid; }
    void setCaption(const QString& caption);
    void setTotals(const QString& amount, const QString& quantity);

  signals:
    void backRequested();
    void creditNotesRequested();

  private:
    SelectionPanel* m_panel;
    app::DataGrid* m_grid;
    QGroupBox* m_gridBox;
    QLabel* m_total;
    QLabel* m_quantity;
};

}  // namespace orve::invoicing
