#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QString>
#include <QWidget>
#include <functional>

#include "app/Dialogs.h"
#include "app/ListItems.h"
#include "store/Refusal.h"

class QScrollArea;
class QStatusBar;

namespace orve::app {

// Runs one handler's work; a refusal becomes a warning, an error a failure
// message, and the program goes on. Returns false when something was shown instead.
template <typename F>
bool guarded(Dialogs& dialogs, F&& work) {
    try {
        work();
        return true;
    } catch (const Refusal& r) {
        dialogs.warn(r.message());
        return false;
    } catch (const std::exception& e) {
        dialogs.fail(describeError(e));
        return false;
    }
}

// Centres a window on its screen (the caption-and-centre routine of every window).
void centreOnScreen(QWidget* window);

// Sizes a window to fit the available area of its screen (the screen less its
// task bars), frame and title bar included, and centres it there. A window
// whose content cannot shrink that far gets its content in a scroll area,
// its last row of buttons kept below it, in view. Every window the menu opens
// goes through here before it is shown.
void fitOnScreen(QWidget* window);
// After a window is shown, when the system has told its real frame: moves it
// back inside the available area if its frame runs over.
void keepOnScreen(QWidget* window);
// Puts the window's content in a scroll area; a last row made of buttons only
// stays below it. Returns the scroll area (the existing one when done before).
QScrollArea* scrollContent(QWidget* window);
// A scroll area that asks for the whole size of its content, and shrinks to a
// few lines when the room is short.
QScrollArea* newScrollArea(QWidget* content, QWidget* parent);

// Makes a widget a top-level, modeless window of the program, named as the window.
void makeScreenWindow(QWidget* screen, const QString& name, const QString& title);

// The status line at the foot of the window holding `anywhere`, made when the
// window has none yet (a window whose layout is not a column gets none).
QStatusBar* statusBarOf(QWidget* anywhere);
// A passing message in that status line.
void showStatus(QWidget* anywhere, const QString& text);
// "Fiche enregistrée : KEY" in that status line, after a card is written.
inline const QString kRecordSaved = QStringLiteral("Fiche enregistrée");
void tellSaved(QWidget* anywhere, const QString& key);

// A box the operator may not change (a key shown on a card): read-only, and
// drawn on the window's colour so that it looks it. `locked` false gives the
// box back to typing.
void setLocked(QLineEdit* box, bool locked);

// Whether the window holding `anywhere` has a card being typed into and not
// yet written. Closing such a window, or quitting the program, asks first.
void setEditing(QWidget* anywhere, bool editing);
bool isEditing(const QWidget* window);
// Calls `typed` whenever the operator types into a box of `area`, ticks one
// of its options or picks in one of its lists (not when the program fills them).
void watchTyping(QWidget* area, const std::function<void()>& typed);
inline const QString kCloseWhileEditing = QStringLiteral(
    "La fiche en cours de saisie n'est pas enregistrée. Fermer la fenêtre sans l'enregistrer ?");
// Asks `kCloseWhileEditing` when the window is closed while editing, and
// keeps it open on "Non".
void askBeforeClosing(QWidget* window, Dialogs& dialogs);

// Fills a drop-down list with "Choisir" and "code # label" items.
void fillItems(QComboBox* combo, const ListItems& items);

// The season chooser `cbo_saison`: from the first season to the one after the
// working season, preset to the working season.
QComboBox* newSeasonChooser(int workingSeason, QWidget* parent);
// Shows the item of a code, or "Choisir" when the list has none.
void showItem(QComboBox* combo, const QString& code);

}  // namespace orve::app
