#pragma once

#include <QObject>
#include <vector>

#include "app/Dialogs.h"
#include "app/Session.h"

class QWidget;

namespace orve::invoicing {

class InvoiceListView;
class InvoiceMailPanel;

// The mailing work of the invoice window: the list of the invoices of a
// nature not yet mailed in the list view's grid, their ticks, and the run
// that the panel starts, with its progress and its report.
class InvoiceMailingFlow : public QObject {
    Q_OBJECT
  public:
    InvoiceMailingFlow(app::Session& session, app::Dialogs& dialogs, InvoiceListView* list,
                       InvoiceMailPanel* panel, QWidget* window);

    // cmdvisu_fd_mail: the unsent invoices of the nature ("" when none is chosen).
    void showUnsent(const QString& nature);
    // The grid's row chosen or typed into while the mailing list is shown.
    void rowChosen(int row);
    void cellEdited(int row, const QString& field, const QString& text);
    void tickAll();
    // CmdEnvoiMail_bis: the invoices ticked in the list shown, confirmed, open the panel.
    void requestMail();
    // cmdValideMail.
    void send();

  signals:
    void panelOpened();
    // The panel is done with (sent or cancelled): the window shows the list again.
    void panelClosed();

  private:
    void relist();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    InvoiceListView* m_list;
    InvoiceMailPanel* m_panel;
    QWidget* m_window;
    QString m_nature;
    std::vector<QString> m_invoices;  // confirmed for the panel
    // Asked once for the window's life when orve.ini holds none; never written.
};

}  // namespace orve::invoicing
