#include "accounting/ui/TransferFileBox.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "accounting/AccountingConstants.h"
#include "accounting/AccountingTransfer.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "store/Formats.h"

namespace orve::accounting {

namespace {

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

}  // namespace

TransferFileBox::TransferFileBox(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QGroupBox(QStringLiteral("Affichage d'un fichier de transfert"), parent),
      m_session(session),
      m_dialogs(dialogs) {
    setObjectName(QStringLiteral("Frame2"));
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    m_date = new QLineEdit(this);
    m_date->setObjectName(QStringLiteral("Mskdate"));
    m_date->setInputMask(QStringLiteral("99/99/9999;_"));
    m_date->setMaximumWidth(110);
    m_fileName = new QLineEdit(this);
    m_fileName->setObjectName(QStringLiteral("txt_fic_transfert"));
    m_fileName->setReadOnly(true);
    auto* show = button(QStringLiteral("cmdValideAff"), QStringLiteral("Afficher"), this);
    auto* close = button(QStringLiteral("cmdAnnulAff"), QStringLiteral("Fermer"), this);
    m_cancel = button(QStringLiteral("CmdAnnulTrs"), QStringLiteral("Annuler ce transfert"), this);
    m_confirmCancel = button(QStringLiteral("CmdValidAnnulTrs"),
                             QStringLiteral("Confirmer l'annulation du transfert"), this);
    row->addWidget(new QLabel(QStringLiteral("Date du fichier :"), this));
    row->addWidget(m_date);
    row->addWidget(new QLabel(QStringLiteral("Fichier :"), this));
    row->addWidget(m_fileName, 1);
    row->addWidget(show);
    row->addWidget(m_cancel);
    row->addWidget(m_confirmCancel);
    row->addWidget(close);
    layout->addLayout(row);
    m_grid = new app::DataGrid(QStringLiteral("DBGrid2"), this);
    layout->addWidget(m_grid, 1);

    connect(m_date, &QLineEdit::textChanged, this, &TransferFileBox::dateChanged);
    connect(m_date, &QLineEdit::returnPressed, this, &TransferFileBox::showFile);
    connect(show, &QPushButton::clicked, this, &TransferFileBox::showFile);
    connect(close, &QPushButton::clicked, this, &TransferFileBox::closeRequested);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_confirmCancel->setVisible(true);
        m_confirmCancel->setEnabled(true);
    });
    connect(m_confirmCancel, &QPushButton::clicked, this, &TransferFileBox::confirmCancel);
    connect(m_grid, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });
}

void TransferFileBox::open() {
    m_shown.clear();
    m_grid->setRows({});
    m_cancel->setEnabled(false);
    m_confirmCancel->setVisible(false);
    m_date->setText(format::displayDate(m_session.today()));
    dateChanged();
    m_date->setFocus();
}

void TransferFileBox::dateChanged() {
    // The name follows the date as it is typed; a date not yet whole names nothing.
    const auto day = format::parseDisplayDate(m_date->text());
    m_fileName->setText(day ? nationalTransferName(*day) : QString());
}

void TransferFileBox::showFile() {
    m_shown.clear();
    m_cancel->setEnabled(false);
    m_confirmCancel->setVisible(false);
    m_grid->setRows({});
    app::guarded(m_dialogs, [&] {
        const QString file = transferFileOfDate(m_session.dataFolder(), m_date->text());
        const TransferFileView view = showTransferFile(m_session.store(), file);
        std::vector<app::GridColumn> columns;
        for (int i = 0; i < view.captions.size(); ++i)
            columns.push_back(
                {view.captions[i], QStringLiteral("x_%1").arg(i + 1), app::GridColumn::Kind::Text});
        m_grid->setColumns(columns);
        m_grid->setQuery(m_session.store().scratch(), transferFileQuery());
        m_shown = file;
        m_cancel->setEnabled(true);
        emit fileShown(view.amount, view.lines);
    });
}

void TransferFileBox::confirmCancel() {
    if (m_shown.isEmpty()) return;
    if (!m_dialogs.ask(kConfirmCancel)) return;
    app::guarded(m_dialogs, [&] {
        const CancelResult result =
            cancelTransfer(m_session.store(), m_shown, supportContact(m_session.settingsPath()));
        for (const QString& message : result.missing) m_dialogs.inform(message);
        m_confirmCancel->setVisible(false);
        m_dialogs.inform(kDone);
        emit transferCancelled();
    });
}

}  // namespace orve::accounting
