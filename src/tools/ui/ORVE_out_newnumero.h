#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

class QLineEdit;

namespace orve::tools {

// Moves the invoice numbering forward to the typed number.
class ORVE_out_newnumero : public QWidget {
    Q_OBJECT
  public:
    ORVE_out_newnumero(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void validate();

  private:
    void showLast();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    QLineEdit* m_last;
    QLineEdit* m_next;
};

}  // namespace orve::tools
