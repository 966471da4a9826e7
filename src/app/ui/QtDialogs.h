#pragma once

#include <QWidget>

#include "app/Dialogs.h"

namespace orve::app {

// Message boxes with French buttons, over the active window.
class QtDialogs : public Dialogs {
  public:
    void inform(const QString& text) override;
    bool ask(const QString& text) override;
    QString chooseFolder(const QString& title, const QString& start) override;
    QString chooseOpenFile(const QString& title, const QString& start,
                           const QString& filter) override;
    QString chooseSaveFile(const QString& title, const QString& start,
                           const QString& filter) override;
    QString askPassword(const QString& question) override;
};

}  // namespace orve::app
