#pragma once

#include <QGroupBox>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/DataGrid.h"
#include "store/Condition.h"

namespace orve::competitions {

// The party rows of one competition (DBGrid10), where the operator types the
// three team counts of each row. Each typed count is written at once through
// the register; a refused count is shown and the cell goes back to what is
// stored.
class PartyRowsPanel : public QGroupBox {
    Q_OBJECT
  public:
    PartyRowsPanel(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    app::DataGrid* grid() const { return m_grid; }
    // Lists the rows of a rule's query; throws when the store cannot answer.
    void showRows(const store::Query& query);
    void clear();
    // Counts may be typed only while the competition can still be changed.
    void setCountsEditable(bool editable);

  private:
    void countTyped(int row, const QString& field, const QString& text);

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    app::DataGrid* m_grid;
};

}  // namespace orve::competitions
