#pragma once

#include <QComboBox>

#include "reference/ui/PartyScreen.h"

namespace orve::reference {

// The bowling centres: their card, lanes, surface, approval date and invoicing
// address. The league and department are shown, not changed, here.
class ORVE_tiers_bowling : public PartyScreen {
    Q_OBJECT
  public:
    ORVE_tiers_bowling(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  protected:
    store::Rows loadRows() override;
    void showRecord(const QString& key) override;
    void saveRecord() override;

  private:
    QLineEdit* m_number;
    QLineEdit* m_lanes;
    QLineEdit* m_approval;
    QComboBox* m_league;
    QComboBox* m_department;
    std::vector<QRadioButton*> m_surface;  // Option1: wood, synthetic
};

// Fills a drop-down list with "Choisir" and "code # label" items.
void fillItems(QComboBox* combo, const ListItems& items);
// Shows the item of a code, or "Choisir" when the list has none.
void showItem(QComboBox* combo, const QString& code);

}  // namespace orve::reference
