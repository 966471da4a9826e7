#pragma once

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The departmental committees: their card, league, district, account and the
// entity their invoices go to, looked up as it is typed.
class ORVE_tiers_dept : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_tiers_dept(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;

  private:
    // Each look-up shows the name found; `tell` also shows the message when
    // there is none.
    void lookUpLeague(bool tell);
    void lookUpEntity(bool tell);
    bool committeeEntity() const { return m_entityKind[1]->isChecked(); }

    QLineEdit* m_league;
    QLineEdit* m_leagueName;
    QLineEdit* m_entity;
    QLineEdit* m_entityName;
    QLineEdit* m_district;
    QLineEdit* m_account;
    std::vector<QRadioButton*> m_entityKind;  // Option1: a league, a committee
};

}  // namespace orve::reference
