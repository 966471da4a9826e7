#pragma once

#include <QGroupBox>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "store/Money.h"

class QLineEdit;
class QPushButton;

namespace orve::app {
class DataGrid;
}

namespace orve::accounting {

// The frame of the transfer window that shows a transfer file again
// (Mskdate, txt_fic_transfert, cmdValideAff, DBGrid2) and cancels it
// (CmdAnnulTrs, then CmdValidAnnulTrs).
class TransferFileBox : public QGroupBox {
    Q_OBJECT
  public:
    TransferFileBox(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    // Opened again: today's file proposed, nothing shown yet.
    void open();

  signals:
    // cmdAnnulAff.
    void closeRequested();
    // What the shown file transfers: its amount and its number of lines.
    void fileShown(Money amount, qint64 lines);
    // Invoices were put back for a later transfer.
    void transferCancelled();

  private:
    void dateChanged();
    void showFile();
    void confirmCancel();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    QLineEdit* m_date;             // Mskdate
    QLineEdit* m_fileName;         // txt_fic_transfert
    QPushButton* m_cancel;         // CmdAnnulTrs
    QPushButton* m_confirmCancel;  // CmdValidAnnulTrs
    app::DataGrid* m_grid;         // DBGrid2
    QString m_shown;               // the file in the grid
};

}  // namespace orve::accounting
