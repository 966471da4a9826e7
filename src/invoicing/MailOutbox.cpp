#include "invoicing/MailOutbox.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "store/FileNames.h"

namespace orve::invoicing {

MailOutbox::MailOutbox(QString folder) : m_folder(std::move(folder)) {}

QString MailOutbox::destination() const { return QDir::toNativeSeparators(m_folder); }

void MailOutbox::deliver(const MailMessage& message, const QString& name) {
    if (!QDir().mkpath(m_folder))
        throw MailFailure(QStringLiteral("impossible de créer le dossier %1").arg(destination()),
                          true);
    QString base = store::fileNamePart(name);
    if (base.isEmpty()) base = QStringLiteral("message");
    QString path;
    for (int n = 1;; ++n) {
        const QString file =
            n == 1 ? base + QStringLiteral(".eml") : QStringLiteral("%1-%2.eml").arg(base).arg(n);
        path = store::fileInFolder(m_folder, file);
        if (!QFileInfo::exists(path)) break;
    }
    const QByteArray bytes =
        message.toMime(QDateTime::currentDateTime(), newMessageId(message.from), true);
    QSaveFile file(path);
    const auto fail = [&] {
        return MailFailure(QStringLiteral("impossible d'écrire le fichier %1 : %2")
                               .arg(QDir::toNativeSeparators(path), file.errorString()),
                           false);
    };
    if (!file.open(QIODevice::WriteOnly)) throw fail();
    // Addresses and amounts: for the owner only.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (file.write(bytes) != bytes.size()) throw fail();
    if (!file.commit()) throw fail();
    m_written << path;
}

}  // namespace orve::invoicing
