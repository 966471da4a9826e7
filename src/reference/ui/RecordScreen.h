#pragma once

#include <QDataWidgetMapper>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>
#include <initializer_list>
#include <vector>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "reference/ReferenceCodes.h"
#include "reference/Visibility.h"

namespace orve::reference {

// The record pattern every reference window follows: a grid of the table, a
// card (`Frame1`) hidden until a row is chosen, `CmdValide` writes the card and
// then does what `CmdAnnule` does: hide the card and show the stored data again;
// the status line then says "Fiche enregistrée : KEY". The card's boxes scroll
// when the screen is short, its buttons stay in view; closing the window with
// a card being typed into asks first.
// The card shows the chosen row of the grid's own model, so choosing a row
// reads nothing more; writing goes through the window's rule.
// A window adds its columns, its card boxes and its one rule per handler.
class RecordScreen : public QWidget {
    Q_OBJECT
  public:
    RecordScreen(app::Session& session, app::Dialogs& dialogs, QWidget* parent, const QString& name,
                 const QString& title, const QString& cardTitle,
                 const QString& validateName = QStringLiteral("CmdValide"),
                 const QString& cancelName = QStringLiteral("CmdAnnule"));

    // The pattern's three moves, also used by the subclasses.
    void chooseRow(int row);
    void validate();
    void cancel();

  protected:
    app::DataGrid* grid() const { return m_grid; }
    QGroupBox* card() const { return m_card; }
    QVBoxLayout* mainLayout() const { return m_main; }
    QHBoxLayout* buttonRow() const { return m_buttons; }
    app::Session& session() const { return m_session; }
    app::Dialogs& dialogs() const { return m_dialogs; }
    store::Store& store() const { return m_session.store(); }
    Viewer viewer() const { return Viewer::of(m_session); }
    // The key of the record on the card (the grid's first column), empty when adding.
    const QString& key() const { return m_key; }
    bool adding() const { return m_adding; }
    // An empty card for a new record: no row of the grid stays chosen.
    void startAdding();
    // The key a new record got, for the status line.
    void setSavedKey(const QString& key) { m_savedKey = key; }

    // Puts a caption above the grid.
    void setGridCaption(const QString& caption);
    // A text box named as the control.
    QLineEdit* textBox(const QString& name, int width = 0);
    // A box that shows its column of the chosen row and is read back into the
    // card that is written.
    QLineEdit* boundBox(const QString& name, const QString& column, int width = 0);
    // A box that shows its column of the chosen row; the window reads it itself.
    QLineEdit* shows(QLineEdit* box, const QString& column);
    // A box the operator never types into (a name looked up, a key): locked.
    QLineEdit* readOnlyBox(const QString& name, int width = 0);
    // One line of the card: a label and its controls, in the given card column
    // (0 or 1) so that long cards fit in two halves.
    void addRow(const QString& label, std::initializer_list<QWidget*> controls, int column = 0);
    // Two (or more) radio buttons named name_0, name_1..., side by side.
    std::vector<QRadioButton*> optionGroup(const QString& name, const QStringList& captions,
                                           QWidget* container);
    QPushButton* button(const QString& name, const QString& caption);

    // Puts every box back at the start of its text.
    void showStarts();
    Card readBound() const;
    void clearBound();

    // What each window does.
    // The rows of the grid: the rule's listing, filtered and ordered in SQL.
    virtual store::Query listing() = 0;
    // What the boxes bound to columns do not show: options, lists, captions.
    virtual void showRecord(const store::Row& record) = 0;
    virtual void saveRecord() = 0;
    // Called after the card is hidden and the grid reloaded.
    virtual void afterCancel() {}

    // Binds the card to the grid's rows, builds the buttons row of the card
    // and fills the grid; last step of a subclass constructor.
    void start();
    // Runs a handler; a refusal or an error becomes a message. False when shown.
    template <typename F>
    bool run(F&& work) {
        return app::guarded(m_dialogs, std::forward<F>(work));
    }

  private:
    // The listing the first time, then read again as far as it had been read.
    void showListing();
    // The operator typed into the card, or cleared it.
    void setCardEdited(bool edited);

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    app::DataGrid* m_grid;
    QDataWidgetMapper* m_mapper;
    QLabel* m_gridCaption = nullptr;
    QGroupBox* m_card;
    QWidget* m_formArea;
    QGridLayout* m_form;
    QVBoxLayout* m_main;
    QHBoxLayout* m_buttons;
    QPushButton* m_validate;
    QPushButton* m_cancel;
    int m_nextRow[2] = {0, 0};
    std::vector<std::pair<QLineEdit*, QString>> m_bound;  // read back into the card
    std::vector<std::pair<QLineEdit*, QString>> m_shown;  // filled from the chosen row
    std::vector<QWidget*> m_extraButtons;
    QString m_key;
    QString m_savedKey;
    bool m_adding = false;
};

}  // namespace orve::reference
