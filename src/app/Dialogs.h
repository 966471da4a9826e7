#pragma once

#include <QString>
#include <QStringList>
#include <deque>

namespace orve::app {

// Every message and question the operator sees goes through here, so a test
// can read them and answer them.
class Dialogs {
  public:
    virtual ~Dialogs() = default;
    virtual void inform(const QString& text) = 0;
    virtual bool ask(const QString& text) = 0;  // yes / no
    // Empty when the operator cancels.
    virtual QString chooseFolder(const QString& title, const QString& start) = 0;
    virtual QString chooseOpenFile(const QString& title, const QString& start,
                                   const QString& filter) = 0;
    virtual QString chooseSaveFile(const QString& title, const QString& start,
                                   const QString& filter) = 0;
    // A password typed without being shown; empty when the operator cancels.
    virtual QString askPassword(const QString& question) = 0;
};

// Records what is shown and answers from queues; a question or a file choice
// with nothing queued is a failure of the test, reported by `failure()`.
class ScriptedDialogs : public Dialogs {
  public:
    void inform(const QString& text) override;
    bool ask(const QString& text) override;
    QString chooseFolder(const QString& title, const QString& start) override;
    QString chooseOpenFile(const QString& title, const QString& start,
                           const QString& filter) override;
    QString chooseSaveFile(const QString& title, const QString& start,
                           const QString& filter) override;
    // Answered from the same queue as file choices.
    QString askPassword(const QString& question) override;

    void queueAnswer(bool yes) { m_answers.push_back(yes); }
    void queueChoice(const QString& path) { m_choices.push_back(path); }
    // Texts shown and not yet taken, oldest first.
    std::deque<QString>& shown() { return m_shown; }
    QString takeShown();
    const QString& failure() const { return m_failure; }
    void clearFailure() { m_failure.clear(); }
    bool answersPending() const { return !m_answers.empty(); }

  private:
    QString takeChoice(const QString& title);
    std::deque<QString> m_shown;
    std::deque<bool> m_answers;
    std::deque<QString> m_choices;
    QString m_failure;
};

}  // namespace orve::app
