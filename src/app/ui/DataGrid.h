#pragma once

#include <QTableView>
#include <vector>

#include "app/ui/StoreTableModel.h"
#include "store/Store.h"

namespace orve::app {

// The grid every list screen uses: a view of a StoreTableModel whose columns
// are bound to fields by name, listing a rule's query (read a page at a time)
// or rows a rule computed. Choosing a row (click, keyboard or scenario) emits
// rowChosen; a click on a column head sorts the rows by it and emits
// headerClicked with its field. Cards bind to storeModel() to show the chosen row.
class DataGrid : public QTableView {
    Q_OBJECT
  public:
    explicit DataGrid(const QString& name, QWidget* parent = nullptr);

    StoreTableModel* storeModel() const { return m_model; }

    void setColumns(const std::vector<GridColumn>& columns);
    // A rule's listing; throws when the store cannot answer.
    void setQuery(store::Store& store, const store::Query& query);
    void setRows(const store::Rows& rows);
    // The listing read again after a rule wrote to the store.
    void reload();

    // The rows read so far.
    const store::Rows& rows() const { return m_model->rows(); }
    int rowCount() const { return m_model->rowCount(); }
    store::Row record(int row) const { return m_model->record(row); }
    // The stored value of a field in a row (not its display form); any field
    // of the row, shown or not.
    QVariant value(int row, const QString& field) const { return m_model->value(row, field); }
    // Column by caption or by field name; -1 when none.
    int columnOf(const QString& captionOrField) const;
    QString fieldOf(int column) const;
    // The row of the current cell; -1 when none.
    int currentRow() const { return currentIndex().row(); }

    // Lets the operator type into the cells (double click or a key).
    void setEditable(bool editable);

    // Columns as wide as what they show, within the grid's width where the
    // widest can give way (their cells then end in "…" and show the whole text
    // on hover); a header that stretches its last column keeps doing so.
    // Done after every fill; a window calls it after changing the columns.
    void fitColumns();
    // No row chosen, none highlighted (a card opened for a new record).
    void clearChoice();

    // A user choosing a row.
    void choose(int row);
    // A user typing into a cell.
    void editCell(int row, int column, const QString& text);

  signals:
    void rowChosen(int row);
    void headerClicked(const QString& field);
    void cellEdited(int row, const QString& field, const QString& text);
    // A page read while scrolling failed; the message is for the operator.
    void loadFailed(const QString& message);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    // A cell too narrow for its text shows the whole text on hover.
    bool viewportEvent(QEvent* event) override;

  private:
    // Sections added for a card are the model's, never the grid's.
    void hideCardSections();
    template <typename F>
    void filling(F&& work);

    StoreTableModel* m_model;
    bool m_filling = false;
    bool m_fitPending = false;
    int m_rowBeforePress = -1;
};

}  // namespace orve::app
