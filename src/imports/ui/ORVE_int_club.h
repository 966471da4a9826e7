#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::imports {

class ImportFileChoice;
class ImportReportView;

// The club import: choose the federation's club file, accept it, integrate it.
class ORVE_int_club : public QWidget {
    Q_OBJECT
  public:
    ORVE_int_club(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void acceptFile();
    void integrate();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    ImportFileChoice* m_choice;
    QLabel* m_fileName;
    QPushButton* m_integrate;
    ImportReportView* m_report;
    QString m_accepted;
};

}  // namespace orve::imports
