#include "app/ui/DataGrid.h"

#include <QHeaderView>

#include "store/Formats.h"

namespace orve::app {

DataGrid::DataGrid(const QString& name, QWidget* parent) : QTableWidget(parent) {
    setObjectName(name);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    verticalHeader()->setDefaultSectionSize(22);
    horizontalHeader()->setHighlightSections(false);
    connect(this, &QTableWidget::currentCellChanged, this, [this](int row, int, int previous, int) {
        if (!m_filling && row >= 0 && row != previous) emit rowChosen(row);
    });
    connect(this, &QTableWidget::cellClicked, this, [this](int row, int) {
        if (!m_filling && row == currentRow()) emit rowChosen(row);
    });
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
        if (column >= 0 && column < static_cast<int>(m_columns.size()))
            emit headerClicked(m_columns[column].field);
    });
    connect(this, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (!m_filling) emit cellEdited(item->row(), fieldOf(item->column()), item->text());
    });
}

void DataGrid::setColumns(const std::vector<GridColumn>& columns) {
    m_columns = columns;
    setColumnCount(static_cast<int>(columns.size()));
    QStringList captions;
    for (const auto& c : columns) captions << c.caption;
    setHorizontalHeaderLabels(captions);
}

void DataGrid::setRows(const store::Rows& rows) {
    m_filling = true;
    m_rows = rows;
    clearContents();
    setRowCount(static_cast<int>(rows.size()));
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        for (int c = 0; c < static_cast<int>(m_columns.size()); ++c) {
            const auto& col = m_columns[c];
            const QVariant v = rows[r].value(col.field);
            QString text;
            switch (col.kind) {
                case GridColumn::Kind::Text:
                    text = v.toString();
                    break;
                case GridColumn::Kind::Number:
                    text = v.isNull() ? QString() : v.toString();
                    break;
                case GridColumn::Kind::Currency:
                    text = format::amountEuro(Money::fromVariant(v));
                    break;
            }
            auto* item = new QTableWidgetItem(text);
            if (col.kind != GridColumn::Kind::Text)
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            setItem(r, c, item);
        }
    }
    setCurrentCell(-1, -1);
    resizeColumnsToContents();
    m_filling = false;
}

QVariant DataGrid::value(int row, const QString& field) const {
    if (row < 0 || row >= static_cast<int>(m_rows.size())) return {};
    return m_rows[row].value(field);
}

int DataGrid::columnOf(const QString& captionOrField) const {
    for (int c = 0; c < static_cast<int>(m_columns.size()); ++c)
        if (m_columns[c].caption == captionOrField) return c;
    for (int c = 0; c < static_cast<int>(m_columns.size()); ++c)
        if (m_columns[c].field.compare(captionOrField, Qt::CaseInsensitive) == 0) return c;
    return -1;
}

QString DataGrid::fieldOf(int column) const {
    return column >= 0 && column < static_cast<int>(m_columns.size()) ? m_columns[column].field
                                                                      : QString();
}

void DataGrid::choose(int row) {
    if (row < 0 || row >= rowCount()) return;
    if (row == currentRow()) {
        emit rowChosen(row);
    } else {
        setCurrentCell(row, 0);
    }
}

void DataGrid::editCell(int row, int column, const QString& text) {
    if (auto* it = item(row, column)) {
        it->setText(text);
    } else {
        setItem(row, column, new QTableWidgetItem(text));
    }
}

}  // namespace orve::app
