#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <utility>
#include <vector>

namespace orve::app {

// Every message and question the operator sees goes through here, so a test
// can read them and answer them.
class Dialogs {
  public:
    // What a message is to the operator, shown by its icon.
    enum class Kind { Information, Warning, Error, Question };

    virtual ~Dialogs() = default;
    virtual void inform(const QString& text) = 0;
    // The system's own "no" (a refusal, a check that failed): nothing was done.
    virtual void warn(const QString& text) { inform(text); }
    // A failure of the data or of a file: the operation did not happen.
    virtual void fail(const QString& text) { warn(text); }
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
    void warn(const QString& text) override;
    void fail(const QString& text) override;
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
    // Every text shown or asked so far with its kind, oldest first; taking a
    // text from shown() leaves it here.
    const std::vector<std::pair<Kind, QString>>& history() const { return m_history; }
    const QString& failure() const { return m_failure; }
    void clearFailure() { m_failure.clear(); }
    bool answersPending() const { return !m_answers.empty(); }

  private:
    QString takeChoice(const QString& title);
    void record(Kind kind, const QString& text);
    std::deque<QString> m_shown;
    std::vector<std::pair<Kind, QString>> m_history;
    std::deque<bool> m_answers;
    std::deque<QString> m_choices;
    QString m_failure;
};

}  // namespace orve::app
