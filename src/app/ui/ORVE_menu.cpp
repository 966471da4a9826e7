#include "app/ui/ORVE_menu.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

#include "app/Backup.h"
#include "app/MenuTree.h"
#include "app/SignIn.h"
#include "app/Startup.h"
#include "app/ui/ScreenSupport.h"

namespace orve::app {

namespace {
// Letters name drives only where drives have letters.
#ifdef Q_OS_WIN
constexpr bool kDriveLetters = true;
#else
constexpr bool kDriveLetters = false;
#endif
}  // namespace

ORVE_menu::ORVE_menu(Session& session, Dialogs& dialogs, const ScreenCatalog& catalog)
    : m_session(session), m_dialogs(dialogs), m_catalog(catalog) {
    setObjectName(QStringLiteral("ORVE_menu"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    buildMenus();
    buildPanels();
    m_frame5->hide();
    applyRights();
    setWindowTitle(app::windowTitle(m_session.installation()));
    resize(900, 560);
    fitOnScreen(this);
    m_login->clear();
    m_password->clear();
    m_login->setFocus();
}

void ORVE_menu::buildMenus() {
    // Parents by level while walking the tree in order.
    std::vector<QMenu*> parents(3, nullptr);
    const auto& tree = menuTree();
    for (size_t i = 0; i < tree.size(); ++i) {
        const MenuEntry& e = tree[i];
        const bool hasChildren = i + 1 < tree.size() && tree[i + 1].level > e.level;
        QAction* action = nullptr;
        if (hasChildren) {
            QMenu* menu = e.level == 0 ? menuBar()->addMenu(e.caption)
                                       : parents[e.level - 1]->addMenu(e.caption);
            menu->setObjectName(e.name + QStringLiteral("_menu"));
            parents[e.level] = menu;
            action = menu->menuAction();
        } else if (e.level == 0) {
            action = menuBar()->addAction(e.caption);
        } else {
            action = parents[e.level - 1]->addAction(e.caption);
        }
        action->setObjectName(e.name);
        action->setVisible(e.shown);
        m_actions[e.name] = action;
        if (!hasChildren) {
            const QString name = e.name;
            connect(action, &QAction::triggered, this, [this, name] { runEntry(name); });
        }
    }
}

void ORVE_menu::buildPanels() {
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);

    auto* image1 = new QLabel(central);
    image1->setObjectName(QStringLiteral("Image1"));
    image1->setPixmap(
        QPixmap(QStringLiteral(":/images/logo.png")).scaledToWidth(360, Qt::SmoothTransformation));
    image1->setAlignment(Qt::AlignCenter);
    layout->addWidget(image1);

    m_frame1 = new QGroupBox(QStringLiteral("Identification"), central);
    m_frame1->setObjectName(QStringLiteral("Frame1"));
    auto* grid = new QGridLayout(m_frame1);
    auto* label1 = new QLabel(QStringLiteral("Login"), m_frame1);
    label1->setObjectName(QStringLiteral("Label1"));
    m_login = new QLineEdit(m_frame1);
    m_login->setObjectName(QStringLiteral("txt_login"));
    auto* label2 = new QLabel(QStringLiteral("Mot de passe"), m_frame1);
    label2->setObjectName(QStringLiteral("Label2"));
    m_password = new QLineEdit(m_frame1);
    m_password->setObjectName(QStringLiteral("txt_pwd"));
    m_password->setEchoMode(QLineEdit::Password);
    auto* ok = new QPushButton(QStringLiteral("OK"), m_frame1);
    ok->setObjectName(QStringLiteral("Cmdok_login"));
    ok->setDefault(true);
    grid->addWidget(label1, 0, 0);
    grid->addWidget(m_login, 0, 1);
    grid->addWidget(label2, 1, 0);
    grid->addWidget(m_password, 1, 1);
    grid->addWidget(ok, 2, 1, Qt::AlignRight);
    m_frame1->setMaximumWidth(420);
    connect(ok, &QPushButton::clicked, this, &ORVE_menu::signIn);
    connect(m_password, &QLineEdit::returnPressed, this, &ORVE_menu::signIn);
    connect(m_login, &QLineEdit::returnPressed, m_password, qOverload<>(&QWidget::setFocus));
    layout->addWidget(m_frame1, 0, Qt::AlignHCenter);

    m_frame5 =
        new QGroupBox(kDriveLetters ? QStringLiteral("Saisir la lettre du disque amovible")
                                    : QStringLiteral("Choisir le dossier du support amovible"),
                      central);
    m_frame5->setObjectName(QStringLiteral("Frame5"));
    auto* row = new QHBoxLayout(m_frame5);
    m_disk = new QLineEdit(m_frame5);
    m_disk->setObjectName(QStringLiteral("txtdisk"));
    m_disk->setMaxLength(1);
    m_disk->setFixedWidth(40);
    connect(m_disk, &QLineEdit::textEdited, this, [this](const QString& text) {
        const int pos = m_disk->cursorPosition();
        m_disk->setText(text.toUpper());
        m_disk->setCursorPosition(pos);
    });
    m_folder = new QLineEdit(m_frame5);
    m_folder->setObjectName(QStringLiteral("txtdossier"));
    m_folder->setMinimumWidth(320);
    auto* browse = new QPushButton(QStringLiteral("Parcourir..."), m_frame5);
    browse->setObjectName(QStringLiteral("cmdparcourir"));
    connect(browse, &QPushButton::clicked, this, &ORVE_menu::chooseBackupFolder);
    auto* backupOk = new QPushButton(QStringLiteral("OK"), m_frame5);
    backupOk->setObjectName(QStringLiteral("cmdok"));
    connect(backupOk, &QPushButton::clicked, this, &ORVE_menu::runBackup);
    // Choosing the entry by mistake must not oblige anyone to back up.
    auto* backupCancel = new QPushButton(QStringLiteral("Annuler"), m_frame5);
    backupCancel->setObjectName(QStringLiteral("cmdannule"));
    connect(backupCancel, &QPushButton::clicked, m_frame5, &QWidget::hide);
    row->addWidget(m_disk);
    row->addWidget(m_folder);
    row->addWidget(browse);
    row->addWidget(backupOk);
    row->addWidget(backupCancel);
    m_disk->setVisible(kDriveLetters);
    m_folder->setVisible(!kDriveLetters);
    browse->setVisible(!kDriveLetters);
    layout->addWidget(m_frame5, 0, Qt::AlignHCenter);

    auto* image2 = new QLabel(central);
    image2->setObjectName(QStringLiteral("Image2"));
    layout->addWidget(image2);
    layout->addStretch();
    setCentralWidget(central);
    m_userLabel = new QLabel(this);
    m_userLabel->setObjectName(QStringLiteral("lbl_utilisateur"));
    statusBar()->addWidget(m_userLabel);
    // Which data the office works on, so no clerk takes a test base for the real one.
    const QString storeText = storeCaption(m_session.store().address());
    if (!storeText.isEmpty()) {
        auto* storeLabel = new QLabel(storeText, this);
        storeLabel->setObjectName(QStringLiteral("lbl_base"));
        statusBar()->addPermanentWidget(storeLabel);
    }
}

void ORVE_menu::applyRights() {
    for (const MenuEntry& e : menuTree()) {
        // Greyed means "not for you" only; an entry whose window is not built
        // yet says so when chosen.
        m_actions[e.name]->setEnabled(entryAllowed(e.name, m_session.signedIn(),
                                                   m_session.user().login, m_session.isNational()));
    }
}

void ORVE_menu::signIn() {
    guarded(m_dialogs, [&] {
        if (!app::signIn(m_session, m_login->text(), m_password->text())) {
            m_dialogs.warn(kInvalidLogin);
            return;
        }
        applyRights();
        m_frame1->hide();
        m_userLabel->setText(QStringLiteral("Utilisateur : %1  —  ligue : %2")
                                 .arg(m_session.user().login, m_session.user().league));
    });
}

void ORVE_menu::runEntry(const QString& name) {
    if (name == QStringLiteral("mnu_quitter")) {
        close();
        return;
    }
    if (name == QStringLiteral("mnu_fic_usb")) {
        showBackupPanel();
        return;
    }
    for (const MenuEntry& e : menuTree()) {
        if (e.name != name) continue;
        if (e.screen.isEmpty()) return;
        if (m_catalog.has(e.screen))
            openScreen(e.screen, e.mode);
        else
            m_dialogs.inform(kNotYetAvailable);
        return;
    }
}

void ORVE_menu::openScreen(const QString& name, const QString& mode) {
    guarded(m_dialogs, [&] {
        // One window per name and mode: "Facturation Divers" and "facturation
        // Licences" are two windows of the same kind, open side by side.
        QPointer<QWidget>& open = m_open[{name, mode}];
        if (!open) {
            open = m_catalog.create(name, m_session, m_dialogs, mode, this);
            if (!open) return;
            open->setWindowFlag(Qt::Window, true);
            open->setAttribute(Qt::WA_DeleteOnClose, true);
            askBeforeClosing(open, m_dialogs);
            fitOnScreen(open);
            open->show();
        } else {
            open->showNormal();
        }
        keepOnScreen(open);
        open->raise();
        open->activateWindow();
    });
}

void ORVE_menu::closeEvent(QCloseEvent* event) {
    // Every window goes with the main one: a card being typed into would be lost.
    for (const auto& [key, window] : m_open) {
        if (!window || !isEditing(window)) continue;
        if (!m_dialogs.ask(kQuitWhileEditing.arg(window->windowTitle().trimmed()))) {
            event->ignore();
            return;
        }
        break;
    }
    event->accept();
}

void ORVE_menu::showBackupPanel() {
    m_disk->clear();
    m_frame5->show();
    (kDriveLetters ? m_disk : m_folder)->setFocus();
}

void ORVE_menu::chooseBackupFolder() {
    const QString folder =
        m_dialogs.chooseFolder(QStringLiteral("Dossier du support amovible"), m_folder->text());
    if (!folder.isEmpty()) m_folder->setText(folder);
}

void ORVE_menu::runBackup() {
    m_frame5->hide();
    const QString typed = (kDriveLetters ? m_disk : m_folder)->text().trimmed();
    if (typed.isEmpty()) {
        m_dialogs.warn(kBackupNoLetter);
        return;
    }
    const QString destination = kDriveLetters ? driveRoot(typed) : typed;
    m_dialogs.inform(kBackupStarting);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QString failure;
    try {
        backupStore(m_session.store(), destination);
    } catch (const std::exception& e) {
        failure = describeError(e);
    }
    QApplication::restoreOverrideCursor();
    if (failure.isEmpty())
        m_dialogs.inform(kBackupDone);
    else
        m_dialogs.fail(failure);
}

}  // namespace orve::app
