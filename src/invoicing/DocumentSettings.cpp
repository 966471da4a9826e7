#include "invoicing/DocumentSettings.h"

#include <QDir>
#include <QImageReader>
#include <QStringList>

#include "app/OperatorRoles.h"
#include "app/Session.h"
#include "store/Settings.h"

namespace orve::invoicing {

Letterhead Letterhead::fromSettings(const QString& iniPath) {
    Letterhead l;
    const store::Settings ini(iniPath);
    l.name = ini.text("federation/nom", l.name);
    l.address = ini.text("federation/adresse");
    l.telephone = ini.text("federation/telephone");
    l.fax = ini.text("federation/fax");
    l.registration = ini.text("federation/siret");
    l.bank = ini.text("federation/banque");
    l.iban = ini.text("federation/iban");
    l.bic = ini.text("federation/bic");
    l.paymentOrder = ini.text("federation/ordre_reglement", l.paymentOrder);
    l.transferNotice = ini.text("federation/avis_virement", l.transferNotice);
    // A logo file named relative to the program folder. One that cannot be
    // found or read is named at start-up; the documents keep the program's own.
    const QString logo = store::settingFile(iniPath, ini.text("federation/logo"));
    if (!logo.isEmpty() && QImageReader(logo).canRead()) l.logo = logo;
    // Set to nothing ("tva=") an installation prints no mention at all.
    l.vatMention = ini.text("mentions/tva", l.vatMention);
    l.latePenalties = ini.text("mentions/penalites");
    l.recoveryFee = ini.text("mentions/indemnite");
    l.printer = ini.text("documents/imprimante");
    l.openPdf = store::settingFlag(ini.text("documents/ouvrir_pdf")).value_or(false);
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

bool DocumentSettings::nationalLetterhead() const { return app::isNationalCode(operatorLeague); }

bool DocumentSettings::committeeOperator() const {
    return app::isCommitteeCode(operatorLogin) || app::isCommitteeCode(operatorLeague);
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
