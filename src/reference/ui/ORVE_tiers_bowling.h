#pragma once

#include <QComboBox>

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The bowling centres: their card, lanes, surface, approval date and invoicing
// address. The league and department are shown, not changed, here.
class ORVE_tiers_bowling : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_tiers_bowling(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;

  private:
    QLineEdit* m_number;
    QLineEdit* m_lanes;
    QLineEdit* m_approval;
    QComboBox* m_league;
    QComboBox* m_department;
    std::vector<QRadioButton*> m_surface;  // Option1: wood, synthetic
};

}  // namespace orve::reference
