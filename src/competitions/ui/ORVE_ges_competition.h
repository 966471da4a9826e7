#pragma once

#include <QWidget>
#include <optional>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/DataGrid.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/CompetitionRegister.h"

class QComboBox;
class QHBoxLayout;
class QVBoxLayout;
class QLabel;
class QPushButton;
class QToolButton;

namespace orve::competitions {

class CompetitionCard;
class CompetitionTariffPanel;
class PartyRowsPanel;
class PriceFrame;

// The competitions to invoice of a season: their card, the parties invoiced
// under each with the counts typed per party, the calculation of what is to
// be invoiced, and the generation of the invoices with their documents.
class ORVE_ges_competition : public QWidget {
    Q_OBJECT
  public:
    ORVE_ges_competition(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void addCompetition();
    void validateCompetition();
    void cancelEntry();
    void calculate();
    void invoice();

  private:
    void chooseSeason();
    // The window's parts, built once by the constructor.
    QHBoxLayout* competitionList();
    void addCard(QVBoxLayout* layout);
    QHBoxLayout* invoicingPart();
    void connectActions();
    void chooseCompetition(int row);
    // Shows a stored competition; `asking` puts the question of a frozen one.
    void showCompetition(const QString& index, bool asking);
    void createComplementary(const CompetitionRecord& record);
    // After a validation or a complementary creation.
    void showBuilt(const ValidationOutcome& outcome);
    void listCompetitions();
    // Which controls may be used: adding, changing an open competition, or
    // only looking at a frozen or closed one.
    void setCardState(bool editable, bool validatable);
    void clearCompetition();
    void entryPriceConfirmed(Money price);
    void linePriceConfirmed(Money price);
    void askLinePrice();
    void generate();
    void stopInvoicing();
    bool stillOpen() const;
    reference::Viewer viewer() const;

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    QComboBox* m_seasons;
    app::DataGrid* m_competitions;
    CompetitionCard* m_card;
    QLabel* m_owner;
    QPushButton* m_add;
    QPushButton* m_validate;
    QPushButton* m_cancel;
    PartyRowsPanel* m_parties;
    QPushButton* m_calculate;
    QToolButton* m_calculateImage;
    QPushButton* m_invoice;
    QToolButton* m_invoiceImage;
    PriceFrame* m_entryPrice;
    PriceFrame* m_linePrice;
    CompetitionTariffPanel* m_tariffs;
    bool m_adding = false;
    bool m_modifying = false;
    // The invoicing asked for, while its prices are being confirmed.
    std::optional<InvoicingPlan> m_plan;
    InvoicingPrices m_prices;
};

}  // namespace orve::competitions
