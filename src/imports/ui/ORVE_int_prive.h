#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::imports {

class ImportFileChoice;
class ImportReportView;

// The private tournaments' calendar becomes competitions of nature "PRIVE".
class ORVE_int_prive : public QWidget {
    Q_OBJECT
  public:
    ORVE_int_prive(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void integrate();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    ImportFileChoice* m_choice;
    ImportReportView* m_report;
};

}  // namespace orve::imports
