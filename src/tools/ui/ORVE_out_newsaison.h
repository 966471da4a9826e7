#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

class QLineEdit;

namespace orve::tools {

// Sets up a season: the pseudo-competitions are copied into the typed year.
class ORVE_out_newsaison : public QWidget {
    Q_OBJECT
  public:
    ORVE_out_newsaison(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void validate();

  private:
    app::Session& m_session;
    app::Dialogs& m_dialogs;
    QLineEdit* m_year;
};

}  // namespace orve::tools
