// A transfer's file and its marks as one unit: written under a temporary
// name, put in place after the marks are committed, finished by the next run
// when a run stops between the two; a file shown again or cancelled.
#include "accounting/AccountingTransfer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#if defined(Q_OS_UNIX)
#include <unistd.h>
#endif

#include "accounting/AccountingConstants.h"
#include "accounting/TransferStatements.h"
#include "invoicing/InvoiceRecords.h"
#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Settings.h"

namespace orve::accounting {

namespace {

// Transfers follow one another, whichever workstation runs them.
const QString kTransferSeries = QStringLiteral("strentete.ent_compta");
// strtransfert: a file being put in place, and one that is.
const QString kWriting = QStringLiteral("E");
const QString kWritten = QStringLiteral("T");
// Headers updated by one statement; well under both engines' limits on values.
constexpr int kChunk = 200;

QString path(const QString& p) { return QDir::toNativeSeparators(p); }

std::filesystem::path fsPath(const QString& p) {
#if defined(Q_OS_WIN)
    return std::filesystem::path(p.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(p).toStdString());
#endif
}

// Moves `from` over `to` in one step, replacing a file of that name.
bool replaceFile(const QString& from, const QString& to, QString* error) {
    std::error_code ec;
    std::filesystem::rename(fsPath(from), fsPath(to), ec);
    if (ec && error) *error = store::writeCause(ec.value());
    return !ec;
}

bool isTemporaryName(const QString& name) {
    return name.startsWith(kTransferPrefix) && name.endsWith(kTransferTemporarySuffix) &&
           name.contains(kTransferSuffix + QChar('.'));
}

// The temporary file of a run: removed unless the run commits its marks.
class TemporaryFile {
  public:
    // `finalPath`: the name the file takes once the marks are committed, the
    // one a message names.
    TemporaryFile(QString path, QString finalPath)
        : m_path(std::move(path)), m_finalPath(std::move(finalPath)) {}
    ~TemporaryFile() {
        if (!m_kept) QFile::remove(m_path);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(const QByteArray& bytes) {
        const QString what = QStringLiteral("le fichier de transfert");
        QFile file(m_path);
        errno = 0;
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            throw store::writeFailure(m_finalPath, errno, what);
        // On the disk before the marks are committed.
        if (const int error = store::writeAndSync(file, bytes))
            throw store::writeFailure(m_finalPath, error, what);
    }
    void keep() { m_kept = true; }

  private:
    QString m_path;
    QString m_finalPath;
    bool m_kept = false;
};

QString placeholders(int n) {
    QStringList marks;
    for (int i = 0; i < n; ++i) marks << QStringLiteral("?");
    return marks.join(QChar(','));
}

// Runs `sql` ("... IN (%1)") over the numbers, a chunk at a time; returns
// the rows changed.
int forEachChunk(store::Store& store, const QString& sql, const store::Params& leading,
                 const std::vector<QString>& numbers) {
    int changed = 0;
    const int total = static_cast<int>(numbers.size());
    for (int i = 0; i < total; i += kChunk) {
        const int n = std::min(kChunk, total - i);
        store::Params params = leading;
        for (int k = 0; k < n; ++k) params.push_back(numbers[static_cast<size_t>(i + k)]);
        changed += store.exec(sql.arg(placeholders(n)), params);
    }
    return changed;
}

CustomerAccounts customerAccounts(const store::Store& store) {
    CustomerAccounts accounts;
    for (const auto& r : store.select(QStringLiteral("SELECT club_code, club_compta FROM strclub")))
        accounts.addClub(r.value(0).toString(), r.value(1).toString());
    for (const auto& r : store.select(QStringLiteral("SELECT de_no, de_compta FROM strdept")))
        accounts.addCommittee(r.value(0).toString(), r.value(1).toString());
    return accounts;
}

// The league file of the day that does not exist yet: Transfert_1_…, _2_, …
QString nextLeagueFile(const QDir& dir, const QDate& day) {
    for (int counter = 1;; ++counter) {
        const QString candidate = dir.filePath(QStringLiteral("%1%2_%3%4")
                                                   .arg(kTransferPrefix, QString::number(counter),
                                                        format::sortDate(day), kTransferSuffix));
        if (!QFileInfo::exists(candidate)) return candidate;
    }
}

QString canonicalFolder(const QString& folder) {
    const QFileInfo info(folder);
    if (!info.isDir())
        throw StoreError(QStringLiteral("Le dossier des fichiers de transfert %1 n'existe pas.")
                             .arg(path(folder)));
    return info.canonicalFilePath();
}

void markPlaced(store::Store& store, const QString& file, const QString& temporary) {
    store.exec(QStringLiteral("UPDATE strtransfert SET tr_etat = ? WHERE tr_fichier = ? AND "
                              "tr_temporaire = ?"),
               {kWritten, file, temporary});
}

}  // namespace

QString nationalTransferName(const QDate& day) {
    return kTransferPrefix + format::sortDate(day) + kTransferSuffix;
}

TransferResult writeTransfer(store::Store& store, const QString& folder, TransferLayout layout,
                             const QString& level, const invoicing::SelectionCondition& selection,
                             const QDate& today, const TransferOptions& options) {
    const QDir dir(canonicalFolder(folder));
    recoverInterruptedTransfers(store, dir.path());
    auto checkpoint = [&options](TransferStage stage) {
        if (options.checkpoint) options.checkpoint(stage);
    };

    store::Transaction tx(store);
    store.lockSeries(kTransferSeries);
    // Read inside the transaction: the file holds exactly what is marked.
    const store::Condition where = transferCondition(selection, level);
    const TransferContent content =
        layout == TransferLayout::National
            ? nationalTransfer(nationalFileLines(store, where))
            : leagueTransfer(leagueFileLines(store, where), customerAccounts(store));
    if (content.lines == 0) throw Refusal(kNothingToTransfer);
    // One national file a day, replaced; league files are never overwritten.
    const QString finalPath = layout == TransferLayout::National
                                  ? dir.filePath(nationalTransferName(today))
                                  : nextLeagueFile(dir, today);
    const QString temporaryName = QFileInfo(finalPath).fileName() + QChar('.') +
                                  QString::number(QRandomGenerator::global()->generate(), 16) +
                                  kTransferTemporarySuffix;
    TemporaryFile temporary(dir.filePath(temporaryName), finalPath);
    temporary.write(content.bytes);
    checkpoint(TransferStage::FileWritten);

    const QString stored = path(finalPath);
    std::vector<QString> invoices = content.invoices;
    {
        QSet<QString> seen;
        std::vector<QString> unique;
        for (const QString& n : invoices)
            if (!seen.contains(n)) {
                seen.insert(n);
                unique.push_back(n);
            }
        invoices.swap(unique);
    }
    // Exactly the invoices the file holds are marked: one invoiced since
    // the reading waits for the next transfer. Fewer marked means another
    // transfer took some of them meanwhile, and nothing is kept.
    const int expected = static_cast<int>(invoices.size());
    const int marked =
        forEachChunk(store,
                     QStringLiteral("UPDATE strentete SET ent_compta = ?, c_transfert = ? WHERE "
                                    "COALESCE(ent_compta, '%1') <> '%2' AND ent_fact_no IN (%3)")
                         .arg(kNotTransferred, kTransferred, QStringLiteral("%1")),
                     {kTransferred, stored}, invoices);
    if (marked != expected)
        throw StoreError(QStringLiteral("Le transfert est annulé : des factures ont changé pendant "
                                        "le transfert (%1 à marquer, %2 trouvées). Recommencez.")
                             .arg(expected)
                             .arg(marked));
    store.insert(QStringLiteral("strtransfert"), {{"tr_fichier", stored},
                                                  {"tr_temporaire", temporaryName},
                                                  {"tr_date", format::displayDate(today)},
                                                  {"tr_lignes", content.lines},
                                                  {"tr_factures", marked},
                                                  {"tr_etat", kWriting}});
    checkpoint(TransferStage::Marked);
    tx.commit();
    // From here the marks stand: the temporary is the file-to-be of a
    // committed transfer, and the next run puts it in place if this one stops.
    temporary.keep();
    checkpoint(TransferStage::Committed);

    QString error;
    if (!replaceFile(dir.filePath(temporaryName), finalPath, &error)) {
        // Undo the marks rather than leave them without their file.
        try {
            store::Transaction undo(store);
            forEachChunk(store,
                         QStringLiteral("UPDATE strentete SET ent_compta = ?, c_transfert = NULL "
                                        "WHERE c_transfert = ? AND ent_fact_no IN (%1)"),
                         {kNotTransferred, stored}, invoices);
            store.exec(QStringLiteral(
                           "DELETE FROM strtransfert WHERE tr_fichier = ? AND tr_temporaire = ?"),
                       {stored, temporaryName});
            undo.commit();
        } catch (const std::exception&) {
            throw StoreError(QStringLiteral("Le fichier de transfert %1 n'a pas pu prendre son nom "
                                            "(%2) ; il le prendra au prochain transfert.")
                                 .arg(stored, error));
        }
        QFile::remove(dir.filePath(temporaryName));
        throw StoreError(QStringLiteral("Impossible d'écrire le fichier de transfert %1 : %2. "
                                        "Aucune facture n'a été marquée.")
                             .arg(stored, error));
    }
    try {
        store::Transaction done(store);
        markPlaced(store, stored, temporaryName);
        done.commit();
    } catch (const std::exception&) {
        // The file and its marks are there; the next run records it as placed.
    }
    return {finalPath, content.lines, marked, content.amount};
}

int recoverInterruptedTransfers(store::Store& store, const QString& folder) {
    const QFileInfo info(folder);
    if (!info.isDir()) return 0;
    const QDir dir(info.canonicalFilePath());
    const QStringList temporaries =
        dir.entryList({kTransferPrefix + QStringLiteral("*") + kTransferTemporarySuffix},
                      QDir::Files | QDir::Hidden);
    const bool leftovers = std::any_of(temporaries.begin(), temporaries.end(), isTemporaryName);
    if (!leftovers &&
        !store.exists(QStringLiteral("SELECT 1 FROM strtransfert WHERE tr_etat = ?"), {kWriting}))
        return 0;

    store::Transaction tx(store);
    store.lockSeries(kTransferSeries);
    int placed = 0;
    QSet<QString> pending;
    for (const auto& r :
         store.select(QStringLiteral("SELECT tr_fichier, tr_temporaire FROM strtransfert WHERE "
                                     "tr_etat = ?"),
                      {kWriting})) {
        const QString file = r.value(0).toString();
        const QString temporaryName = r.value(1).toString();
        const QFileInfo target(QDir::fromNativeSeparators(file));
        const QString temporary = target.dir().filePath(temporaryName);
        if (QFileInfo(temporary).isFile()) {
            if (replaceFile(temporary, target.filePath(), nullptr)) {
                markPlaced(store, file, temporaryName);
                ++placed;
            } else {
                pending.insert(temporaryName);
            }
        } else if (target.isFile()) {
            markPlaced(store, file, temporaryName);
        } else {
            // Another workstation's folder: it finishes its own.
            pending.insert(temporaryName);
        }
    }
    // A temporary without committed marks belongs to a run that stopped
    // before its commit: nothing of it counts.
    for (const QString& name : temporaries)
        if (isTemporaryName(name) && !pending.contains(name)) QFile::remove(dir.filePath(name));
    tx.commit();
    return placed;
}

QString transferFileOfDate(const QString& folder, const QString& dateText) {
    const auto day = format::parseDisplayDate(dateText);
    if (!day)
        throw Refusal(QStringLiteral("la date : ") + dateText.trimmed() +
                      QStringLiteral(" n'est pas valide"));
    return QDir(folder).filePath(nationalTransferName(*day));
}

TransferFileView showTransferFile(store::Store& store, const QString& file) {
    const QFileInfo info(file);
    recoverInterruptedTransfers(store, info.absolutePath());
    const TransferFileRows read = readTransferFile(file);
    store::Store& scratch = store.scratch();
    {
        store::Transaction tx(scratch);
        scratch.exec(QStringLiteral("DELETE FROM strcompta"));
        constexpr int kRowsPerInsert = 50;
        QStringList columns;
        for (int i = 1; i <= 12; ++i) columns << QStringLiteral("x_%1").arg(i);
        const QString row = QStringLiteral("(") + placeholders(12) + QStringLiteral(")");
        for (size_t i = 0; i < read.rows.size(); i += kRowsPerInsert) {
            const size_t n = std::min<size_t>(kRowsPerInsert, read.rows.size() - i);
            QStringList values;
            store::Params params;
            for (size_t k = 0; k < n; ++k) {
                values << row;
                for (const QString& v : read.rows[i + k]) params.push_back(v);
            }
            scratch.exec(QStringLiteral("INSERT INTO strcompta (%1) VALUES %2")
                             .arg(columns.join(QChar(',')), values.join(QChar(','))),
                         params);
        }
        tx.commit();
    }
    return {file, read.layout, read.captions, static_cast<int>(read.rows.size()), read.amount};
}

store::Query transferFileQuery() {
    // The scratch store is always a file of the workstation: its rowid keeps
    // lines of one invoice in the file's order.
    return {QStringLiteral("SELECT * FROM strcompta"), {}, QStringLiteral("x_1, rowid")};
}

CancelResult cancelTransfer(store::Store& store, const QString& file,
                            const QString& supportContactName) {
    const QFileInfo info(file);
    recoverInterruptedTransfers(store, info.absolutePath());
    const TransferFileRows read = readTransferFile(file);
    const bool national = read.layout == TransferLayout::National;
    // The file's name as the transfer wrote it on its invoices.
    const QString canonical = path(info.canonicalFilePath());
    const QString absolute = path(info.absoluteFilePath());

    store::Transaction tx(store);
    store.lockSeries(kTransferSeries);
    // The invoices this file took, by the key its lines give them: the
    // national number (season and last four digits) with the competition,
    // or the league's whole number.
    QHash<QString, QStringList> taken;
    for (const auto& r : store.select(
             QStringLiteral("SELECT e.ent_fact_no, e.ent_c_index, c.c_saison FROM strentete e "
                            "LEFT JOIN strcompetition c ON c.c_index = e.ent_c_index "
                            "WHERE e.c_transfert = ? OR e.c_transfert = ?"),
             {canonical, absolute})) {
        const QString number = r.value(0).toString();
        const QString padded = invoicing::paddedInvoiceNumber(number);
        const QString key = national ? nationalInvoiceKey(r.value(2).toString(), padded) +
                                           QChar('|') + r.value(1).toString().trimmed().toUpper()
                                     : padded;
        taken[key] << number;
    }

    CancelResult result;
    std::vector<QString> reset;
    QSet<QString> seen;
    for (const QStringList& row : read.rows) {
        const QString first = row[0].trimmed();
        const QString key = national ? first + QChar('|') + row[4].trimmed().toUpper()
                                     : invoicing::paddedInvoiceNumber(first);
        if (seen.contains(key)) continue;
        seen.insert(key);
        QStringList numbers = taken.value(key);
        if (numbers.isEmpty()) {
            // A file this program did not write: the number is rebuilt from
            // the line, as it always was.
            const QString rebuilt = national ? first.left(4) + QStringLiteral("00") + first.right(4)
                                             : QString::number(format::leadingNumber(first));
            if (store.exists(QStringLiteral("SELECT 1 FROM strentete WHERE ent_fact_no = ?"),
                             {rebuilt})) {
                numbers << rebuilt;
            } else {
                result.missing << kMissingHeader + rebuilt + kMissingHeaderEnd + supportContactName;
                continue;
            }
        }
        for (const QString& n : numbers) reset.push_back(n);
    }
    forEachChunk(store,
                 QStringLiteral("UPDATE strentete SET ent_compta = ?, c_transfert = NULL WHERE "
                                "ent_fact_no IN (%1)"),
                 {kNotTransferred}, reset);
    tx.commit();
    result.invoices = static_cast<int>(QSet<QString>(reset.begin(), reset.end()).size());
    return result;
}

QString supportContact(const QString& settingsPath) {
    const QString contact = store::Settings(settingsPath).text(QStringLiteral("support/contact"));
    return contact.isEmpty() ? kDefaultSupportContact : contact;
}

}  // namespace orve::accounting
