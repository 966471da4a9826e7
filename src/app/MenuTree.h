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

// Entries only the national level may use: the season set-up, the invoice
// renumbering and the one-off maintenance tools change every level's data.
bool isNationalEntry(const QString& name);

// Whether an entry is usable: nothing but "&Quitter" before sign-in; after it
// everything, less the administrator entries for any other login (compared
// exactly, so "Gestu" is not "gestu") and the national entries for any other
// level. An entry under a submenu the user may not open is not usable either.
bool entryAllowed(const QString& name, bool signedIn, const QString& login, bool national);

// The entry that opens `screen` in `mode` ("ORVE_facture_creation", "LI"), or "".
QString entryOfMode(const QString& screen, const QString& mode);
// An entry's caption as the operator reads it ("les Compétitions"), or the name.
QString entryCaption(const QString& name);

}  // namespace orve::app
