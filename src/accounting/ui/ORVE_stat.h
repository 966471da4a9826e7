#pragma once

#include <QWidget>

#include "accounting/TurnoverStatistics.h"
#include "app/Dialogs.h"
#include "app/Session.h"

class QGroupBox;
class QLineEdit;

namespace orve::app {
class DataGrid;
}

namespace orve::invoicing {
class SelectionPanel;
}

namespace orve::accounting {

class SelectionSummary;
class StatisticsChart;

// "Les Statistiques de Ventes" in the mode its menu entry asks: the summary
// of the season period (DBGrid2) with its chart, the articles behind a
// summary row (DBGrid3), the invoice lines behind an article (DBGrid1).
class ORVE_stat : public QWidget {
    Q_OBJECT
  public:
    ORVE_stat(app::Session& session, app::Dialogs& dialogs, const QString& mode,
              QWidget* parent = nullptr);

  private:
    void panelChanged();
    void compute();
    void summaryChosen(int row);
    void articleChosen(int row);
    void exportStatistics();
    // The request as the controls state it; Refusal for a date that is not one.
    StatisticsRequest request() const;

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    StatisticsMode m_mode;
    invoicing::SelectionPanel* m_panel;
    QLineEdit* m_from;             // mskdebut
    QLineEdit* m_to;               // mskfin
    app::DataGrid* m_summaryGrid;  // DBGrid2
    app::DataGrid* m_articleGrid;  // DBGrid3
    app::DataGrid* m_detailGrid;   // DBGrid1
    StatisticsChart* m_chart;
    SelectionSummary* m_summary;
    QString m_season;           // the season whose bounds the date fields show
    StatisticsRequest m_shown;  // the request of what the grids show
};

}  // namespace orve::accounting
