#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"

class QLineEdit;
class QPlainTextEdit;

namespace orve::app {
class DataGrid;
}

namespace orve::tools {

// "Enregistrement des textes pour mail d'envoi de factures": the named texts
// the mailing of invoices offers. Saving under an existing name replaces it.
class ORVE_out_mail : public QWidget {
    Q_OBJECT
  public:
    ORVE_out_mail(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  private:
    void showText(int row);
    void newText();
    void saveText();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    app::DataGrid* m_grid;
    QLineEdit* m_name;
    QPlainTextEdit* m_body;
};

}  // namespace orve::tools
