#pragma once

#include <QMainWindow>
#include <QPointer>
#include <map>
#include <utility>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/ScreenCatalog.h"

class QAction;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

namespace orve::app {

inline const QString kQuitWhileEditing = QStringLiteral(
    "Une fiche est en cours de saisie (%1) et n'est pas enregistrée. Quitter ORVE sans "
    "l'enregistrer ?");

// The main window: sign-in, the menu bar by the operator's rights, the backup
// panel. Closing it ends the program and every window opened from it.
class ORVE_menu : public QMainWindow {
    Q_OBJECT
  public:
    ORVE_menu(Session& session, Dialogs& dialogs, const ScreenCatalog& catalog);

    // Opens a window modeless, or brings the open one back to the front.
    void openScreen(const QString& name, const QString& mode);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenus();
    void buildPanels();
    void applyRights();
    void signIn();
    void showBackupPanel();
    void runBackup();
    void chooseBackupFolder();
    void runEntry(const QString& name);

    Session& m_session;
    Dialogs& m_dialogs;
    const ScreenCatalog& m_catalog;
    std::map<QString, QAction*> m_actions;                            // every entry, by name
    std::map<std::pair<QString, QString>, QPointer<QWidget>> m_open;  // by name and mode
    QGroupBox* m_frame1 = nullptr;
    QGroupBox* m_frame5 = nullptr;
    QLineEdit* m_login = nullptr;
    QLineEdit* m_password = nullptr;
    QLineEdit* m_disk = nullptr;
    QLineEdit* m_folder = nullptr;
    QLabel* m_userLabel = nullptr;
};

}  // namespace orve::app
