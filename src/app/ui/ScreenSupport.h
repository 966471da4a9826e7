#pragma once

#include <QComboBox>
#include <QString>
#include <QWidget>
#include <functional>

#include "app/Dialogs.h"
#include "app/ListItems.h"
#include "store/Refusal.h"

namespace orve::app {

// Runs one handler's work; a refusal or an error becomes a message and the
// program goes on. Returns false when something was shown instead.
template <typename F>
bool guarded(Dialogs& dialogs, F&& work) {
    try {
        work();
        return true;
    } catch (const std::exception& e) {
        dialogs.inform(describeError(e));
        return false;
    }
}

// Centres a window on its screen (the caption-and-centre routine of every window).
void centreOnScreen(QWidget* window);

// Makes a widget a top-level, modeless window of the program, named as the window.
void makeScreenWindow(QWidget* screen, const QString& name, const QString& title);

// Fills a drop-down list with "Choisir" and "code # label" items.
void fillItems(QComboBox* combo, const ListItems& items);
// Shows the item of a code, or "Choisir" when the list has none.
void showItem(QComboBox* combo, const QString& code);

}  // namespace orve::app
