#pragma once

#include <QString>
#include <vector>

namespace orve::app {

// One entry of the main window's menu bar, in menu order. Level 0 is a top
// menu; an entry with children is a submenu. `screen` names the window it
// opens, `mode` the screen mode it sets first.
struct MenuEntry {
    QString name;
    QString caption;
    int level = 0;
    QString screen;
    QString mode;
    bool shown = true;
};

const std::vector<MenuEntry>& menuTree();

// What an entry says when its window is not built yet.
inline const QString kNotYetAvailable =
    QStringLiteral("Cette fonction n'est pas encore disponible");

// Entries only the administrator "gestu" may use.
bool isAdministratorEntry(const QString& name);

// Whether an entry is usable: nothing but "&Quitter" before sign-in; after it
// everything, less the administrator entries for any other login (compared
// exactly, so "Gestu" is not "gestu").
bool entryAllowed(const QString& name, bool signedIn, const QString& login);

}  // namespace orve::app
