#pragma once

#include <QMessageBox>
#include <QWidget>

#include "app/Dialogs.h"

namespace orve::app {

// Message boxes with French buttons, over the active window; each kind of
// message has its icon: information, warning for a refusal, critical for a
// failure, question for a question.
class QtDialogs : public Dialogs {
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
    QString askPassword(const QString& question) override;

    // The box each kind of message is shown in, not yet shown (tests read it).
    static void prepare(QMessageBox& box, Kind kind, const QString& text);
};

}  // namespace orve::app
