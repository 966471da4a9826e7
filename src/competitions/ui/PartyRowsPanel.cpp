#include "competitions/ui/PartyRowsPanel.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/CompetitionRegister.h"

namespace orve::competitions {

namespace {

const QString kTeams = QStringLiteral("c_nb_equipe");
const QString kEliminatory = QStringLiteral("c_nb_equipe_eliminatoire");
const QString kFinals = QStringLiteral("c_nb_equipe_finale");

// The party, its state and its invoice are the register's; only the counts
// open an editor.
class ShownOnlyDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget*, const QStyleOptionViewItem&,
                          const QModelIndex&) const override {
        return nullptr;
    }
};

}  // namespace

PartyRowsPanel::PartyRowsPanel(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QGroupBox(QStringLiteral("Facturation de cette compétition"), parent),
      m_session(session),
      m_dialogs(dialogs) {
    setObjectName(QStringLiteral("FrameFacturation"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 4);
    using Kind = app::GridColumn::Kind;
    m_grid = new app::DataGrid(QStringLiteral("DBGrid10"), this);
    m_grid->setColumns({{QStringLiteral("Entité à facturer"), "c_nom_organisateur", Kind::Text},
                        {QStringLiteral("Nbre Equipes"), kTeams, Kind::Number},
                        {QStringLiteral("Equipe élimin."), kEliminatory, Kind::Number},
                        {QStringLiteral("Equipe Finale"), kFinals, Kind::Number},
                        {QStringLiteral("Etat"), "c_facture", Kind::Text},
                        {QStringLiteral("Facture"), "c_num_facture", Kind::Text}});
    auto* shownOnly = new ShownOnlyDelegate(m_grid);
    for (const char* field : {"c_nom_organisateur", "c_facture", "c_num_facture"})
        m_grid->setItemDelegateForColumn(m_grid->columnOf(QString::fromLatin1(field)), shownOnly);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->setMinimumHeight(110);
    layout->addWidget(m_grid);
    connect(m_grid, &app::DataGrid::cellEdited, this, &PartyRowsPanel::countTyped);
    connect(m_grid, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });
}

void PartyRowsPanel::showRows(const store::Query& query) {
    m_grid->setQuery(m_session.store(), query);
}

void PartyRowsPanel::clear() { m_grid->setRows({}); }

void PartyRowsPanel::setCountsEditable(bool editable) { m_grid->setEditable(editable); }

void PartyRowsPanel::countTyped(int row, const QString& field, const QString& text) {
    Q_UNUSED(text);
    if (field == kTeams || field == kEliminatory || field == kFinals) {
        // The row holds what was typed in one cell and what is stored in the others.
        const auto cell = [&](const QString& f) { return m_grid->value(row, f).toString(); };
        app::guarded(m_dialogs, [&] {
            setTeamCounts(m_session.store(), reference::Viewer::of(m_session),
                          cell(QStringLiteral("c_index")),
                          {cell(kTeams), cell(kEliminatory), cell(kFinals)});
        });
    }
    // What is stored is shown again, the count as written or as it was, once
    // the editor that typed it has closed.
    QMetaObject::invokeMethod(
        this, [this] { app::guarded(m_dialogs, [&] { m_grid->reload(); }); }, Qt::QueuedConnection);
}

}  // namespace orve::competitions
