#include "store/FileWriting.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>
#include <cerrno>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace orve::store {

namespace {

// Less room than this on the disk of a file that could not be written: the
// disk is full, whatever the system said (a write refused near the end of
// the room is often told as a plain I/O error).
constexpr qint64 kNearlyFull = 1024 * 1024;

}  // namespace

bool diskNearlyFull(const QString& folder) {
    const QStorageInfo disk(folder);
    return disk.isValid() && disk.bytesAvailable() >= 0 && disk.bytesAvailable() < kNearlyFull;
}

bool isDiskFull(int error) {
#ifdef EDQUOT
    if (error == EDQUOT) return true;
#endif
    return error == ENOSPC || error == EFBIG;
}

QString writeCause(int error) {
    switch (error) {
        case EACCES:
        case EPERM:
            return QStringLiteral("droits insuffisants (accès refusé)");
        case EROFS:
            return QStringLiteral("le disque est en lecture seule");
        case ENOENT:
        case ENOTDIR:
            return QStringLiteral("dossier introuvable");
        case EISDIR:
            return QStringLiteral("un dossier porte ce nom");
        case EIO:
            return QStringLiteral("erreur d'entrée-sortie sur le disque");
        case ENAMETOOLONG:
            return QStringLiteral("nom de fichier trop long");
        case EMFILE:
        case ENFILE:
            return QStringLiteral("trop de fichiers ouverts");
        case EBUSY:
        case ETXTBSY:
            return QStringLiteral("fichier occupé par un autre programme");
        case EEXIST:
            return QStringLiteral("un fichier de ce nom existe déjà");
        default:
            if (isDiskFull(error)) return QStringLiteral("disque plein");
            return QStringLiteral("erreur système %1 (%2)")
                .arg(error)
                .arg(QString::fromLocal8Bit(std::strerror(error)));
    }
}

FileWriteError writeFailure(const QString& path, int error, const QString& what) {
    const QString file = QDir::toNativeSeparators(path);
    if (isDiskFull(error) ||
        ((error <= 0 || error == EIO) && diskNearlyFull(QFileInfo(path).absolutePath())))
        return FileWriteError(
            QStringLiteral("Disque plein : impossible d'écrire %1 %2.").arg(what, file), true);
    QString cause;
    if (error > 0) {
        cause = writeCause(error);
    } else {
        const QFileInfo info(path);
        const QFileInfo folder(info.absolutePath());
        if (!folder.isDir())
            cause = writeCause(ENOENT);
        else if ((info.exists() && !info.isWritable()) || !folder.isWritable())
            cause = writeCause(EACCES);
        else
            cause = QStringLiteral("erreur d'écriture sur le disque");
    }
    return FileWriteError(QStringLiteral("Impossible d'écrire %1 %2 : %3").arg(what, file, cause),
                          false);
}

int writeAndSync(QFileDevice& file, const QByteArray& bytes) {
#ifdef Q_OS_UNIX
    const int fd = file.handle();
    const char* p = bytes.constData();
    qint64 left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, static_cast<size_t>(left));
        if (n < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        p += n;
        left -= n;
    }
    // Closing would sync as well, but could not tell that the disk refused
    // the data; a file is counted written only once it is really there.
    if (::fsync(fd) != 0 && errno != EINVAL) return errno;
    return 0;
#else
    return file.write(bytes) == bytes.size() && file.flush() ? 0 : -1;
#endif
}

void writeWholeFile(const QString& path, const QByteArray& bytes, const QString& what) {
    QSaveFile file(path);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) throw writeFailure(path, errno, what);
    // QSaveFile gives the new file the mode of the one it replaces, or what
    // the umask leaves: addresses and amounts are for their owner only.
    errno = 0;
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        throw writeFailure(path, errno, what);
    if (const int error = writeAndSync(file, bytes)) throw writeFailure(path, error, what);
    errno = 0;
    if (!file.commit()) throw writeFailure(path, errno, what);
}

}  // namespace orve::store
