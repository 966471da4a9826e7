#include <QDir>

#include "app/Backup.h"
#include "app/BatchCommands.h"
#include "app/InstallationSetup.h"
#include "app/SignIn.h"
#include "app/Users.h"
#include "store/Refusal.h"

namespace orve::app {

namespace {

int init(BatchContext& c) {
    const QString usage =
        QStringLiteral("init DIR --code C --name N --district D [--base postgresql://...]");
    const QString dir = requiredArgument(c.positional(), 0, usage);
    createInstallation(dir, {c.option("--code"), c.option("--name"), c.option("--district")},
                       c.clock().today(), c.option("--base"));
    c.out() << "installation créée dans " << QDir(dir).absolutePath() << "\n";
    return 0;
}

int migrate(BatchContext& c) {
    const QString usage = QStringLiteral("migrate DIR --vers postgresql://...|DOSSIER");
    const QString dir = requiredArgument(c.positional(), 0, usage);
    const QString target = c.option("--vers");
    if (target.isEmpty())
        throw Refusal(QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(usage));
    const Migration m = migrateInstallation(dir, target);
    c.out() << m.tables << " tables, " << m.rows << " lignes copiées et vérifiées\n"
            << "chemin_base.txt désigne maintenant " << m.target << "\n";
    return 0;
}

int user(BatchContext& c) {
    const QString usage =
        QStringLiteral("user add LOGIN --league CODE [--mail ADDR] | user passwd LOGIN");
    const QStringList p = c.positional();
    const QString verb = requiredArgument(p, 0, usage);
    const QString login = requiredArgument(p, 1, usage);
    if (verb == QStringLiteral("add")) {
        const QString league = c.option("--league");
        if (league.isEmpty()) throw Refusal(QStringLiteral("La ligue (--league) est obligatoire."));
        addUser(c.session().store(), login, league, c.option("--mail"), c.readLine());
        c.out() << "utilisateur " << login << " ajouté (ligue " << league << ")\n";
        return 0;
    }
    if (verb == QStringLiteral("passwd")) {
        changePassword(c.session().store(), login, c.readLine());
        c.out() << "mot de passe de " << login << " changé\n";
        return 0;
    }
    throw Refusal(QStringLiteral("Usage : orve-batch %1").arg(usage));
}

int signin(BatchContext& c) {
    const QString login = requiredArgument(c.positional(), 0, QStringLiteral("signin LOGIN"));
    Session& s = c.session();
    if (!signIn(s, login, c.readLine())) throw Refusal(kInvalidLogin);
    const auto& i = s.installation();
    c.out() << "program_folder: " << QDir::toNativeSeparators(s.programFolder()) << "\n"
            << "data_folder: " << QDir::toNativeSeparators(s.dataFolder()) << "\n"
            << "invoice_folder: " << QDir::toNativeSeparators(s.invoiceFolder()) << "\n"
            << "installation_code: " << i.code << "\n"
            << "installation_name: " << i.name << "\n"
            << "installation_district: " << i.district << "\n"
            << "financial_year_start: " << i.financialYearStart << "\n"
            << "financial_year_end: " << i.financialYearEnd << "\n"
            << "login: " << s.user().login << "\n"
            << "league: " << s.user().league << "\n"
            << "mail: " << s.user().mail << "\n";
    return 0;
}

int backup(BatchContext& c) {
    const QString dest = requiredArgument(c.positional(), 0, QStringLiteral("backup DEST"));
    const QStringList copied = backupStore(c.session().store(), dest);
    for (const QString& name : copied)
        c.out() << "copié " << name << " vers " << QDir::toNativeSeparators(dest) << "\n";
    c.out() << kBackupDone << "\n";
    return 0;
}

}  // namespace

void registerAppBatchCommands(BatchRegistry& r) {
    r.add({"init", "init DIR --code C --name N --district D [--base postgresql://...]", init});
    r.add({"migrate", "migrate DIR --vers postgresql://...|DOSSIER", migrate});
    r.add({"user",
           "user add LOGIN --league CODE [--mail ADDR] | user passwd LOGIN (mot de passe "
           "sur l'entrée standard)",
           user});
    r.add({"signin", "signin LOGIN (mot de passe sur l'entrée standard)", signin});
    r.add({"backup", "backup DEST", backup});
}

}  // namespace orve::app
