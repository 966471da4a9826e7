#include "invoicing/MailOutbox.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include "store/FileNames.h"
#include "store/FileWriting.h"

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
    try {
        store::writeWholeFile(path, bytes);
    } catch (const store::FileWriteError& e) {
        // Every message goes to the same folder: one that cannot take this
        // one (a full disk above all) would refuse each of the others too.
        throw MailFailure(e.message(), true);
    }
    m_written << path;
}

}  // namespace orve::invoicing
