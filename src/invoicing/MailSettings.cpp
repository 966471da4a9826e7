#include "invoicing/MailSettings.h"

#include <QDir>
#include <QSettings>

#include "invoicing/MailMessage.h"
#include "store/Refusal.h"

namespace orve::invoicing {

MailSettings MailSettings::fromIni(const QString& iniPath) {
    MailSettings m;
    QSettings ini(iniPath, QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("mail"));
    m.server = ini.value("serveur").toString().trimmed();
    m.port = ini.value("port").toString().trimmed().toInt();
    const QString security = ini.value("securite").toString().trimmed().toLower();
    if (security.isEmpty() || security == QStringLiteral("starttls"))
        m.security = MailSecurity::StartTls;
    else if (security == QStringLiteral("tls"))
        m.security = MailSecurity::Tls;
    else if (security == QStringLiteral("aucune"))
        m.security = MailSecurity::None;
    else
        throw Refusal(QStringLiteral("orve.ini [mail] securite = %1 : valeur inconnue (starttls, "
                                     "tls ou aucune).")
                          .arg(security));
    m.user = ini.value("utilisateur").toString().trimmed();
    m.sender = ini.value("expediteur").toString().trimmed();
    m.password = ini.value("mot_de_passe").toString();
    bool ok = false;
    const int timeout = ini.value("delai").toString().trimmed().toInt(&ok);
    if (ok && timeout > 0) m.timeoutSeconds = timeout;
    ini.endGroup();
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
