#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <map>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace orve::app {

// The windows the menu can open, by window name. A menu entry whose window is
// not in the catalog says, when chosen, that it is not available yet.
class ScreenCatalog {
  public:
    // The mode (LIC, DIV, a statistics mode "1".."4", or empty) is what the
    // menu entry asks of the window; the window keeps it for its whole life.
    using Factory =
        std::function<QWidget*(Session&, Dialogs&, const QString& mode, QWidget* parent)>;
    void add(const QString& name, Factory factory) { m_factories[name] = std::move(factory); }
    bool has(const QString& name) const { return m_factories.count(name) > 0; }
    // Every window's name, in alphabetical order.
    QStringList names() const {
        QStringList out;
        for (const auto& [name, factory] : m_factories) out << name;
        return out;
    }
    QWidget* create(const QString& name, Session& s, Dialogs& d, const QString& mode,
                    QWidget* parent) const {
        return m_factories.at(name)(s, d, mode, parent);
    }

  private:
    std::map<QString, Factory> m_factories;
};

}  // namespace orve::app
