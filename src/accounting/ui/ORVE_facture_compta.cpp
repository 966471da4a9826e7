#include "accounting/ui/ORVE_facture_compta.h"

#include <QDir>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "accounting/AccountingConstants.h"
#include "accounting/AccountingTransfer.h"
#include "accounting/ui/ReportWidgets.h"
#include "accounting/ui/TransferFileBox.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "invoicing/ui/SelectionPanel.h"
#include "reference/Visibility.h"

namespace orve::accounting {

namespace {

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

}  // namespace

ORVE_facture_compta::ORVE_facture_compta(app::Session& session, app::Dialogs& dialogs,
                                         QWidget* parent)
    : QWidget(parent),
      m_session(session),
      m_dialogs(dialogs),
      m_layout(transferLayoutOf(session.user().league)) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_facture_compta"),
                          QStringLiteral("Transfert des factures en comptabilité"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);

    auto* criteria = new QGroupBox(QStringLiteral("Critères de sélection d'affichage "), this);
    criteria->setObjectName(QStringLiteral("Frame1"));
    auto* cl = new QHBoxLayout(criteria);
    m_panel = new invoicing::SelectionPanel(dialogs, criteria);
    cl->addWidget(m_panel, 1);
    auto* buttons = new QVBoxLayout;
    auto* transferButton = button(QStringLiteral("CmdCompta"),
                                  m_layout == TransferLayout::National
                                      ? QStringLiteral("Générer le fichier de transfert (national)")
                                      : QStringLiteral("Générer le fichier de transfert (ligue)"),
                                  criteria);
    auto* showButton = button(QStringLiteral("Cmdaffichage"),
                              QStringLiteral("Afficher un fichier de transfert"), criteria);
    buttons->addWidget(transferButton);
    buttons->addWidget(showButton);
    buttons->addStretch(1);
    cl->addLayout(buttons);
    layout->addWidget(criteria);

    m_pages = new QStackedWidget(this);
    m_grid = captionedGrid(QStringLiteral("DBGrid1"),
                           QStringLiteral("LES FACTURES A TRANSFERER EN COMPTABILITE"),
                           transferColumns(), m_pages);
    m_pages->addWidget(m_grid->parentWidget());
    m_fileBox = new TransferFileBox(session, dialogs, m_pages);
    m_pages->addWidget(m_fileBox);
    layout->addWidget(m_pages, 1);
    m_summary = new SelectionSummary(this);
    layout->addWidget(m_summary);

    connect(m_panel, &invoicing::SelectionPanel::filterChanged, this,
            &ORVE_facture_compta::refresh);
    connect(transferButton, &QPushButton::clicked, this, &ORVE_facture_compta::transfer);
    connect(showButton, &QPushButton::clicked, this, [this] { showFileFrame(true); });
    connect(m_fileBox, &TransferFileBox::closeRequested, this, [this] { showFileFrame(false); });
    connect(m_fileBox, &TransferFileBox::fileShown, this,
            [this](Money amount, qint64 lines) { m_summary->setTotals(amount, lines); });
    connect(m_fileBox, &TransferFileBox::transferCancelled, this,
            [this] { m_summary->setTotals(Money(), 0); });
    connect(m_grid, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });

    resize(1320, 700);
    app::guarded(m_dialogs, [&] {
        m_panel->load(m_session.store(), QString(), m_session.workingSeason());
        compactLists(m_panel);
        refresh();
    });
}

void ORVE_facture_compta::refresh() {
    app::guarded(m_dialogs, [&] {
        const invoicing::SelectionCondition selection = m_panel->condition();
        const QString level = reference::Viewer::of(m_session).level();
        const ReportTotals totals = transferSelectionTotals(m_session.store(), selection, level);
        m_grid->setQuery(m_session.store(), transferSelectionQuery(selection, m_layout, level));
        // While a file is shown, the summary is the file's.
        if (m_pages->currentWidget() != m_fileBox)
            m_summary->setTotals(totals.amount, totals.quantity);
    });
}

void ORVE_facture_compta::showFileFrame(bool shown) {
    m_pages->setCurrentWidget(shown ? static_cast<QWidget*>(m_fileBox) : m_grid->parentWidget());
    if (shown) {
        m_summary->setTotals(Money(), 0);
        m_fileBox->open();
    } else {
        refresh();
    }
}

void ORVE_facture_compta::transfer() {
    invoicing::SelectionCondition selection;
    if (!app::guarded(m_dialogs, [&] { selection = m_panel->condition(); })) return;
    const QString level = reference::Viewer::of(m_session).level();
    if (m_layout == TransferLayout::National) {
        std::vector<LinesWithoutAccount> unaccounted;
        if (!app::guarded(m_dialogs, [&] {
                unaccounted = linesWithoutAccount(m_session.store(), selection, level);
            }))
            return;
        if (!unaccounted.empty() &&
            !m_dialogs.ask(linesWithoutAccountText(unaccounted) +
                           QStringLiteral("\n\nGénérer le fichier quand même ?")))
            return;
    }
    // A season's file takes about a second: one unit, nothing to stop half-way.
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    TransferResult result;
    const bool written = app::guarded(m_dialogs, [&] {
        struct Cursor {
            ~Cursor() { QGuiApplication::restoreOverrideCursor(); }
        } restore;
        result = writeTransfer(m_session.store(), m_session.dataFolder(), m_layout, level,
                               selection, m_session.today());
    });
    if (written) m_dialogs.inform(kTransferWritten + QDir::toNativeSeparators(result.path));
    refresh();
}

}  // namespace orve::accounting
