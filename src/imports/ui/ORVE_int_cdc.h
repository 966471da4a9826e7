#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::imports {

class ImportFileChoice;
class ImportReportView;

// "Intégration du CDC National": the clubs entered in the national club
// championship become the season's women's and men's competitions.
class ORVE_int_cdc : public QWidget {
    Q_OBJECT
  public:
    ORVE_int_cdc(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void integrate();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    ImportFileChoice* m_choice;
    QComboBox* m_season;
    QLineEdit* m_finalDate;
    ImportReportView* m_report;
};

}  // namespace orve::imports
