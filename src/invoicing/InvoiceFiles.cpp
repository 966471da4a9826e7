#include "invoicing/InvoiceFiles.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSaveFile>
#include <cerrno>
#include <cstring>

#include "invoicing/InvoiceDocument.h"
#include "invoicing/InvoiceLayout.h"
#include "store/FileNames.h"
#include "store/Formats.h"
#include "store/Refusal.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace orve::invoicing {

namespace {

// A run writes a document in milliseconds: a temporary this old belongs to a
// run that was killed, never to one still writing.
constexpr qint64 kLeftoverAgeSeconds = 10 * 60;

bool diskFull(int error) {
#ifdef EDQUOT
    if (error == EDQUOT) return true;
#endif
    return error == ENOSPC || error == EFBIG;
}

// Why a file could not be written, in the operator's words.
QString causeOf(int error) {
    switch (error) {
        case EACCES:
        case EPERM:
            return QStringLiteral("accès refusé");
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
            return QStringLiteral("fichier occupé par un autre programme");
        default:
            return QStringLiteral("erreur système %1 (%2)")
                .arg(error)
                .arg(QString::fromLocal8Bit(std::strerror(error)));
    }
}

// `error` is the system's error number when one is known, else 0 and Qt's
// own text stands as the cause.
StoreError writeFailure(const QString& path, int error, const QString& qtText) {
    const QString file = QDir::toNativeSeparators(path);
    if (diskFull(error))
        return StoreError(
            QStringLiteral("Disque plein : impossible d'écrire le fichier %1.").arg(file));
    QString cause = error ? causeOf(error) : qtText;
    if (!error && QFileInfo::exists(path) && !QFileInfo(path).isWritable()) cause = causeOf(EACCES);
    return StoreError(QStringLiteral("Impossible d'écrire le fichier %1 : %2").arg(file, cause));
}

// Leftovers of a run killed while writing: QSaveFile's temporaries of our
// documents ("…_FN_00000058.pdf.Ab12Cd", where the system cannot keep them
// nameless) and the older ".pdf.part" files.
bool isLeftover(const QString& name) {
    static const QRegularExpression temporary(
        QStringLiteral("^[\\p{L}\\p{Nd}_-]*_FN_\\d+\\.pdf\\.[A-Za-z0-9]{6}$"));
    static const QRegularExpression part(QStringLiteral("^.*_FN_\\d+\\.pdf\\.part$"));
    return temporary.match(name).hasMatch() || part.match(name).hasMatch();
}

// Once in a while per folder: listing a folder of thousands of documents
// before each of them would cost more than the document.
void removeLeftovers(const QString& folder) {
    static QMutex mutex;
    static QHash<QString, QDateTime> swept;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    {
        QMutexLocker lock(&mutex);
        const auto it = swept.constFind(folder);
        if (it != swept.cend() && it->secsTo(now) < kLeftoverAgeSeconds) return;
        swept.insert(folder, now);
    }
    const QFileInfoList candidates =
        QDir(folder).entryInfoList({QStringLiteral("*.pdf.*")}, QDir::Files | QDir::Hidden);
    for (const QFileInfo& f : candidates)
        if (isLeftover(f.fileName()) && f.lastModified().secsTo(now) > kLeftoverAgeSeconds)
            QFile::remove(f.absoluteFilePath());
}

// The whole document is made in memory first: a failure while drawing then
// leaves no file at all, and the bytes reach the disk in one write whose
// error is known.
QByteArray renderPdf(const QString& path, const InvoiceDocumentData& doc,
                     const DocumentSettings& s) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(1440);
        writer.setPageLayout(
            QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        writer.setTitle(
            (doc.creditNote ? QStringLiteral("Avoir N° ") : QStringLiteral("Facture N° ")) +
            doc.number);
        writer.setCreator(QStringLiteral("ORVE"));
        QPainter painter;
        if (!painter.begin(&writer))
            throw StoreError(QStringLiteral("Impossible d'écrire le fichier %1 : document "
                                            "impossible à produire")
                                 .arg(QDir::toNativeSeparators(path)));
        paintInvoiceDocument(painter, writer, doc, s);
        painter.end();
    }
    return bytes;
}

// Writes and syncs all of `bytes`; returns 0, or the system's error number
// (-1 where the system gives none).
int writeAndSync(QSaveFile& file, const QByteArray& bytes) {
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
    // commit() syncs as well, but cannot tell that the disk refused the data;
    // an invoice is marked printed only once its document is really there.
    if (::fsync(fd) != 0 && errno != EINVAL) return errno;
    return 0;
#else
    return file.write(bytes) == bytes.size() && file.flush() ? 0 : -1;
#endif
}

// Replaces the file at `path` by `bytes`, or throws and leaves it as it was.
void writeDocument(const QString& path, const QByteArray& bytes) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw StoreError(QStringLiteral("Impossible de créer le dossier des factures %1.")
                             .arg(QDir::toNativeSeparators(folder)));
    removeLeftovers(folder);

    // Each writer gets a temporary of its own (nameless where the system
    // allows it); commit() renames it over the older file in one step.
    QSaveFile file(path);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) throw writeFailure(path, errno, file.errorString());
    // QSaveFile gives the new file the mode of the one it replaces, or what
    // the umask leaves: a document is for its owner only.
    errno = 0;
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        throw writeFailure(path, errno, file.errorString());
    if (const int error = writeAndSync(file, bytes))
        throw writeFailure(path, error > 0 ? error : 0, file.errorString());
    errno = 0;
    if (!file.commit()) throw writeFailure(path, errno, file.errorString());
}

QString writePdf(const InvoiceDocumentData& doc, const DocumentSettings& settings) {
    const QString path =
        invoicePdfPath(settings.invoiceFolder, doc.account, doc.entity, doc.number);
    writeDocument(path, renderPdf(path, doc, settings));
    return path;
}

}  // namespace

QString invoicePdfPath(const QString& invoiceFolder, const QString& account, const QString& entity,
                       const QString& number) {
    const QString party = entity.trimmed().isEmpty() ? account.trimmed() : entity.trimmed();
    // Either separator may come from the path file.
    QString folder = invoiceFolder.trimmed();
    folder.replace(QChar('\\'), QChar('/'));
    return store::fileInFolder(folder, store::fileNamePart(party) + QStringLiteral("_FN_") +
                                           store::fileNamePart(paddedInvoiceNumber(number)) +
                                           QStringLiteral(".pdf"));
}

QString generateInvoicePdf(store::Store& store, const DocumentSettings& settings,
                           const QString& number) {
    const InvoiceDocumentData doc = loadInvoiceDocument(store, number);
    const QString path = writePdf(doc, settings);
    store::Transaction tx(store);
    store.update(
        QStringLiteral("strentete"),
        {{"ent_fact_edt", "O"}, {"ent_montant", QVariant::fromValue<qint64>(doc.total().cents())}},
        QStringLiteral("ent_fact_no = ?"), {doc.number});
    store.update(
        QStringLiteral("strcompetition"),
        {{"c_facture", "F"}, {"c_edt_fact", "OUI"}, {"c_add_tiers", "N"}, {"c_envoi_mail", "N"}},
        QStringLiteral("c_num_facture = ? AND c_facture <> 'X'"), {doc.number});
    tx.commit();
    return path;
}

std::vector<QString> generateCreditNotePdfs(store::Store& store, const DocumentSettings& settings,
                                            const QString& first, const QString& last) {
    const auto headers = store.select(
        QStringLiteral(
            "SELECT ent_fact_no FROM strentete WHERE CAST(ent_fact_no AS INTEGER) "
            "BETWEEN ? AND ? AND ent_fact_type = ? ORDER BY CAST(ent_fact_no AS INTEGER)"),
        {format::leadingNumber(first), format::leadingNumber(last), kCreditNoteType});
    std::vector<QString> written;
    for (const auto& h : headers) {
        const InvoiceDocumentData doc = loadInvoiceDocument(store, h.value(0).toString());
        const QString path = writePdf(doc, settings);
        store::Transaction tx(store);
        store.update(QStringLiteral("strentete"), {{"ent_fact_edt", "O"}},
                     QStringLiteral("ent_fact_no = ?"), {doc.number});
        tx.commit();
        written.push_back(path);
    }
    return written;
}

}  // namespace orve::invoicing
