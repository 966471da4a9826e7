#include "app/ui/StoreTableModel.h"

#include <QSqlField>
#include <algorithm>
#include <numeric>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::app {

namespace {

bool isIntegral(const QVariant& v) {
    switch (v.typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
            return true;
        default:
            return false;
    }
}

bool isNumeric(const QVariant& v) {
    return isIntegral(v) || v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float;
}

template <typename T>
int threeWay(T a, T b) {
    return (a > b) - (a < b);
}

// The order of fixed rows: empty values first, amounts and counts as numbers,
// codes and names without regard to case, as the store orders its text columns.
int compareValues(const QVariant& a, const QVariant& b) {
    if (a.isNull() || b.isNull()) return int(!a.isNull()) - int(!b.isNull());
    if (isIntegral(a) && isIntegral(b)) return threeWay(a.toLongLong(), b.toLongLong());
    if (isNumeric(a) && isNumeric(b)) return threeWay(a.toDouble(), b.toDouble());
    return QString::compare(a.toString(), b.toString(), Qt::CaseInsensitive);
}

}  // namespace

StoreTableModel::StoreTableModel(QObject* parent) : QAbstractTableModel(parent) {}

void StoreTableModel::setColumns(const std::vector<GridColumn>& columns) {
    const bool wasSorted = m_sortColumn >= 0;
    beginResetModel();
    m_columns = columns;
    QStringList extras;
    for (const QString& field : m_extraFields) {
        const bool shown = std::any_of(m_columns.begin(), m_columns.end(), [&](const auto& c) {
            return c.field.compare(field, Qt::CaseInsensitive) == 0;
        });
        if (!shown) extras << field;
    }
    m_extraFields = extras;
    // A sort belonged to the old columns; the rows go back to the listing's order.
    m_sortColumn = -1;
    m_sortOrder = Qt::AscendingOrder;
    if (wasSorted && !m_store) sortFixedRows();
    endResetModel();
    if (wasSorted && m_store) {
        try {
            readFirst(m_pageSize);
        } catch (const std::exception& e) {
            emit loadFailed(describeError(e));
        }
    }
}

int StoreTableModel::section(const QString& field) {
    for (int c = 0; c < shownColumnCount(); ++c)
        if (m_columns[c].field.compare(field, Qt::CaseInsensitive) == 0) return c;
    for (int i = 0; i < m_extraFields.size(); ++i)
        if (m_extraFields[i].compare(field, Qt::CaseInsensitive) == 0)
            return shownColumnCount() + i;
    const int added = columnCount();
    beginInsertColumns({}, added, added);
    m_extraFields << field;
    endInsertColumns();
    return added;
}

QString StoreTableModel::fieldOf(int section) const {
    if (section >= 0 && section < shownColumnCount()) return m_columns[section].field;
    return m_extraFields.value(section - shownColumnCount());
}

void StoreTableModel::setQuery(store::Store& store, const store::Query& query) {
    m_store = &store;
    m_query = query;
    m_position.clear();
    readFirst(m_pageSize);
}

void StoreTableModel::setRows(const store::Rows& rows) {
    beginResetModel();
    m_store = nullptr;
    m_query = {};
    m_exhausted = true;
    m_rows = rows;
    m_position.resize(rows.size());
    std::iota(m_position.begin(), m_position.end(), 0);
    sortFixedRows();
    endResetModel();
}

void StoreTableModel::reload() {
    if (!m_store) return;  // fixed rows are the rule's; it gives new ones
    const int read = static_cast<int>(m_rows.size());
    const int pages = std::max(1, (read + m_pageSize - 1) / m_pageSize);
    readFirst(pages * m_pageSize);
}

store::Query StoreTableModel::runningQuery() const {
    if (m_sortColumn < 0) return m_query;
    store::Query sorted =
        m_query.sortedBy(m_columns[m_sortColumn].field, m_sortOrder == Qt::DescendingOrder);
    // Rows equal on the clicked column keep the listing's order, so that the
    // pages neither repeat nor skip a row.
    if (!m_query.orderBy.isEmpty()) sorted.orderBy += QStringLiteral(", ") + m_query.orderBy;
    return sorted;
}

void StoreTableModel::readFirst(int count) {
    store::Rows rows;
    try {
        rows = m_store->select(runningQuery(), count, 0);
    } catch (...) {
        // Rows of another listing or order would mislead: show none.
        beginResetModel();
        m_rows.clear();
        m_exhausted = true;
        endResetModel();
        throw;
    }
    beginResetModel();
    m_exhausted = static_cast<int>(rows.size()) < count;
    m_rows = std::move(rows);
    endResetModel();
}

void StoreTableModel::fetchAll() {
    while (canFetchMore({})) fetchMore({});
}

bool StoreTableModel::fetchTo(int row) {
    while (row >= rowCount() && canFetchMore({})) fetchMore({});
    return row >= 0 && row < rowCount();
}

store::Row StoreTableModel::record(int row) const {
    if (row < 0 || row >= rowCount()) return {};
    return m_rows[static_cast<size_t>(row)];
}

QVariant StoreTableModel::value(int row, const QString& field) const {
    if (row < 0 || row >= rowCount()) return {};
    return m_rows[static_cast<size_t>(row)].value(field);
}

int StoreTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int StoreTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shownColumnCount() + static_cast<int>(m_extraFields.size());
}

QString StoreTableModel::displayText(int section, const QVariant& value) const {
    if (section >= shownColumnCount()) return editText(section, value);
    switch (m_columns[section].kind) {
        case GridColumn::Kind::Text:
            return value.toString();
        case GridColumn::Kind::Number:
            return value.isNull() ? QString() : value.toString();
        case GridColumn::Kind::Currency: {
            bool number = false;
            value.toLongLong(&number);
            // Text typed into an amount cell that is not an amount stays as typed.
            if (!value.isNull() && !number) return value.toString();
            return format::amountEuro(Money::fromVariant(value));
        }
    }
    return {};
}

QString StoreTableModel::editText(int section, const QVariant& value) const {
    if (value.isNull()) return {};
    if (section < shownColumnCount() && m_columns[section].kind == GridColumn::Kind::Currency) {
        bool number = false;
        value.toLongLong(&number);
        if (number) return format::fileAmount(Money::fromVariant(value));
    }
    return value.toString();
}

QVariant StoreTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount()) return {};
    const QVariant stored = m_rows[static_cast<size_t>(index.row())].value(fieldOf(index.column()));
    switch (role) {
        case Qt::DisplayRole:
            return displayText(index.column(), stored);
        case Qt::EditRole:
            return editText(index.column(), stored);
        case ValueRole:
            return stored;
        case Qt::TextAlignmentRole:
            if (index.column() < shownColumnCount() &&
                m_columns[index.column()].kind != GridColumn::Kind::Text)
                return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
            return {};
        default:
            return {};
    }
}

QVariant StoreTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        if (section >= 0 && section < shownColumnCount()) return m_columns[section].caption;
        return fieldOf(section);
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags StoreTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (m_editable && index.column() < shownColumnCount()) f |= Qt::ItemIsEditable;
    return f;
}

bool StoreTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !index.isValid() || index.row() >= rowCount() ||
        index.column() >= columnCount())
        return false;
    const QString field = fieldOf(index.column());
    const QString text = value.toString();
    QVariant kept = text;
    if (index.column() < shownColumnCount() &&
        m_columns[index.column()].kind == GridColumn::Kind::Currency) {
        if (const auto amount = Money::parse(text)) kept = qlonglong(amount->cents());
    }
    store::Row& row = m_rows[static_cast<size_t>(index.row())];
    if (row.indexOf(field) < 0) row.append(QSqlField(field, kept.metaType()));
    row.setValue(field, kept);
    emit dataChanged(index, index);
    emit edited(index.row(), field, text);
    return true;
}

bool StoreTableModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_store && !m_exhausted;
}

void StoreTableModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    store::Rows page;
    try {
        page = m_store->select(runningQuery(), m_pageSize, rowCount());
    } catch (const std::exception& e) {
        // Called from painting: the message is handed on, never thrown through Qt.
        m_exhausted = true;
        emit loadFailed(describeError(e));
        return;
    }
    m_exhausted = static_cast<int>(page.size()) < m_pageSize;
    if (page.empty()) return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(page.size()) - 1);
    m_rows.insert(m_rows.end(), std::make_move_iterator(page.begin()),
                  std::make_move_iterator(page.end()));
    endInsertRows();
}

void StoreTableModel::sort(int column, Qt::SortOrder order) {
    if (column >= shownColumnCount()) return;  // a card's field is never a sort key
    m_sortColumn = column < 0 ? -1 : column;
    m_sortOrder = order;
    if (m_store) {
        try {
            readFirst(m_pageSize);
        } catch (const std::exception& e) {
            emit loadFailed(describeError(e));
        }
        return;
    }
    beginResetModel();
    sortFixedRows();
    endResetModel();
}

void StoreTableModel::sortFixedRows() {
    std::vector<size_t> order(m_rows.size());
    std::iota(order.begin(), order.end(), size_t{0});
    if (m_sortColumn < 0) {
        std::stable_sort(order.begin(), order.end(),
                         [&](size_t a, size_t b) { return m_position[a] < m_position[b]; });
    } else {
        const QString field = m_columns[m_sortColumn].field;
        const bool descending = m_sortOrder == Qt::DescendingOrder;
        std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
            const int c = compareValues(m_rows[a].value(field), m_rows[b].value(field));
            if (c != 0) return descending ? c > 0 : c < 0;
            return m_position[a] < m_position[b];
        });
    }
    store::Rows rows;
    std::vector<int> positions;
    rows.reserve(order.size());
    positions.reserve(order.size());
    for (size_t i : order) {
        rows.push_back(m_rows[i]);
        positions.push_back(m_position[i]);
    }
    m_rows = std::move(rows);
    m_position = std::move(positions);
}

}  // namespace orve::app
