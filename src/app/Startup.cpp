#include "app/Startup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::app {

QString resolveProgramFolder(const QString& homeOption, const QString& executableFolder) {
    if (!homeOption.isEmpty()) return QDir(homeOption).absolutePath();
    const QString env = qEnvironmentVariable("ORVE_HOME");
    if (!env.isEmpty()) return QDir(env).absolutePath();
    return executableFolder;
}

QString resolveFolder(const QString& programFolder, const QString& written) {
    QString path = written.trimmed();
    path.replace('\\', '/');
    // "C:/..." is absolute on Windows only; elsewhere a drive letter cannot be honoured,
    // so keep it as written and let the open fail with a clear message.
    if (QDir::isRelativePath(path) && !(path.size() > 1 && path[1] == ':')) {
        path = QDir(programFolder).filePath(path);
    }
    return QDir::cleanPath(path);
}

QString readPathFile(const QString& programFolder, const QString& fileName) {
    const QString path = QDir(programFolder).filePath(fileName);
    QFile file(path);
    if (!file.exists()) {
        throw Refusal(QStringLiteral("Le fichier %1 est introuvable dans le dossier du programme "
                                     "(%2). Créez-le avec, sur sa première ligne, le chemin du "
                                     "dossier à utiliser.")
                          .arg(fileName, QDir::toNativeSeparators(programFolder)));
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        throw Refusal(QStringLiteral("Le fichier %1 ne peut pas être lu (%2) : %3")
                          .arg(fileName, QDir::toNativeSeparators(path), file.errorString()));
    }
    QTextStream in(&file);
    const QString line = in.readLine().trimmed();
    if (line.isEmpty()) {
        throw Refusal(QStringLiteral("Le fichier %1 (%2) est vide. Écrivez sur sa première ligne "
                                     "le chemin du dossier à utiliser.")
                          .arg(fileName, QDir::toNativeSeparators(path)));
    }
    return line;
}

store::StoreAddress readStoreAddress(const QString& programFolder) {
    const QString written = readPathFile(programFolder, kBasePathFile);
    if (store::StoreAddress::isServerAddress(written)) return store::StoreAddress::parse(written);
    return store::StoreAddress::ofFolder(resolveFolder(programFolder, written));
}

std::unique_ptr<store::Store> openInstallationStore(const QString& programFolder,
                                                    const store::PasswordPrompt& askPassword) {
    return openInstallationStore(programFolder, readStoreAddress(programFolder), askPassword);
}

std::unique_ptr<store::Store> openInstallationStore(const QString& programFolder,
                                                    const store::StoreAddress& address,
                                                    const store::PasswordPrompt& askPassword) {
    const QString dataFolder = address.shared() ? programFolder : address.folder;
    if (!QFileInfo(dataFolder).isDir()) {
        throw Refusal(
            QStringLiteral("Le dossier des données « %1 », indiqué par %2, n'existe pas. "
                           "Corrigez %2 ou créez ce dossier.")
                .arg(format::echoed(QDir::toNativeSeparators(dataFolder)), kBasePathFile));
    }
    return store::Store::open(address, dataFolder, askPassword);
}

std::unique_ptr<Session> startSession(const QString& programFolder, const Clock& clock,
                                      const store::PasswordPrompt& askPassword) {
    // The data's path file is read first: it is the one an operator fixes first.
    const store::StoreAddress address = readStoreAddress(programFolder);
    const QString invoiceFolder =
        resolveFolder(programFolder, readPathFile(programFolder, kInvoicePathFile));
    auto store = openInstallationStore(programFolder, address, askPassword);
    const auto row = store->selectOne(
        QStringLiteral("SELECT spe_cod, spe_nom, spe_district, spe_debut_exe_tri, spe_fin_exe_tri "
                       "FROM strspecif LIMIT 1"));
    if (!row) {
        throw Refusal(QStringLiteral("La table strspecif de %1 est vide : l'installation n'a pas "
                                     "de paramètres. Créez-les avec « orve-batch init ».")
                          .arg(store->address().shared()
                                   ? store->address().display()
                                   : QDir::toNativeSeparators(store->path(store::File::Jkv))));
    }
    Installation inst{row->value(0).toString(), row->value(1).toString(), row->value(2).toString(),
                      row->value(3).toString(), row->value(4).toString()};
    const QString dataFolder = store->dataFolder();
    return std::make_unique<Session>(programFolder, dataFolder, invoiceFolder, std::move(store),
                                     inst, clock);
}

QString windowTitle(const Installation& installation) { return kTitlePrefix + installation.name; }

QString storeCaption(const store::StoreAddress& address) {
    return address.shared() ? QStringLiteral("Base partagée : ") + address.display() : QString();
}

}  // namespace orve::app
