#include "invoicing/DocumentSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>

#include "app/Session.h"

namespace orve::invoicing {

Letterhead Letterhead::fromSettings(const QString& iniPath) {
    Letterhead l;
    QSettings ini(iniPath, QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("federation"));
    l.name = ini.value("nom", l.name).toString();
    l.address = ini.value("adresse").toString();
    l.telephone = ini.value("telephone").toString();
    l.fax = ini.value("fax").toString();
    l.registration = ini.value("siret").toString();
    l.bank = ini.value("banque").toString();
    l.iban = ini.value("iban").toString();
    l.bic = ini.value("bic").toString();
    l.paymentOrder = ini.value("ordre_reglement", l.paymentOrder).toString().trimmed();
    l.transferNotice = ini.value("avis_virement", l.transferNotice).toString().trimmed();
    // A logo file named relative to the program folder.
    const QString logo = ini.value("logo").toString().trimmed();
    if (!logo.isEmpty())
        l.logo = logo.startsWith(QChar(':'))
                     ? logo
                     : QDir(QFileInfo(iniPath).absolutePath())
                           .absoluteFilePath(QDir::fromNativeSeparators(logo));
    ini.endGroup();
    // Set to nothing ("tva=") an installation prints no mention at all.
    ini.beginGroup(QStringLiteral("mentions"));
    l.vatMention = ini.value("tva", l.vatMention).toString().trimmed();
    l.latePenalties = ini.value("penalites").toString().trimmed();
    l.recoveryFee = ini.value("indemnite").toString().trimmed();
    ini.endGroup();
    ini.beginGroup(QStringLiteral("documents"));
    l.printer = ini.value("imprimante").toString().trimmed();
    l.openPdf = ini.value("ouvrir_pdf", false).toBool();
    ini.endGroup();
    return l;
}

QString Letterhead::footerLine() const {
    QStringList parts;
    if (!address.trimmed().isEmpty()) parts << address.trimmed();
    if (!telephone.trimmed().isEmpty()) parts << QStringLiteral("Tél. : ") + telephone.trimmed();
    if (!fax.trimmed().isEmpty()) parts << QStringLiteral("Fax : ") + fax.trimmed();
    if (!registration.trimmed().isEmpty()) parts << registration.trimmed();
    return parts.join(QStringLiteral(" - "));
}

QStringList Letterhead::issuerLines() const {
    QStringList lines;
    if (!address.trimmed().isEmpty()) lines << address.trimmed();
    if (!telephone.trimmed().isEmpty()) lines << QStringLiteral("Tél. : ") + telephone.trimmed();
    return lines;
}

bool DocumentSettings::committeeOperator() const {
    return operatorLogin.startsWith(QStringLiteral("CD"), Qt::CaseInsensitive) ||
           operatorLeague.startsWith(QStringLiteral("CD"), Qt::CaseInsensitive);
}

DocumentSettings documentSettings(const app::Session& session) {
    DocumentSettings s;
    s.invoiceFolder = session.invoiceFolder();
    s.letterhead = Letterhead::fromSettings(session.settingsPath());
    s.operatorLogin = session.user().login;
    s.operatorLeague = session.user().league;
    return s;
}

}  // namespace orve::invoicing
