#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <map>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::app {

// The windows the menu can open, by window name. A menu entry whose window is
// not in the catalog stays greyed.
class ScreenCatalog {
  public:
    using Factory = std::function<QWidget*(Session&, Dialogs&, QWidget* parent)>;
    void add(const QString& name, Factory factory) { m_factories[name] = std::move(factory); }
    bool has(const QString& name) const { return m_factories.count(name) > 0; }
    QWidget* create(const QString& name, Session& s, Dialogs& d, QWidget* parent) const {
        return m_factories.at(name)(s, d, parent);
    }

  private:
    std::map<QString, Factory> m_factories;
};

// Every subsystem adds its windows here.
void registerAllScreens(ScreenCatalog& catalog);

}  // namespace orve::app
