#pragma once

#include <QTableWidget>
#include <vector>

#include "store/Store.h"

namespace orve::app {

// How a grid column shows its field.
struct GridColumn {
    enum class Kind { Text, Number, Currency };
    QString caption;
    QString field;
    Kind kind = Kind::Text;
};

// The grid every list screen uses: columns bound to fields by name, filled from
// rows a rule returned. Choosing a row (click, keyboard or scenario) emits
// rowChosen; a click on a column head emits headerClicked with its field.
class DataGrid : public QTableWidget {
    Q_OBJECT
  public:
    explicit DataGrid(const QString& name, QWidget* parent = nullptr);

    void setColumns(const std::vector<GridColumn>& columns);
    void setRows(const store::Rows& rows);
    const store::Rows& rows() const { return m_rows; }
    // The stored value of a field in a row (not its display form).
    QVariant value(int row, const QString& field) const;
    // Column by caption or by field name; -1 when none.
    int columnOf(const QString& captionOrField) const;
    QString fieldOf(int column) const;
    // A user choosing a row.
    void choose(int row);
    // A user typing into a cell.
    void editCell(int row, int column, const QString& text);

  signals:
    void rowChosen(int row);
    void headerClicked(const QString& field);
    void cellEdited(int row, const QString& field, const QString& text);

  private:
    std::vector<GridColumn> m_columns;
    store::Rows m_rows;
    bool m_filling = false;
};

}  // namespace orve::app
