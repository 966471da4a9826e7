#pragma once

#include <QString>

// How invoices leave by e-mail: the SMTP server of orve.ini [mail], or, when
// none is set, the outbox folder envois/ of the installation, whose .eml files
// the clerk sends from his own mail program.
namespace orve::invoicing {

enum class MailSecurity { StartTls, Tls, None };

struct MailSettings {
    QString server;  // serveur; empty: the outbox
    int port = 0;    // port; 0: the usual port of the security chosen
    MailSecurity security = MailSecurity::StartTls;  // securite: starttls, tls, aucune
    QString user;                                    // utilisateur; empty: no login
    QString sender;                                  // expediteur: the From address
    QString password;                                // mot_de_passe; empty: asked
    int timeoutSeconds = 60;                         // delai: a silent server is given up

    // Reads group [mail] of an orve.ini; a missing file or group gives the outbox.
    // An unknown securite is refused (Refusal) rather than sent in clear.
    static MailSettings fromIni(const QString& iniPath);

    bool usesServer() const { return !server.trimmed().isEmpty(); }
    // The port actually used: 465 for implicit TLS, 587 for STARTTLS, 25 in clear.
    int effectivePort() const;
    // "smtp://host:587" or "smtps://host:465".
    QString url() const;
    // "smtp.example.org:587 (STARTTLS)".
    QString serverText() const;
    // A login is set but its password is not in orve.ini: it is asked.
    bool needsPassword() const { return usesServer() && !user.isEmpty() && password.isEmpty(); }
    // Refusal when the server is set without a plausible sender.
    void checkSendable() const;
};

// The outbox of an installation: PROGRAM_FOLDER/envois.
QString outboxFolder(const QString& programFolder);

// What Label35 says: which server and sender will be used, or the outbox.
QString mailRouteText(const MailSettings& settings, const QString& outbox);

}  // namespace orve::invoicing
