#include "app/Dialogs.h"

namespace orve::app {

void ScriptedDialogs::inform(const QString& text) { m_shown.push_back(text); }

bool ScriptedDialogs::ask(const QString& text) {
    m_shown.push_back(text);
    if (m_answers.empty()) {
        if (m_failure.isEmpty()) m_failure = QStringLiteral("unexpected question: ") + text;
        return false;
    }
    const bool yes = m_answers.front();
    m_answers.pop_front();
    return yes;
}

QString ScriptedDialogs::takeChoice(const QString& title) {
    if (m_choices.empty()) {
        if (m_failure.isEmpty()) m_failure = QStringLiteral("unexpected file choice: ") + title;
        return {};
    }
    const QString c = m_choices.front();
    m_choices.pop_front();
    return c;
}

QString ScriptedDialogs::chooseFolder(const QString& title, const QString&) {
    return takeChoice(title);
}
QString ScriptedDialogs::chooseOpenFile(const QString& title, const QString&, const QString&) {
    return takeChoice(title);
}
QString ScriptedDialogs::chooseSaveFile(const QString& title, const QString&, const QString&) {
    return takeChoice(title);
}

QString ScriptedDialogs::askPassword(const QString& question) { return takeChoice(question); }

QString ScriptedDialogs::takeShown() {
    if (m_shown.empty()) return {};
    const QString t = m_shown.front();
    m_shown.pop_front();
    return t;
}

}  // namespace orve::app
