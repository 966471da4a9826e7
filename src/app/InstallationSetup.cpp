#include "app/InstallationSetup.h"

#include <QDir>
#include <QFile>
#include <QPair>

#include "app/Startup.h"
#include "store/Refusal.h"
#include "store/Store.h"

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

void createInstallation(const QString& dir, const NewInstallation& values, const QDate& today) {
    if (values.code.trimmed().isEmpty() || values.name.trimmed().isEmpty())
        throw Refusal(QStringLiteral("Le code et le nom de l'installation sont obligatoires."));
    QDir root(dir);
    if (root.exists(kBasePathFile))
        throw Refusal(QStringLiteral("Le dossier %1 contient déjà une installation (%2).")
                          .arg(QDir::toNativeSeparators(root.absolutePath()), kBasePathFile));
    if (!root.mkpath(QStringLiteral("donnees")) || !root.mkpath(QStringLiteral("factures")))
        throw StoreError(QStringLiteral("Impossible de créer les dossiers dans %1.")
                             .arg(QDir::toNativeSeparators(root.absolutePath())));
    // Relative to the program folder, so the installation can be moved whole.
    writeLine(root.filePath(kBasePathFile), QStringLiteral("donnees/"));
    writeLine(root.filePath(kInvoicePathFile), QStringLiteral("factures/"));
    auto store = store::Store::create(root.filePath(QStringLiteral("donnees")));
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

}  // namespace orve::app
