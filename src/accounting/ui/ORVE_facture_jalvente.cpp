#include "accounting/ui/ORVE_facture_jalvente.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "accounting/ui/ReportWidgets.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "invoicing/ui/SelectionPanel.h"

namespace orve::accounting {

ORVE_facture_jalvente::ORVE_facture_jalvente(app::Session& session, app::Dialogs& dialogs,
                                             QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_facture_jalvente"),
                          QStringLiteral("Le Journal des Ventes"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);

    auto* criteria = new QGroupBox(QStringLiteral("Critères de sélection d'affichage "), this);
    criteria->setObjectName(QStringLiteral("Frame1"));
    auto* cl = new QHBoxLayout(criteria);
    m_panel = new invoicing::SelectionPanel(dialogs, criteria);
    cl->addWidget(m_panel, 1);
    // The state of the competitions listed; "Toutes" until another is chosen.
    auto* states = new QGroupBox(criteria);
    states->setObjectName(QStringLiteral("Frame_etat"));
    auto* sl = new QVBoxLayout(states);
    sl->setContentsMargins(4, 2, 4, 2);
    sl->setSpacing(0);
    auto* group = new QButtonGroup(this);
    const auto& options = statusOptions();
    for (size_t i = 0; i < options.size(); ++i) {
        auto* option = new QRadioButton(options[i].caption, states);
        option->setObjectName(QStringLiteral("Option1_%1").arg(i));
        option->setChecked(options[i].status == InvoicingStatus::All);
        group->addButton(option);
        sl->addWidget(option);
        m_status.push_back(option);
        connect(option, &QRadioButton::clicked, this, &ORVE_facture_jalvente::refresh);
    }
    cl->addWidget(states);
    auto* exportButton = new QPushButton(QStringLiteral("Exporter (CSV)"), criteria);
    exportButton->setObjectName(QStringLiteral("CmdExport"));
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(exportButton);
    buttons->addStretch(1);
    cl->addLayout(buttons);
    layout->addWidget(criteria);

    m_grid = captionedGrid(QStringLiteral("DBGrid1"),
                           QStringLiteral("LE JOURNAL DES VENTES DES COMPETITIONS FACTUREES"),
                           journalColumns(), this);
    layout->addWidget(m_grid->parentWidget(), 1);
    m_summary = new SelectionSummary(this);
    layout->addWidget(m_summary);

    connect(m_panel, &invoicing::SelectionPanel::filterChanged, this,
            &ORVE_facture_jalvente::refresh);
    connect(exportButton, &QPushButton::clicked, this, &ORVE_facture_jalvente::exportJournal);
    connect(m_grid, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });

    resize(1320, 700);
    app::guarded(m_dialogs, [&] {
        m_panel->load(m_session.store(), QString(), m_session.workingSeason());
        compactLists(m_panel);
        refresh();
    });
}

InvoicingStatus ORVE_facture_jalvente::status() const {
    const auto& options = statusOptions();
    for (size_t i = 0; i < m_status.size(); ++i)
        if (m_status[i]->isChecked()) return options[i].status;
    return InvoicingStatus::All;
}

void ORVE_facture_jalvente::refresh() {
    app::guarded(m_dialogs, [&] {
        const invoicing::SelectionCondition selection = m_panel->condition();
        const ReportTotals totals = journalTotals(m_session.store(), selection, status());
        m_grid->setQuery(m_session.store(), journalQuery(selection, status()));
        m_summary->setTotals(totals.amount, totals.quantity);
    });
}

void ORVE_facture_jalvente::exportJournal() {
    invoicing::SelectionCondition selection;
    if (!app::guarded(m_dialogs, [&] { selection = m_panel->condition(); })) return;
    exportReport(m_dialogs, QStringLiteral("journal_des_ventes.csv"),
                 [&] { return journalCsv(m_session.store(), selection, status()); });
}

}  // namespace orve::accounting
