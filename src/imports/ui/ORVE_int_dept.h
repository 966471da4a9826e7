#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::imports {

class ImportFileChoice;
class ImportReportView;

// "Intégration des départements", in two steps: the file is loaded into the
// workstation's work table, then (Option1 on validation) applied to the
// committees' league and district.
class ORVE_int_dept : public QWidget {
    Q_OBJECT
  public:
    ORVE_int_dept(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void validateChoice();
    void acceptFile();
    void load();
    void apply();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    ImportFileChoice* m_choice;
    QRadioButton* m_chooseStep;
    QRadioButton* m_applyStep;
    QGroupBox* m_loading;
    QLabel* m_fileName;
    QLabel* m_target;
    ImportReportView* m_report;
    QString m_accepted;
};

}  // namespace orve::imports
