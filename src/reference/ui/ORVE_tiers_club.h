#pragma once

#include <QComboBox>

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The clubs: their card, and the creation of new clubs whose key is made of
// the department and the club number.
class ORVE_tiers_club : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_tiers_club(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void addClub();

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;

  private:
    void chooseLeague();
    void chooseDepartment();
    // While adding, the key the club will get follows the department and number.
    void showNewKey();
    // Key, number, league and department can be typed only for a new club.
    void allowKeyEdit(bool allow);

    QLineEdit* m_number;
    QLineEdit* m_code;
    QComboBox* m_league;
    QLineEdit* m_leagueCode;
    QComboBox* m_department;
    QLineEdit* m_departmentCode;
    QLineEdit* m_district;
    QLineEdit* m_account;
};

}  // namespace orve::reference
