#include "invoicing/InvoiceFiles.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QPainter>
#include <QPdfWriter>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QThread>
#include <QThreadPool>
#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>

#include "invoicing/InvoiceDocument.h"
#include "invoicing/InvoiceLayout.h"
#include "invoicing/RecordStates.h"
#include "store/FileNames.h"
#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace orve::invoicing {

namespace {

// A run writes a document in milliseconds: a temporary this old belongs to a
// run that was killed, never to one still writing.
constexpr qint64 kLeftoverAgeSeconds = 10 * 60;

using store::writeFailure;

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

// Replaces the file at `path` by `bytes`, or throws and leaves it as it was.
void writeDocument(const QString& path, const QByteArray& bytes) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw StoreError(QStringLiteral("Impossible de créer le dossier des factures %1.")
                             .arg(QDir::toNativeSeparators(folder)));
    removeLeftovers(folder);
    // Each writer gets a temporary of its own (nameless where the system
    // allows it); it is renamed over the older file in one step.
    store::writeWholeFile(path, bytes);
}

#ifdef Q_OS_UNIX
// Six letters or digits: the suffix of a temporary, as QSaveFile makes them,
// so that a run killed while writing leaves what removeLeftovers knows.
QByteArray temporarySuffix() {
    static const char kChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    QByteArray s(6, '0');
    for (char& c : s) c = kChars[QRandomGenerator::global()->bounded(62)];
    return s;
}
#endif

// A batch's document: whole in a temporary of its own, then renamed over
// the older file, as writeDocument; the sync is left to the batch, which
// makes a group of files durable at once before marking them
// (makeDurable): a sync per file would cost more than drawing it.
void writeDocumentUnsynced(const QString& path, const QByteArray& bytes) {
#ifdef Q_OS_UNIX
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw StoreError(QStringLiteral("Impossible de créer le dossier des factures %1.")
                             .arg(QDir::toNativeSeparators(folder)));
    removeLeftovers(folder);
    const QByteArray target = QFile::encodeName(path);
    QByteArray temporary;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 8; ++attempt) {
        temporary = target + '.' + temporarySuffix();
        fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0 && errno != EEXIST) throw writeFailure(path, errno);
    }
    if (fd < 0) throw writeFailure(path, EEXIST);
    const char* p = bytes.constData();
    qint64 left = bytes.size();
    int error = 0;
    while (left > 0) {
        const ssize_t n = ::write(fd, p, static_cast<size_t>(left));
        if (n < 0) {
            if (errno == EINTR) continue;
            error = errno;
            break;
        }
        p += n;
        left -= n;
    }
    if (::close(fd) != 0 && !error) error = errno;
    if (!error && ::rename(temporary.constData(), target.constData()) != 0) error = errno;
    if (error) {
        ::unlink(temporary.constData());
        throw writeFailure(path, error);
    }
#else
    writeDocument(path, bytes);
#endif
}

// Every file of a group on the disk itself, with one sync where the system
// offers one for the whole file system.
void makeDurable(const std::vector<QString>& paths) {
#ifdef Q_OS_UNIX
#ifdef Q_OS_LINUX
    if (!paths.empty()) {
        const int fd = ::open(QFile::encodeName(paths.front()).constData(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            const int result = ::syncfs(fd);
            const int error = errno;
            ::close(fd);
            if (result != 0) throw writeFailure(paths.front(), error);
            return;
        }
    }
#endif
    QStringList folders;
    for (const QString& path : paths) {
        const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) throw writeFailure(path, errno);
        const int result = ::fsync(fd);
        const int error = errno;
        ::close(fd);
        if (result != 0 && error != EINVAL) throw writeFailure(path, error);
        const QString folder = QFileInfo(path).absolutePath();
        if (!folders.contains(folder)) folders << folder;
    }
    // The renames themselves.
    for (const QString& folder : folders) {
        const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            ::fsync(fd);
            ::close(fd);
        }
    }
#else
    Q_UNUSED(paths);  // QSaveFile synced each file as it wrote it
#endif
}

// What a finished document changes in the records: the header is printed
// with its total, then the competition row that carries its number is final.
// Each file in a transaction of its own, the invoice file first: SQLite
// commits attached files one after the other, so a transaction over both
// could keep one and lose the other in a kill. In this order a kill leaves
// at worst a printed header under a row still "A", which the next run or
// opening finishes again (the document is made again, the same).
struct Printed {
    QString number;
    Money total;
};
void markPrinted(store::Store& store, const std::vector<Printed>& documents) {
    {
        store::Transaction tx(store);
        for (const Printed& d : documents)
            store.update(QStringLiteral("strentete"),
                         {{"ent_fact_edt", kYes},
                          {"ent_montant", QVariant::fromValue<qint64>(d.total.cents())}},
                         QStringLiteral("ent_fact_no = ?"), {d.number});
        tx.commit();
    }
    store::Transaction tx(store);
    for (const Printed& d : documents)
        store.update(QStringLiteral("strcompetition"),
                     {{"c_facture", kInvoicedState},
                      {"c_edt_fact", kDocumentMade},
                      {"c_add_tiers", kNo},
                      {"c_envoi_mail", kNo}},
                     QStringLiteral("c_num_facture = ? AND c_facture <> ?"),
                     {d.number, kPseudoState});
    tx.commit();
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
    markPrinted(store, {{doc.number, doc.total()}});
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
        store.update(QStringLiteral("strentete"), {{"ent_fact_edt", kYes}},
                     QStringLiteral("ent_fact_no = ?"), {doc.number});
        tx.commit();
        written.push_back(path);
    }
    return written;
}

namespace {

// Documents queued ahead of the workers, per worker: enough that a worker
// never waits for the store's thread, few enough that a stop is quick.
constexpr int kQueuedPerWorker = 4;
// Files made durable and marked together: one sync and one transaction.
constexpr int kMarkedTogether = 16;
// Tries of a group's marks while another workstation holds their rows.
constexpr int kMarkAttempts = 5;

// Fonts and pictures are set up once per program on the store's thread,
// before any worker draws.
std::once_flag warmedUp;

}  // namespace

struct DocumentRun::Shared {
    struct Written {
        int order = 0;
        QString number;
        QString path;
        Money total;
    };
    QThreadPool pool;
    std::mutex mutex;
    std::condition_variable changed;
    int underWay = 0;
    std::vector<Written> written;  // by the workers, not yet collected
    std::exception_ptr failure;
    // The store's thread's own: collected, not yet marked.
    std::vector<Written> collected;
};

DocumentRun::DocumentRun(store::Store& store, const DocumentSettings& settings)
    : m_store(store), m_settings(settings), m_shared(std::make_shared<Shared>()) {
    m_shared->pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
}

DocumentRun::~DocumentRun() { m_shared->pool.waitForDone(); }

int DocumentRun::marked() const { return m_marked; }

void DocumentRun::add(const QString& number) {
    rethrowFailure();
    add([&] {
        try {
            return loadInvoiceDocument(m_store, number);
        } catch (...) {
            // The documents under way are still finished and marked.
            try {
                finish();
            } catch (...) {
            }
            throw;
        }
    }());
}

void DocumentRun::add(const InvoiceDocumentData& doc) {
    rethrowFailure();
    std::call_once(warmedUp, [&] {
        renderPdf(invoicePdfPath(m_settings.invoiceFolder, doc.account, doc.entity, doc.number),
                  doc, m_settings);
    });
    const int capacity = m_shared->pool.maxThreadCount() * kQueuedPerWorker;
    for (;;) {
        {
            std::lock_guard lock(m_shared->mutex);
            if (m_shared->underWay < capacity) break;
        }
        collect(true);
        markCollected(false);
    }
    const int order = static_cast<int>(m_paths.size());
    m_paths.emplace_back();
    {
        std::lock_guard lock(m_shared->mutex);
        ++m_shared->underWay;
    }
    m_shared->pool.start([shared = m_shared, settings = m_settings, doc, order] {
        Shared::Written w{order, doc.number, {}, doc.total()};
        std::exception_ptr failure;
        try {
            w.path = invoicePdfPath(settings.invoiceFolder, doc.account, doc.entity, doc.number);
            writeDocumentUnsynced(w.path, renderPdf(w.path, doc, settings));
        } catch (...) {
            failure = std::current_exception();
        }
        std::lock_guard lock(shared->mutex);
        if (failure) {
            if (!shared->failure) shared->failure = failure;
        } else {
            shared->written.push_back(std::move(w));
        }
        --shared->underWay;
        shared->changed.notify_all();
    });
    collect(false);
    markCollected(false);
}

void DocumentRun::collect(bool waitForOne) {
    std::unique_lock lock(m_shared->mutex);
    if (waitForOne)
        m_shared->changed.wait(
            lock, [this] { return !m_shared->written.empty() || m_shared->underWay == 0; });
    for (auto& w : m_shared->written) m_shared->collected.push_back(std::move(w));
    m_shared->written.clear();
}

void DocumentRun::markCollected(bool force) {
    auto& group = m_shared->collected;
    if (group.empty() || (!force && static_cast<int>(group.size()) < kMarkedTogether)) return;
    std::vector<QString> paths;
    paths.reserve(group.size());
    for (const auto& w : group) paths.push_back(w.path);
    makeDurable(paths);
    // By number: two runs marking the same invoices take their rows in the
    // same order, so neither waits for the other in a circle.
    std::sort(group.begin(), group.end(), [](const auto& a, const auto& b) {
        return format::leadingNumber(a.number) < format::leadingNumber(b.number);
    });
    std::vector<Printed> printed;
    printed.reserve(group.size());
    for (const auto& w : group) printed.push_back({w.number, w.total});
    for (int attempt = 1;; ++attempt) {
        try {
            markPrinted(m_store, printed);
            break;
        } catch (const StoreError& e) {
            // Another workstation held the rows a moment: the marks are made again.
            if (!e.busy() || attempt == kMarkAttempts) throw;
            QThread::msleep(50 * attempt);
        }
    }
    for (const auto& w : group) m_paths[w.order] = w.path;
    m_marked += static_cast<int>(group.size());
    group.clear();
}

void DocumentRun::rethrowFailure() {
    std::exception_ptr failure;
    {
        std::lock_guard lock(m_shared->mutex);
        failure = m_shared->failure;
    }
    if (!failure) return;
    m_shared->pool.waitForDone();
    collect(false);
    markCollected(true);
    std::rethrow_exception(failure);
}

std::vector<QString> DocumentRun::finish(const DocumentProgress& progress) {
    for (;;) {
        {
            std::lock_guard lock(m_shared->mutex);
            if (m_shared->underWay == 0) break;
        }
        collect(true);
        const int before = m_marked;
        markCollected(false);
        if (progress && m_marked != before) progress(m_marked, static_cast<int>(m_paths.size()));
    }
    collect(false);
    markCollected(true);
    rethrowFailure();
    if (progress) progress(m_marked, static_cast<int>(m_paths.size()));
    std::vector<QString> files;
    for (const QString& p : m_paths)
        if (!p.isEmpty()) files.push_back(p);
    return files;
}

std::vector<QString> generateInvoicePdfs(store::Store& store, const DocumentSettings& settings,
                                         const std::vector<QString>& numbers,
                                         const DocumentProgress& progress) {
    DocumentRun run(store, settings);
    const int total = static_cast<int>(numbers.size());
    for (const QString& number : numbers) {
        if (progress && !progress(run.marked(), total)) break;
        run.add(number);
    }
    return run.finish([&](int done, int) { return progress ? progress(done, total) : true; });
}

}  // namespace orve::invoicing
