#pragma once

#include <QString>
#include <memory>

#include "app/Session.h"

namespace orve::app {

inline const QString kBasePathFile = QStringLiteral("chemin_base.txt");
inline const QString kInvoicePathFile = QStringLiteral("chemin_facture.txt");
inline const QString kTitlePrefix =
    QStringLiteral("ORVE : Logiciel de facturation Bowling -----  Avec ORVE, plus de soucis  ---");

// The program folder: --home DIR, else ORVE_HOME, else the executable's folder.
QString resolveProgramFolder(const QString& homeOption, const QString& executableFolder);

// Joins a folder written in a path file to the program folder: "\" or "/",
// with or without a trailing separator, absolute or relative to the program folder.
QString resolveFolder(const QString& programFolder, const QString& written);

// First line of a path file, trimmed. Refuses, naming the file and what to do,
// when it is missing, unreadable or empty.
QString readPathFile(const QString& programFolder, const QString& fileName);

// What chemin_base.txt names: a data folder, or a PostgreSQL database.
store::StoreAddress readStoreAddress(const QString& programFolder);

// Opens the store chemin_base.txt names. A shared store keeps this
// workstation's scratch file in the program folder; a data folder keeps it.
std::unique_ptr<store::Store> openInstallationStore(const QString& programFolder,
                                                    const store::PasswordPrompt& askPassword = {});
std::unique_ptr<store::Store> openInstallationStore(const QString& programFolder,
                                                    const store::StoreAddress& address,
                                                    const store::PasswordPrompt& askPassword);

// The whole start-up: path files, data store, installation record. The
// prompt is asked for a server password no password file holds.
std::unique_ptr<Session> startSession(const QString& programFolder, const Clock& clock,
                                      const store::PasswordPrompt& askPassword = {});

QString windowTitle(const Installation& installation);
// "Base partagée : HOST/DATABASE" for a shared store; empty for a data folder.
QString storeCaption(const store::StoreAddress& address);

}  // namespace orve::app
