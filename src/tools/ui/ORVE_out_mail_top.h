#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "tools/DispatchTicks.h"

namespace orve::app {
class DataGrid;
}

namespace orve::tools {

// "Maintenance des envois mails": the invoices mailed or not, and the mark
// changed by hand for those ticked in "à modifier".
class ORVE_out_mail_top : public QWidget {
    Q_OBJECT
  public:
    ORVE_out_mail_top(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);
    ~ORVE_out_mail_top() override;

  private:
    void showList(DispatchList list);
    void tick(int row, const QString& field, const QString& text);
    void change();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    app::DataGrid* m_grid;
    DispatchList m_shown = DispatchList::Unsent;
};

}  // namespace orve::tools
