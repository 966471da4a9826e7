#pragma once

#include <QComboBox>

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The invoiceable articles and, under the chosen one, its price per season.
class ORVE_ges_article : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_ges_article(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void addArticle();
    void addTariff();
    void saveTariff();
    void cancelTariff();

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;
    void afterCancel() override;

  private:
    void chooseNature();
    void checkAccount();
    void chooseTariff(int row);

    QLineEdit* m_code;
    QLineEdit* m_label;
    QLineEdit* m_account;
    QLineEdit* m_analytic;
    QComboBox* m_nature;
    QLineEdit* m_natureCode;
    // The prices of the article shown on the card.
    QGroupBox* m_tariffs;
    app::DataGrid* m_tariffGrid;
    QLineEdit* m_season;
    QLineEdit* m_price;
    bool m_addingTariff = false;
    QString m_tariffNature;  // the nature the prices are kept under
};

}  // namespace orve::reference
