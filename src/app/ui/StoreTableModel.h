#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <vector>

#include "store/Condition.h"
#include "store/Store.h"

namespace orve::app {

// How a grid column shows its field.
struct GridColumn {
    enum class Kind { Text, Number, Currency };
    QString caption;
    QString field;
    Kind kind = Kind::Text;
};

// Rows of the store as a table: the rows of a listing query, read a page at a
// time as the view scrolls, or rows a rule computed. The grid shows the
// sections of its columns; a card reaches any other field of the same rows
// through a section added for it, so nothing is read twice.
//
// Roles: Display is the text a grid shows ("1 234,56 €"); Edit is the text a
// card box shows and an operator types ("1234,56", empty for nothing); Value
// is the stored value itself.
class StoreTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    static constexpr int ValueRole = Qt::UserRole;
    static constexpr int kDefaultPageSize = 200;

    explicit StoreTableModel(QObject* parent = nullptr);

    // The shown columns; sections added for a card's fields follow them.
    void setColumns(const std::vector<GridColumn>& columns);
    const std::vector<GridColumn>& columns() const { return m_columns; }
    int shownColumnCount() const { return static_cast<int>(m_columns.size()); }
    // The section holding a field: its grid column, or one added for it.
    int section(const QString& field);
    QString fieldOf(int section) const;

    // Lists a query's rows, its first page at once and the rest on demand. A
    // column sort chosen before stays. Throws when the store cannot answer.
    void setQuery(store::Store& store, const store::Query& query);
    // Lists rows a rule computed.
    void setRows(const store::Rows& rows);
    // Reads the query again, as far as it had been read, in the same order.
    void reload();
    bool hasQuery() const { return m_store != nullptr; }
    // The query as it is run now, with the column sort applied.
    store::Query runningQuery() const;

    void setPageSize(int rows) { m_pageSize = rows > 0 ? rows : kDefaultPageSize; }
    int pageSize() const { return m_pageSize; }
    // Reads every remaining page (counting or reaching rows an operator would scroll to).
    void fetchAll();
    // Reads pages until the row is there; false when the listing is shorter.
    bool fetchTo(int row);

    // The rows read so far.
    const store::Rows& rows() const { return m_rows; }
    store::Row record(int row) const;
    QVariant value(int row, const QString& field) const;

    // Whether the view may open an editor on a shown column.
    void setEditable(bool editable) { m_editable = editable; }
    bool editable() const { return m_editable; }

    // Column -1 is the listing's own order.
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Typing into a cell keeps the text in the row and reports it; the store is
    // written only by the screen's rule.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

  signals:
    void edited(int row, const QString& field, const QString& text);
    // A page asked for by the view could not be read; the listing stops there.
    void loadFailed(const QString& message);

  private:
    // Replaces the rows with the first `count` rows of the running query.
    void readFirst(int count);
    void sortFixedRows();
    QString displayText(int section, const QVariant& value) const;
    QString editText(int section, const QVariant& value) const;

    std::vector<GridColumn> m_columns;
    QStringList m_extraFields;  // fields a card maps, after the shown columns

    store::Store* m_store = nullptr;
    store::Query m_query;
    bool m_exhausted = true;
    int m_pageSize = kDefaultPageSize;

    store::Rows m_rows;           // what is shown, in the order shown
    std::vector<int> m_position;  // fixed rows: each one's place in the rule's order

    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_editable = false;
};

}  // namespace orve::app
