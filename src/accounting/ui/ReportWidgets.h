#pragma once

#include <QByteArray>
#include <QGroupBox>
#include <QString>
#include <functional>
#include <vector>

#include "accounting/CsvExport.h"
#include "app/Dialogs.h"
#include "app/ui/DataGrid.h"
#include "store/Money.h"

class QLabel;

// What the accounting windows share: grids of report columns, the summary of
// a selection, and saving a report for a spreadsheet.
namespace orve::accounting {

// Narrows the selection panel's lists to fit a 1366-pixel screen beside the
// window's own controls; each list still opens as wide as its longest item.
void compactLists(QWidget* panel);

std::vector<app::GridColumn> gridColumns(const std::vector<ReportColumn>& columns);

// A grid inside its captioned frame ("Frame_" + the grid's name).
app::DataGrid* captionedGrid(const QString& name, const QString& caption,
                             const std::vector<ReportColumn>& columns, QWidget* parent,
                             QGroupBox** frame = nullptr);

// Summary rows fill the columns they do not total with "-" and empty dates:
// such columns are hidden while every row of the grid has them so, and come
// back as soon as one row has a value.
void hideFillerColumns(app::DataGrid* grid);

// "Récapitulatif de la sélection": lbltotal and lblqte.
class SelectionSummary : public QGroupBox {
    Q_OBJECT
  public:
    explicit SelectionSummary(QWidget* parent = nullptr);
    void setTotals(Money amount, qint64 quantity);

  private:
    QLabel* m_total;
    QLabel* m_quantity;
};

// CmdExport: asks where to save, writes the report there and says so.
// `content` is only computed once a file is chosen.
void exportReport(app::Dialogs& dialogs, const QString& suggestedName,
                  const std::function<QByteArray()>& content);

}  // namespace orve::accounting
