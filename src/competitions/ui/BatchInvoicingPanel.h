#pragma once

#include <QWidget>
#include <optional>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/DataGrid.h"
#include "competitions/NationalInvoicing.h"

class QComboBox;
class QPushButton;
class QToolButton;

namespace orve::competitions {

class PriceFrame;

// The body of the two batch invoicing windows (national championship,
// private competitions): the season's imported competitions still to
// invoice, the calculation of those that owe something, the prices confirmed
// and the generation of their invoices with their documents.
class BatchInvoicingPanel : public QWidget {
    Q_OBJECT
  public:
    BatchInvoicingPanel(app::Session& session, app::Dialogs& dialogs, BatchKind kind,
                        const QString& windowTitle, QWidget* parent = nullptr);

    void calculate();
    void invoice();

  private:
    void chooseSeason();
    void listOpenRows();
    void listCalculatedRows();
    QString season() const;
    // The prices the plan needs, asked one after the other; then the generation.
    void askNextPrice();
    void generate();
    void stopInvoicing();

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    BatchKind m_kind;
    QString m_title;
    QComboBox* m_seasons;
    app::DataGrid* m_rows;
    PriceFrame* m_menPrice = nullptr;
    PriceFrame* m_womenPrice = nullptr;
    PriceFrame* m_playerPrice = nullptr;
    std::optional<BatchPlan> m_plan;
    BatchPrices m_prices;
    bool m_menAsked = false, m_womenAsked = false, m_playerAsked = false;
};

}  // namespace orve::competitions
