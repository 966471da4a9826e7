#pragma once

#include <QGroupBox>
#include <array>

#include "app/ListItems.h"
#include "competitions/CompetitionRegister.h"

class QComboBox;
class QGridLayout;
class QHBoxLayout;
class QVBoxLayout;
class QLineEdit;
class QRadioButton;

namespace orve::competitions {

// The card of one competition (Frame1) with its three option groups. Each
// pick-list and option button writes its mirror box at once, as the boxes are
// what is saved; showing a competition sets the buttons back from them.
class CompetitionCard : public QGroupBox {
    Q_OBJECT
  public:
    explicit CompetitionCard(QWidget* parent = nullptr);

    // "Choisir" then "code # label" for each nature.
    void setNatures(const app::ListItems& natures);
    // The values of the five codification lists, each offered after a blank.
    void setCodifications(const std::array<QStringList, 5>& values);

    void showRecord(const CompetitionRecord& record);
    // A new competition: the defaults of an entry, in the given season.
    void startNew(const QString& season);
    // Nothing on the card.
    void clear();
    CompetitionRecord record() const;

    QString index() const;
    QString nature() const;
    // The season box may be typed into only while a competition is added.
    void setSeasonEditable(bool editable);

    // Whether the card differs from the competition last shown (a new one
    // always does until it is validated).
    bool modified() const;

  signals:
    // The operator changed something on the card.
    void edited();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QGridLayout* buildForm();
    void buildOptions(QHBoxLayout* columns, QVBoxLayout* options);
    void connectControls();
    void chooseNature();
    void chooseComposition();
    void dateChanged();
    void showOptions();

    QLineEdit* m_index;
    QLineEdit* m_season;
    QLineEdit* m_type;
    QComboBox* m_natures;
    QLineEdit* m_nature;
    QLineEdit* m_title;
    QComboBox* m_compositions;
    QLineEdit* m_composition;
    QLineEdit* m_date;
    QLineEdit* m_sortKey;
    std::array<QRadioButton*, 2> m_billedKind{};  // Option3: clubs, committees
    QLineEdit* m_billedKindText;
    std::array<QRadioButton*, 2> m_entry{};  // Option4: yes, no
    QLineEdit* m_entryText;
    std::array<QRadioButton*, 2> m_lines{};  // Option5: yes, no
    QLineEdit* m_linesText;
    QLineEdit* m_eliminatoryLines;
    QLineEdit* m_finalLines;
    std::array<QComboBox*, 5> m_codes{};  // cbo_cod1 to cbo_cod5
    CompetitionRecord m_shown;
    bool m_new = false;
};

}  // namespace orve::competitions
