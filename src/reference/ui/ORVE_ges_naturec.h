#pragma once

#include "reference/ui/RecordScreen.h"

namespace orve::reference {

// The natures of competition and how competitions of each are invoiced.
class ORVE_ges_naturec : public RecordScreen {
    Q_OBJECT
  public:
    ORVE_ges_naturec(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    void addNature();
    void deleteNature();

  protected:
    store::Query listing() override;
    void showRecord(const store::Row& record) override;
    void saveRecord() override;

  private:
    QLineEdit* m_code;
    QLineEdit* m_label;
    std::vector<QRadioButton*> m_fact;       // Option1: entries, results
    std::vector<QRadioButton*> m_lines;      // Option2: yes, no
    std::vector<QRadioButton*> m_entryFees;  // Option3: yes, no
};

}  // namespace orve::reference
