#pragma once

#include <QByteArray>
#include <QString>

#include "store/Refusal.h"

class QFileDevice;

// Every file ORVE writes for the operator (documents, transfer files, mails
// left in the outbox, reports) fails the same way: the message names the
// file under its final name (never a temporary), with the cause in French
// ("disque plein", "droits insuffisants", …), never Qt's English text. A
// full disk is told apart, so that a run stops at the first one instead of
// failing the same way for every file that follows.
namespace orve::store {

class FileWriteError : public StoreError {
  public:
    FileWriteError(const QString& message, bool diskFull)
        : StoreError(message), m_diskFull(diskFull) {}
    bool diskFull() const { return m_diskFull; }

  private:
    bool m_diskFull;
};

// Less than a megabyte left on the disk that holds `folder`.
bool diskNearlyFull(const QString& folder);
// ENOSPC, EDQUOT, EFBIG: no room left for the file.
bool isDiskFull(int error);
// The cause of a failed write, from the system's error number.
QString writeCause(int error);

// "Disque plein : impossible d'écrire le fichier /…/Transfert_20261123.csv."
// or "Impossible d'écrire le fichier … : droits insuffisants". `error` is the
// system's error number, or 0 when none is known: the cause is then found
// from the file, its folder and the room left on the disk. `what` names the
// kind of file ("le fichier de transfert").
FileWriteError writeFailure(const QString& path, int error,
                            const QString& what = QStringLiteral("le fichier"));

// Writes all of `bytes` through the file's descriptor and syncs them to the
// disk; returns 0, or the system's error number (-1 where it gives none).
int writeAndSync(QFileDevice& file, const QByteArray& bytes);

// Replaces the file at `path` by `bytes` in one piece (a temporary beside it,
// synced, renamed over it), readable by its owner only; throws
// FileWriteError and leaves any older file as it was.
void writeWholeFile(const QString& path, const QByteArray& bytes,
                    const QString& what = QStringLiteral("le fichier"));

}  // namespace orve::store
