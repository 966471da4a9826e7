#include "app/Dialogs.h"

namespace orve::app {

void ScriptedDialogs::record(Kind kind, const QString& text) {
    m_shown.push_back(text);
    m_history.emplace_back(kind, text);
}

void ScriptedDialogs::inform(const QString& text) { record(Kind::Information, text); }
void ScriptedDialogs::warn(const QString& text) { record(Kind::Warning, text); }
void ScriptedDialogs::fail(const QString& text) { record(Kind::Error, text); }

bool ScriptedDialogs::ask(const QString& text) {
    record(Kind::Question, text);
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
