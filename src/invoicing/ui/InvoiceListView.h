#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "invoicing/ui/SelectionPanel.h"

class QGroupBox;
class QLabel;
class QPushButton;

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
    // The grid lists the invoice lines (the listing's own columns), or the
    // headers offered for mailing with their own columns and "TOUTES".
    void showListing();
    void showMailingList(const std::vector<app::GridColumn>& columns);
    bool mailingListShown() const { return m_mailing; }

  signals:
    void backRequested();
    void creditNotesRequested();
    void unsentListRequested();  // cmdvisu_fd_mail
    void mailRequested();        // CmdEnvoiMail_bis
    void tickAllRequested();     // TOUTES

  private:
    SelectionPanel* m_panel;
    app::DataGrid* m_grid;
    QGroupBox* m_gridBox;
    QLabel* m_total;
    QLabel* m_quantity;
    QPushButton* m_all;
    bool m_mailing = false;
};

}  // namespace orve::invoicing
