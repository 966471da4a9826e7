#pragma once

#include <QDate>
#include <QWidget>
#include <array>

#include "app/Dialogs.h"
#include "invoicing/SelectionFilter.h"

class QComboBox;
class QLineEdit;
class QRadioButton;

namespace orve::invoicing {

// The filter panel of the invoice, journal, transfer and statistics screens.
// A screen fills it once with load(), listens to filterChanged(), and asks
// condition() for the bound condition on strcompetition. Column heads of the
// screen's grid go to sortBy().
class SelectionPanel : public QWidget {
    Q_OBJECT
  public:
    explicit SelectionPanel(app::Dialogs& dialogs, QWidget* parent = nullptr);

    // Fills every list for a screen mode ("LIC", "DIV", "COMPET", ...) and
    // puts the controls back to their starting values. Throws StoreError.
    void load(const store::Store& store, const QString& mode, int workingSeason);

    SelectionState state() const;
    // Throws Refusal for a month that is not one.
    SelectionCondition condition() const;

    // A column head clicked: sorts by it, flipping ASC/DESC on the same column.
    void sortBy(const QString& field);

  signals:
    // Any filter changed, or Option1 was clicked: the screen lists again.
    void filterChanged();

  private:
    void changed();
    void leagueChanged();

    app::Dialogs& m_dialogs;
    const store::Store* m_store = nullptr;
    std::array<QComboBox*, 10> m_combos{};  // Combo1..Combo10
    QLineEdit* m_name = nullptr;            // txtnom_organisateur
    QLineEdit* m_month = nullptr;           // mskmois
    QLineEdit* m_invoice = nullptr;         // txtnofac
    QLineEdit* m_competition = nullptr;     // txtcnum
    QRadioButton* m_rerun = nullptr;        // Option1
    QString m_sortField;
    bool m_sortDescending = false;
    bool m_filling = false;
};

}  // namespace orve::invoicing
