#pragma once

#include "reference/ui/PartyScreen.h"

namespace orve::reference {

// The regional leagues: their card, their CSR and to whom they are invoiced.
class ORVE_tiers_lr : public PartyScreen {
    Q_OBJECT
  public:
    ORVE_tiers_lr(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  protected:
    store::Rows loadRows() override;
    void showRecord(const QString& key) override;
    void saveRecord() override;

  private:
    std::vector<QRadioButton*> m_invoicing;  // Option1: the league, its CSR
};

}  // namespace orve::reference
