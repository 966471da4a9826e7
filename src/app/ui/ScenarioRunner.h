#pragma once

#include <QString>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::app {

// Drives the running program from a plain-text scenario, one statement a line,
// as an operator would: typing, clicking, choosing rows, answering questions,
// and checking what the windows and the data files show.
class ScenarioRunner {
  public:
    ScenarioRunner(ScriptedDialogs& dialogs, Session* session);
    // Empty when every statement passed; otherwise "line N: text: reason".
    QString run(const QString& script);

  private:
    QString runStatement(const QString& line);
    ScriptedDialogs& m_dialogs;
    Session* m_session;
};

// Splits a statement into words; "double quotes" keep blanks, \" and \\ escape.
QStringList scenarioWords(const QString& line);

}  // namespace orve::app
