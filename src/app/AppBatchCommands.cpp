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
        QStringLiteral("init DOSSIER --code C --name NOM --district D [--base postgresql://...]");
    const QString dir = requiredArgument(c.positional(), 0, usage);
    createInstallation(dir, {c.option("--code"), c.option("--name"), c.option("--district")},
                       c.clock().today(), c.option("--base"));
    c.out() << "installation créée dans " << QDir(dir).absolutePath() << "\n";
    return 0;
}

int migrate(BatchContext& c) {
    const QString usage = QStringLiteral("migrate DOSSIER --vers postgresql://...|DOSSIER");
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
        QStringLiteral("user add LOGIN --league CODE [--mail ADRESSE] | user passwd LOGIN");
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
    c.out() << "dossier du programme : " << QDir::toNativeSeparators(s.programFolder()) << "\n"
            << "dossier des données : " << QDir::toNativeSeparators(s.dataFolder()) << "\n"
            << "dossier des factures : " << QDir::toNativeSeparators(s.invoiceFolder()) << "\n"
            << "code de l'installation : " << i.code << "\n"
            << "nom de l'installation : " << i.name << "\n"
            << "district de l'installation : " << i.district << "\n"
            << "début de l'exercice : " << i.financialYearStart << "\n"
            << "fin de l'exercice : " << i.financialYearEnd << "\n"
            << "login : " << s.user().login << "\n"
            << "ligue : " << s.user().league << "\n"
            << "mail : " << s.user().mail << "\n";
    return 0;
}

int backup(BatchContext& c) {
    const QString dest = requiredArgument(c.positional(), 0, QStringLiteral("backup DOSSIER"));
    const QStringList copied = backupStore(c.session().store(), dest);
    for (const QString& name : copied)
        c.out() << "copié " << name << " vers " << QDir::toNativeSeparators(dest) << "\n";
    c.out() << kBackupDone << "\n";
    return 0;
}

}  // namespace

void registerAppBatchCommands(BatchRegistry& r) {
    r.add(
        {"init", "init DOSSIER --code C --name NOM --district D [--base postgresql://...]", init});
    r.add({"migrate", "migrate DOSSIER --vers postgresql://...|DOSSIER", migrate});
    r.add({"user",
           "user add LOGIN --league CODE [--mail ADRESSE] | user passwd LOGIN (mot de passe "
           "sur l'entrée standard)",
           user,
           // With --as, the operator needs the rights menu; without, it is the
           // recovery path of whoever holds the installation's files.
           [](const BatchContext& c) {
               return c.asLogin().isEmpty()
                          ? BatchRights{}
                          : BatchRights{QStringLiteral("mnu_fic_parametre_droits"), true};
           }});
    r.add({"signin", "signin LOGIN (mot de passe sur l'entrée standard)", signin});
    r.add({"backup", "backup DOSSIER", backup});
}

}  // namespace orve::app
