#include "app/InstallationSetup.h"

#include <QDir>
#include <QFile>
#include <QPair>

#include "app/Startup.h"
#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreCopy.h"

namespace orve::app {

namespace {
void writeLine(const QString& path, const QString& line) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        throw StoreError(QStringLiteral("Impossible d'écrire le fichier %1 : %2")
                             .arg(QDir::toNativeSeparators(path), f.errorString()));
    f.write((line + '\n').toUtf8());
}
}  // namespace

QPair<QString, QString> financialYearOf(const QDate& day) {
    const int startYear = day.month() >= 9 ? day.year() : day.year() - 1;
    return {QString::number(startYear) + QStringLiteral("0901"),
            QString::number(startYear + 1) + QStringLiteral("0831")};
}

void createInstallation(const QString& dir, const NewInstallation& values, const QDate& today,
                        const QString& base) {
    if (values.code.trimmed().isEmpty() || values.name.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Le code et le nom de l'installation sont obligatoires."));
    QDir root(dir);
    if (root.exists(kBasePathFile))
        throw Refusal(QStringLiteral("Le dossier %1 contient déjà une installation (%2).")
                          .arg(QDir::toNativeSeparators(root.absolutePath()), kBasePathFile));
    if ((base.trimmed().isEmpty() && !root.mkpath(QStringLiteral("donnees"))) ||
        !root.mkpath(QStringLiteral("factures")))
        throw StoreError(QStringLiteral("Impossible de créer les dossiers dans %1.")
                             .arg(QDir::toNativeSeparators(root.absolutePath())));
    std::unique_ptr<store::Store> store;
    if (base.trimmed().isEmpty()) {
        store = store::Store::create(root.filePath(QStringLiteral("donnees")));
    } else {
        // The server's schemas first: a database already in use is refused
        // before any path file points at it.
        store = store::Store::create(store::StoreAddress::parse(base), root.absolutePath());
    }
    // Relative to the program folder, so the installation can be moved whole.
    writeLine(root.filePath(kBasePathFile),
              base.trimmed().isEmpty() ? QStringLiteral("donnees/") : base.trimmed());
    writeLine(root.filePath(kInvoicePathFile), QStringLiteral("factures/"));
    const auto year = financialYearOf(today);
    store::Transaction tx(*store);
    store->exec(QStringLiteral("DELETE FROM strspecif"));
    store->insert(QStringLiteral("strspecif"), {{"spe_cod", values.code},
                                                {"spe_nom", values.name},
                                                {"spe_district", values.district},
                                                {"spe_debut_exe_tri", year.first},
                                                {"spe_fin_exe_tri", year.second}});
    tx.commit();
}

Migration migrateInstallation(const QString& dir, const QString& target) {
    const QString home = QDir(dir).absolutePath();
    auto source = openInstallationStore(home);
    const store::StoreAddress& from = source->address();
    std::unique_ptr<store::Store> copy;
    QString written = target.trimmed();
    if (store::StoreAddress::isServerAddress(written)) {
        const auto address = store::StoreAddress::parse(written);
        if (from.shared() && address.display() == from.display())
            throw Refusal(
                QStringLiteral("L'installation utilise déjà la base %1.").arg(address.display()));
        copy = store::Store::create(address, home);
    } else {
        const QString folder = resolveFolder(home, written);
        if (!from.shared() && QDir(folder) == QDir(from.folder))
            throw Refusal(QStringLiteral("L'installation utilise déjà le dossier %1.")
                              .arg(QDir::toNativeSeparators(folder)));
        if (!QDir(folder).entryList({QStringLiteral("bow_*.db")}, QDir::Files).isEmpty())
            throw Refusal(QStringLiteral("Le dossier %1 contient déjà des fichiers de données : "
                                         "choisissez un dossier vide.")
                              .arg(QDir::toNativeSeparators(folder)));
        copy = store::Store::create(folder);
    }
    const auto report = store::StoreCopy::copy(*source, *copy);
    writeLine(QDir(home).filePath(kBasePathFile), written);
    return {report.tables, report.rows, written};
}

}  // namespace orve::app
