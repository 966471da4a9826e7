#pragma once

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The regional leagues: their card, their CSR and to whom they are invoiced.
class ORVE_tiers_lr : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_tiers_lr(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;

  private:
    std::vector<QRadioButton*> m_invoicing;  // Option1: the league, its CSR
};

}  // namespace orve::reference
