#pragma once

#include <QApplication>

#include "app/Dialogs.h"

namespace orve::app {

// Nothing thrown inside an event handler ends the program: it becomes a
// message and the program goes on.
class OrveApplication : public QApplication {
  public:
    OrveApplication(int& argc, char** argv) : QApplication(argc, argv) {}
    void setDialogs(Dialogs* dialogs) { m_dialogs = dialogs; }
    bool notify(QObject* receiver, QEvent* event) override;

  private:
    Dialogs* m_dialogs = nullptr;
};

}  // namespace orve::app
