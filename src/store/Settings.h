#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>
#include <optional>

// orve.ini, the installation's settings file, read and written the way a clerk
// types it in a text editor: `[group]` headers, `key=value` lines whose value
// is plain text (everything after the first "=", blanks around it trimmed:
// commas, quotes, semicolons and a leading "#" are part of it), whole lines
// beginning with ";" or "#" are comments. UTF-8, or Windows-1252 for a file a
// Windows editor saved. Group and key names are read in lower case. Qt's own
// INI format would read "12, rue des Quilles" as a list and give nothing back.
//
// Every reader and writer of orve.ini goes through Settings:
//
//     const store::Settings ini(session.settingsPath());
//     const QString address = ini.text("federation/adresse");
namespace orve::store {

// The QSettings format registered for orve.ini.
QSettings::Format iniFormat();

class Settings : public QSettings {
  public:
    explicit Settings(const QString& path);
    // The value of "group/key" as typed, blanks around it trimmed;
    // `fallback` when the key is not in the file.
    QString text(const QString& key, const QString& fallback = {}) const;
};

// What is wrong in an orve.ini, one French sentence per value that cannot be
// used (a port that is not a number, an unknown securite, a missing logo…);
// empty when all is well or when there is no orve.ini.
QStringList settingsProblems(const QString& path);

// "orve.ini [mail] port = « 25a » : " — how a message names a setting.
QString settingName(const QString& key, const QString& value);

// Reading a yes/no setting: true/oui/1, false/non/0 (any case); nothing for
// anything else.
std::optional<bool> settingFlag(const QString& value);

// A file named by a setting: relative to the folder of orve.ini, "/" or "\";
// a Qt resource (":/…") as it is.
QString settingFile(const QString& iniPath, const QString& value);

}  // namespace orve::store
