#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QWidget>
#include <string>

#include "app/Dialogs.h"

// Driving a window as an operator would, for the screen tests.
namespace orve::test {

// A control by its object name; a missing one fails the test.
template <typename T>
T* child(QWidget* w, const char* name) {
    T* c = w->findChild<T*>(QString::fromLatin1(name));
    if (!c) ADD_FAILURE() << "no control " << name;
    return c;
}

inline void click(QWidget* w, const char* name) { child<QAbstractButton>(w, name)->click(); }

// The first item beginning with the text, chosen as by the mouse.
inline void pickItem(QComboBox* combo, const QString& startsWith) {
    const int i = combo->findText(startsWith, Qt::MatchStartsWith);
    ASSERT_GE(i, 0) << startsWith.toStdString();
    combo->setCurrentIndex(i);
    emit combo->activated(i);
}

// Typed into a box, then left.
inline void type(QLineEdit* box, const QString& text) {
    box->setText(text);
    emit box->textEdited(text);
    emit box->editingFinished();
}

// The next message shown, or "(no message)".
inline std::string next(app::ScriptedDialogs& dialogs) {
    return dialogs.shown().empty() ? std::string("(no message)")
                                   : dialogs.takeShown().toStdString();
}

}  // namespace orve::test
