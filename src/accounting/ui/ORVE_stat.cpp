#include "accounting/ui/ORVE_stat.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "accounting/ui/ReportWidgets.h"
#include "accounting/ui/StatisticsChart.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "invoicing/ui/SelectionPanel.h"

namespace orve::accounting {

namespace {

QLineEdit* dateField(const QString& name, QWidget* parent) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    e->setInputMask(QStringLiteral("99/99/9999;_"));
    e->setMaximumWidth(110);
    return e;
}

}  // namespace

ORVE_stat::ORVE_stat(app::Session& session, app::Dialogs& dialogs, const QString& mode,
                     QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs), m_mode(statisticsModeOf(mode)) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_stat"),
                          QStringLiteral("Les Statistiques de Ventes"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);

    auto* criteria = new QGroupBox(QStringLiteral("Critères de sélection d'affichage "), this);
    criteria->setObjectName(QStringLiteral("Frame1"));
    auto* cl = new QHBoxLayout(criteria);
    m_panel = new invoicing::SelectionPanel(dialogs, criteria);
    cl->addWidget(m_panel, 1);
    auto* side = new QVBoxLayout;
    auto* period = new QGroupBox(QStringLiteral("Période de facturation"), criteria);
    period->setObjectName(QStringLiteral("Frame_periode"));
    auto* pl = new QHBoxLayout(period);
    m_from = dateField(QStringLiteral("mskdebut"), period);
    m_to = dateField(QStringLiteral("mskfin"), period);
    pl->addWidget(new QLabel(QStringLiteral("Du :"), period));
    pl->addWidget(m_from);
    pl->addWidget(new QLabel(QStringLiteral("au :"), period));
    pl->addWidget(m_to);
    side->addWidget(period);
    auto* buttons = new QHBoxLayout;
    auto* exportButton = new QPushButton(QStringLiteral("Exporter (CSV)"), criteria);
    exportButton->setObjectName(QStringLiteral("CmdExport"));
    auto* back = new QPushButton(QStringLiteral("Retour"), criteria);
    back->setObjectName(QStringLiteral("CmdRetour"));
    buttons->addWidget(exportButton);
    buttons->addWidget(back);
    side->addLayout(buttons);
    side->addStretch(1);
    cl->addLayout(side);
    layout->addWidget(criteria);

    auto* splitter = new QSplitter(Qt::Vertical, this);
    auto* top = new QWidget(splitter);
    auto* tl = new QHBoxLayout(top);
    tl->setContentsMargins(0, 0, 0, 0);
    m_summaryGrid =
        captionedGrid(QStringLiteral("DBGrid2"), summaryCaption(m_mode), summaryColumns(), top);
    m_chart = new StatisticsChart(top);
    tl->addWidget(m_summaryGrid->parentWidget(), 3);
    tl->addWidget(m_chart, 2);
    splitter->addWidget(top);
    m_articleGrid = captionedGrid(
        QStringLiteral("DBGrid3"),
        QStringLiteral("STATISTIQUES DES VENTES - RECAPITULATIF PAR ARTICLES FACTURES"),
        detailColumns(), splitter);
    splitter->addWidget(m_articleGrid->parentWidget());
    m_detailGrid =
        captionedGrid(QStringLiteral("DBGrid1"),
                      QStringLiteral("STATISTIQUES DES VENTES  - DETAIL DES LIGNES DE FACTURES"),
                      detailColumns(), splitter);
    splitter->addWidget(m_detailGrid->parentWidget());
    hideFillerColumns(m_summaryGrid);
    hideFillerColumns(m_articleGrid);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setStretchFactor(2, 2);
    layout->addWidget(splitter, 1);
    m_summary = new SelectionSummary(this);
    layout->addWidget(m_summary);

    connect(m_panel, &invoicing::SelectionPanel::filterChanged, this, &ORVE_stat::panelChanged);
    for (QLineEdit* date : {m_from, m_to})
        connect(date, &QLineEdit::editingFinished, this, &ORVE_stat::compute);
    connect(m_summaryGrid, &app::DataGrid::rowChosen, this, &ORVE_stat::summaryChosen);
    connect(m_articleGrid, &app::DataGrid::rowChosen, this, &ORVE_stat::articleChosen);
    connect(exportButton, &QPushButton::clicked, this, &ORVE_stat::exportStatistics);
    connect(back, &QPushButton::clicked, this, &QWidget::close);
    for (app::DataGrid* grid : {m_summaryGrid, m_articleGrid, m_detailGrid})
        connect(grid, &app::DataGrid::loadFailed, this,
                [this](const QString& message) { m_dialogs.inform(message); });

    resize(1320, 720);
    app::guarded(m_dialogs, [&] {
        m_panel->load(m_session.store(), mode, m_session.workingSeason());
        compactLists(m_panel);
        panelChanged();
    });
}

void ORVE_stat::panelChanged() {
    // The date fields show the bounds of the season chosen; another season
    // brings its own.
    const QString season = m_panel->state().season;
    if (season != m_season) {
        app::guarded(m_dialogs, [&] {
            m_from->setText(defaultPeriodStart(season));
            m_to->setText(defaultPeriodEnd(season));
        });
        m_season = season;
    }
    compute();
}

StatisticsRequest ORVE_stat::request() const {
    StatisticsRequest r;
    r.mode = m_mode;
    r.selection = m_panel->condition();
    r.period = statisticsPeriod(m_panel->state().season, m_from->text(), m_to->text());
    return r;
}

void ORVE_stat::compute() {
    m_articleGrid->setRows({});
    m_detailGrid->setRows({});
    app::guarded(m_dialogs, [&] {
        m_shown = request();
        const StatisticsResult result = computeStatistics(m_session.store(), m_shown);
        m_summaryGrid->setRows(result.summary);
        m_chart->draw(summaryCaption(m_mode).section(QStringLiteral(" - "), 1), result.bars);
        m_summary->setTotals(result.totals.amount, result.totals.quantity);
        if (result.notice) m_dialogs.inform(*result.notice);
    });
}

void ORVE_stat::summaryChosen(int row) {
    m_detailGrid->setRows({});
    app::guarded(m_dialogs, [&] {
        m_articleGrid->setRows(
            articleTotals(m_session.store(), m_shown, m_summaryGrid->record(row)));
    });
}

void ORVE_stat::articleChosen(int row) {
    app::guarded(m_dialogs, [&] {
        m_detailGrid->setQuery(m_session.store(), detailQuery(m_shown, m_articleGrid->record(row)));
    });
}

void ORVE_stat::exportStatistics() {
    StatisticsRequest r;
    if (!app::guarded(m_dialogs, [&] { r = request(); })) return;
    exportReport(m_dialogs, QStringLiteral("statistiques_ventes_%1.csv").arg(int(m_mode)),
                 [&] { return statisticsCsv(m_session.store(), r); });
}

}  // namespace orve::accounting
