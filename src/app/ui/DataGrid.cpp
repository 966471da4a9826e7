#include "app/ui/DataGrid.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QSignalBlocker>

namespace orve::app {

DataGrid::DataGrid(const QString& name, QWidget* parent) : QTableView(parent) {
    setObjectName(name);
    m_model = new StoreTableModel(this);
    setModel(m_model);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    verticalHeader()->setDefaultSectionSize(22);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(true);
    // Rows come in the listing's own order until a column head is clicked.
    {
        const QSignalBlocker quiet(horizontalHeader());
        horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    }
    setSortingEnabled(true);

    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current, const QModelIndex& previous) {
                if (!m_filling && current.row() >= 0 && current.row() != previous.row())
                    emit rowChosen(current.row());
            });
    // A click on the row already chosen shows it again; a click on another row
    // has already been reported as the current row changed.
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        if (!m_filling && index.row() == m_rowBeforePress) emit rowChosen(index.row());
    });
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
        if (column >= 0 && column < m_model->shownColumnCount())
            emit headerClicked(m_model->fieldOf(column));
    });
    connect(m_model, &StoreTableModel::edited, this, &DataGrid::cellEdited);
    connect(m_model, &StoreTableModel::loadFailed, this, &DataGrid::loadFailed);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        // No row is chosen after a refill or a sort, and none will be on the
        // operator's behalf when the grid merely gets the focus.
        setCurrentIndex({});
        hideCardSections();
    });
    connect(m_model, &QAbstractItemModel::columnsInserted, this, &DataGrid::hideCardSections);
}

template <typename F>
void DataGrid::filling(F&& work) {
    m_filling = true;
    try {
        work();
    } catch (...) {
        m_filling = false;
        throw;
    }
    m_filling = false;
    resizeColumnsToContents();
}

void DataGrid::setColumns(const std::vector<GridColumn>& columns) {
    m_model->setColumns(columns);
    const QSignalBlocker quiet(horizontalHeader());
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
}

void DataGrid::setQuery(store::Store& store, const store::Query& query) {
    filling([&] { m_model->setQuery(store, query); });
}

void DataGrid::setRows(const store::Rows& rows) {
    filling([&] { m_model->setRows(rows); });
}

void DataGrid::reload() {
    filling([&] { m_model->reload(); });
}

void DataGrid::hideCardSections() {
    for (int c = 0; c < m_model->columnCount(); ++c)
        setColumnHidden(c, c >= m_model->shownColumnCount());
}

int DataGrid::columnOf(const QString& captionOrField) const {
    const auto& columns = m_model->columns();
    for (int c = 0; c < static_cast<int>(columns.size()); ++c)
        if (columns[c].caption == captionOrField) return c;
    for (int c = 0; c < static_cast<int>(columns.size()); ++c)
        if (columns[c].field.compare(captionOrField, Qt::CaseInsensitive) == 0) return c;
    return -1;
}

QString DataGrid::fieldOf(int column) const {
    return column >= 0 && column < m_model->shownColumnCount() ? m_model->fieldOf(column)
                                                               : QString();
}

void DataGrid::setEditable(bool editable) {
    m_model->setEditable(editable);
    setEditTriggers(editable
                        ? QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed
                        : QAbstractItemView::NoEditTriggers);
}

void DataGrid::mousePressEvent(QMouseEvent* event) {
    m_rowBeforePress = currentRow();
    QTableView::mousePressEvent(event);
}

void DataGrid::choose(int row) {
    if (row < 0 || !m_model->fetchTo(row)) return;
    if (row == currentRow()) {
        emit rowChosen(row);
    } else {
        setCurrentIndex(m_model->index(row, 0));
    }
}

void DataGrid::editCell(int row, int column, const QString& text) {
    if (column < 0 || column >= m_model->shownColumnCount() || !m_model->fetchTo(row)) return;
    m_model->setData(m_model->index(row, column), text, Qt::EditRole);
}

}  // namespace orve::app
