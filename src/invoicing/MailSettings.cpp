#include "invoicing/MailSettings.h"

#include <QDir>

#include "invoicing/MailMessage.h"
#include "store/Refusal.h"
#include "store/Settings.h"

namespace orve::invoicing {

MailSettings MailSettings::fromIni(const QString& iniPath) {
    MailSettings m;
    const store::Settings ini(iniPath);
    // A port or a delay that cannot be read is not guessed: the mail would
    // go to the wrong place or be given up at once.
    const auto number = [&](const QString& key, int low, int high) {
        const QString text = ini.text(key);
        if (text.isEmpty()) return 0;
        bool ok = false;
        const int n = text.toInt(&ok);
        if (!ok || n < low || n > high)
            throw Refusal(store::settingName(key, text) +
                          QStringLiteral("attendu un nombre de %1 à %2.").arg(low).arg(high));
        return n;
    };
    m.server = ini.text("mail/serveur");
    m.port = number(QStringLiteral("mail/port"), 1, 65535);
    const QString security = ini.text("mail/securite").toLower();
    if (security.isEmpty() || security == QStringLiteral("starttls"))
        m.security = MailSecurity::StartTls;
    else if (security == QStringLiteral("tls"))
        m.security = MailSecurity::Tls;
    else if (security == QStringLiteral("aucune"))
        m.security = MailSecurity::None;
    else
        throw Refusal(store::settingName(QStringLiteral("mail/securite"), security) +
                      QStringLiteral("valeur inconnue (starttls, tls ou aucune)."));
    m.user = ini.text("mail/utilisateur");
    m.sender = ini.text("mail/expediteur");
    m.password = ini.value("mail/mot_de_passe").toString();
    if (const int timeout = number(QStringLiteral("mail/delai"), 1, 24 * 3600); timeout > 0)
        m.timeoutSeconds = timeout;
    return m;
}

int MailSettings::effectivePort() const {
    if (port > 0) return port;
    switch (security) {
        case MailSecurity::Tls:
            return 465;
        case MailSecurity::StartTls:
            return 587;
        case MailSecurity::None:
            return 25;
    }
    return 25;
}

QString MailSettings::url() const {
    return QStringLiteral("%1://%2:%3")
        .arg(security == MailSecurity::Tls ? QStringLiteral("smtps") : QStringLiteral("smtp"),
             server.trimmed())
        .arg(effectivePort());
}

QString MailSettings::serverText() const {
    const QString how = security == MailSecurity::Tls        ? QStringLiteral("TLS")
                        : security == MailSecurity::StartTls ? QStringLiteral("STARTTLS")
                                                             : QStringLiteral("sans chiffrement");
    return QStringLiteral("%1:%2 (%3)").arg(server.trimmed()).arg(effectivePort()).arg(how);
}

void MailSettings::checkSendable() const {
    if (!usesServer()) return;
    if (sender.isEmpty())
        throw Refusal(QStringLiteral("Aucune adresse d'expédition : indiquez expediteur dans "
                                     "orve.ini [mail] pour envoyer par le serveur %1.")
                          .arg(serverText()));
    if (!plausibleAddress(sender))
        throw Refusal(QStringLiteral("adresse mail invalide : %1 (expediteur de orve.ini [mail])")
                          .arg(sender));
}

QString outboxFolder(const QString& programFolder) {
    return QDir(programFolder).filePath(QStringLiteral("envois"));
}

QString mailRouteText(const MailSettings& settings, const QString& outbox) {
    if (!settings.usesServer())
        return QStringLiteral(
                   "Aucun serveur de mail n'est configuré (orve.ini [mail]) : les mails "
                   "seront déposés dans le dossier %1, à envoyer depuis votre "
                   "messagerie.")
            .arg(QDir::toNativeSeparators(outbox));
    const QString sender =
        settings.sender.isEmpty()
            ? QStringLiteral("aucun expéditeur (indiquez expediteur dans orve.ini [mail])")
            : QStringLiteral("expéditeur %1").arg(settings.sender);
    const QString login =
        settings.user.isEmpty() ? QString() : QStringLiteral(", compte %1").arg(settings.user);
    return QStringLiteral("Les mails partiront du serveur %1%2, %3.")
        .arg(settings.serverText(), login, sender);
}

}  // namespace orve::invoicing
