#include "app/ui/DataGrid.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolTip>
#include <algorithm>

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
    // Rows read while scrolling may be wider than the first page's.
    connect(m_model, &QAbstractItemModel::rowsInserted, this, [this] {
        if (m_filling || m_fitPending) return;
        m_fitPending = true;
        QTimer::singleShot(0, this, [this] {
            m_fitPending = false;
            fitColumns();
        });
    });
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
    fitColumns();
}

void DataGrid::fitColumns() {
    QHeaderView* header = horizontalHeader();
    const int shown = std::min(m_model->shownColumnCount(), m_model->columnCount());
    if (shown <= 0) return;
    // Sizing by content sets every section, the last one too: the stretch is
    // taken off meanwhile and given back after, or the last column stays as
    // narrow as its text until the window is resized.
    const bool stretch = header->stretchLastSection();
    header->setStretchLastSection(false);
    for (int c = 0; c < shown; ++c)
        if (!isColumnHidden(c) && header->sectionResizeMode(c) == QHeaderView::Interactive)
            resizeColumnToContents(c);
    // The room the columns have, known once the grid is shown (it is fitted
    // again then).
    const int room = isVisible() ? viewport()->width() : 0;
    int total = 0;
    std::vector<int> sizes(static_cast<size_t>(shown), 0);
    for (int c = 0; c < shown; ++c)
        if (!isColumnHidden(c)) total += sizes[static_cast<size_t>(c)] = header->sectionSize(c);
    if (room > 0 && total > room) {
        // The widest columns give way first, never below their head's width
        // or a readable minimum, so that a long name does not push the other
        // columns out of sight.
        std::vector<int> limits(sizes.size(), 0);
        for (int c = 0; c < shown; ++c)
            limits[static_cast<size_t>(c)] =
                header->sectionResizeMode(c) != QHeaderView::Interactive
                    ? sizes[static_cast<size_t>(c)]  // sized by the window itself
                    : std::max(80, header->fontMetrics().horizontalAdvance(
                                       m_model->headerData(c, Qt::Horizontal).toString()) +
                                       24);
        // When even that cannot bring every column in sight, the grid scrolls
        // sideways and every column keeps its whole text.
        int least = 0;
        for (int c = 0; c < shown; ++c)
            if (!isColumnHidden(c)) least += std::min(sizes[size_t(c)], limits[size_t(c)]);
        int excess = least <= room ? total - room : 0;
        while (excess > 0) {
            int widest = -1;
            for (int c = 0; c < shown; ++c) {
                const auto i = static_cast<size_t>(c);
                if (sizes[i] > limits[i] && (widest < 0 || sizes[i] > sizes[size_t(widest)]))
                    widest = c;
            }
            if (widest < 0) break;
            int next = limits[size_t(widest)];
            for (int c = 0; c < shown; ++c)
                if (c != widest && sizes[size_t(c)] < sizes[size_t(widest)])
                    next = std::max(next, sizes[size_t(c)]);
            const int cut = std::min(excess, std::max(1, sizes[size_t(widest)] - next));
            sizes[size_t(widest)] -= cut;
            excess -= cut;
        }
        for (int c = 0; c < shown; ++c)
            if (!isColumnHidden(c) && header->sectionSize(c) != sizes[size_t(c)])
                header->resizeSection(c, sizes[size_t(c)]);
    }
    header->setStretchLastSection(stretch);
}

void DataGrid::clearChoice() {
    const bool wasFilling = m_filling;
    m_filling = true;
    clearSelection();
    setCurrentIndex({});
    m_filling = wasFilling;
}

bool DataGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QModelIndex index = indexAt(help->pos());
        const QString text = index.data(Qt::DisplayRole).toString();
        // Some room for the cell's own margins.
        if (index.isValid() &&
            viewport()->fontMetrics().horizontalAdvance(text) + 8 > visualRect(index).width()) {
            QToolTip::showText(help->globalPos(), text, viewport(), visualRect(index));
        } else {
            QToolTip::hideText();
        }
        return true;
    }
    return QTableView::viewportEvent(event);
}

void DataGrid::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    // Sized before the window knew its width: fitted again to the real one.
    fitColumns();
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
