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
#include "accounting/ReportSql.h"
#include "invoicing/InvoiceRecords.h"
#include "reference/Visibility.h"
#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Settings.h"

namespace orve::accounting {

using Kind = ReportColumn::Kind;

namespace {

// Transfers follow one another, whichever workstation runs them.
const QString kTransferSeries = QStringLiteral("strentete.ent_compta");
// strtransfert: a file being put in place, and one that is.
const QString kWriting = QStringLiteral("E");
const QString kWritten = QStringLiteral("T");
// Headers updated by one statement; well under both engines' limits on values.
constexpr int kChunk = 200;

// The nature's tariff of a line's article (strtarif, the earliest first).
QString lineTariff(const QString& column) {
    return QStringLiteral(
               "(SELECT t.%1 FROM strtarif t WHERE t.t_nature = f.f_nature AND t.t_article = "
               "f.f_article ORDER BY t.t_tri_deb LIMIT 1)")
        .arg(column);
}

// The accounts of a line. National: the tariff's account alone (a line
// without one is written without account, and the clerk is told before);
// its second code, else the line's nature. League: the article's account and,
// for licences and miscellaneous articles, its analysis code; any other
// article takes the line's nature.
QString accountColumns(TransferLayout layout) {
    if (layout == TransferLayout::National)
        return QStringLiteral(
                   "COALESCE(%1, '') AS t_kvarn, "
                   "COALESCE(NULLIF(%2, ''), NULLIF(f.f_nature, ''), '%3') AS t_jkv")
            .arg(lineTariff(QStringLiteral("t_kvarn")), lineTariff(QStringLiteral("t_jkv")),
                 kDefaultAnalysisCode);
    return QStringLiteral(
               "COALESCE(NULLIF(a.a_cpta, ''), '%1') AS t_kvarn, CASE WHEN a.a_nature IN ('%2', "
               "'%3') THEN COALESCE(NULLIF(a.a_analytique, ''), '%4') ELSE "
               "COALESCE(NULLIF(f.f_nature, ''), '%4') END AS t_jkv")
        .arg(kDefaultSalesAccount, kLicenceNature, kMiscNature, kDefaultAnalysisCode);
}

// Headers of the selected competitions not yet transferred, and all their
// lines, in one statement.
const QString kTransferFrom =
    QStringLiteral(
        " FROM strcompetition c JOIN strentete e ON e.ent_c_index = c.c_index "
        "JOIN strfacture f ON f.f_num_facture = ") +
    sql::kPaddedHeaderNumber;

store::Condition transferCondition(const invoicing::SelectionCondition& s, const QString& level) {
    store::Condition c = s.competitions;
    // Each level transfers into its own books what it issued.
    if (level.trimmed().compare(reference::kNationalLevel, Qt::CaseInsensitive) == 0)
        c &= store::Condition(QStringLiteral(
            "(e.ent_niveau IS NULL OR trim(e.ent_niveau) = '' OR upper(e.ent_niveau) = 'JKV')"));
    else
        c &= store::Condition(QStringLiteral("upper(e.ent_niveau) = upper(?)"), {level.trimmed()});
    c &= store::Condition(
        QStringLiteral("COALESCE(e.ent_compta, '%1') <> '%2'").arg(kNotTransferred, kTransferred));
    // The month chooses whole invoices, by their date.
    if (s.monthKey != invoicing::kNoMonth)
        c &= store::Condition(QStringLiteral("substr(e.ent_fact_tri, 1, 6) = ?"), {s.monthKey});
    if (!s.invoiceNumber.isEmpty())
        c &= store::Condition(QStringLiteral("e.ent_fact_no = ?"), {s.invoiceNumber});
    return c;
}

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

// A value of the statement joined into a file's text: its ";" made ",".
QString fileText(const QString& expression) {
    return QStringLiteral("replace(COALESCE(%1, ''), ';', ',')").arg(expression);
}

// The statement of a file: what it needs of each line, its fixed fields
// joined with their ";".
QString fileStatement(TransferLayout layout, const store::Condition& where) {
    const QString from = kTransferFrom +
                         QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article") +
                         where.where();
    if (layout == TransferLayout::League)
        return QStringLiteral(
                   "SELECT f.f_num_facture AS c_num_facture, f.f_num_facture || ';' || ") +
               sql::kLineDate + QStringLiteral(" || ';' || ") +
               fileText(QStringLiteral("e.ent_fact_echeance")) +
               QStringLiteral(" || ';' AS x_lead, ") + sql::kLineDate +
               QStringLiteral(" AS c_date_facture, f.f_tiers_fact, f.f_montant, ") +
               accountColumns(layout) + QStringLiteral(", e.ent_fact_no") + from +
               QStringLiteral(" ORDER BY c_num_facture, f.f_num_lig");
    // National lines of the same invoice, account and code are summed: the
    // lines with their accounts first (each account read once), then grouped,
    // so that only the lines of the file travel.
    return QStringLiteral(
               "WITH l AS MATERIALIZED (SELECT f.f_num_facture AS c_num_facture, "
               "c.c_saison, ") +
           sql::kLineDate +
           QStringLiteral(
               " AS c_date_facture, e.ent_fact_echeance, e.ent_tiers_fact, "
               "e.ent_c_index, c.c_numero, c.c_nature, c.c_cod2, c.c_intitule, "
               "f.f_montant, e.ent_fact_no, ") +
           accountColumns(layout) + from +
           QStringLiteral(
               ") SELECT c_num_facture, COALESCE(MIN(c_saison), '') || "
               "substr(c_num_facture, length(c_num_facture) - 3) || ';' || "
               "MIN(c_date_facture) || ';' AS x_lead, ") +
           fileText(QStringLiteral("MIN(ent_fact_echeance)")) + QStringLiteral(" || ';' || ") +
           fileText(QStringLiteral("trim(MIN(ent_tiers_fact))")) + QStringLiteral(" || ';' || ") +
           fileText(QStringLiteral("MIN(ent_c_index)")) +
           QStringLiteral(" || ';' AS x_header, MIN(c_numero) AS c_numero, ") +
           fileText(QStringLiteral("MIN(c_nature)")) + QStringLiteral(" || ';' || ") +
           fileText(QStringLiteral("MIN(c_cod2)")) + QStringLiteral(" || ';' || ") +
           fileText(QStringLiteral("MIN(c_intitule)")) +
           QStringLiteral(
               " || ';' AS x_competition, CAST(SUM(f_montant) AS BIGINT) AS f_montant, "
               "t_kvarn, t_jkv, MIN(ent_fact_no) AS ent_fact_no FROM l GROUP BY "
               "c_num_facture, t_kvarn, t_jkv ORDER BY c_num_facture, t_kvarn, t_jkv");
}

// Reads the lines, their fields found once by name.
template <typename Line, typename Fill>
std::vector<Line> fileLines(const store::Rows& rows, const std::vector<const char*>& names,
                            Fill fill) {
    std::vector<Line> out;
    if (rows.empty()) return out;
    std::vector<int> at;
    for (const char* n : names) at.push_back(rows.front().indexOf(QLatin1String(n)));
    out.reserve(rows.size());
    for (const auto& r : rows) out.push_back(fill(r, at));
    return out;
}

std::optional<QString> optionalText(const store::Row& r, int i) {
    if (r.isNull(i)) return std::nullopt;
    return r.value(i).toString();
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

const std::vector<ReportColumn>& transferColumns() {
    static const std::vector<ReportColumn> columns{
        {QStringLiteral("N° Facture"), "c_num_facture"},
        {QStringLiteral("Ligne"), "c_fact_ir"},
        {QStringLiteral("Date Facture"), "c_date_facture"},
        {QStringLiteral("Date Echeance"), "c_date_enreg"},
        {QStringLiteral("Tiers facturé"), "f_tiers_fact"},
        {QStringLiteral("Saison"), "c_saison"},
        {QStringLiteral("index"), "c_index"},
        {QStringLiteral("Intitulé de la compétiton"), "c_intitule"},
        {QStringLiteral("Nature"), "c_nature"},
        {QStringLiteral("article"), "f_article"},
        {QStringLiteral("Produits facturés"), "f_libelle"},
        {QStringLiteral("Quantité"), "f_qte", Kind::Number},
        {QString(), "f_pu", Kind::Amount, QStringLiteral("Prix unitaire")},
        {QStringLiteral("Montant"), "f_montant", Kind::Amount},
        {QStringLiteral("Compte"), "t_kvarn"},
        {QStringLiteral("Analytique"), "t_jkv"},
    };
    return columns;
}

store::Query transferSelectionQuery(const invoicing::SelectionCondition& selection,
                                    TransferLayout layout, const QString& level) {
    const QString select =
        QStringLiteral("SELECT ") + sql::kCompetitionColumns +
        QStringLiteral(
            ", f.f_num_facture AS c_num_facture, f.f_num_lig AS c_fact_ir, "
            "f.f_tri_date AS c_tri_facture, e.ent_fact_echeance AS c_date_enreg, ") +
        sql::kLineDate +
        QStringLiteral(
            " AS c_date_facture, f.f_article, substr(f.f_libelle, 1, 50) AS f_libelle, "
            "f.f_qte, f.f_pu, f.f_montant, f.f_tiers_fact, f.f_nature, ") +
        accountColumns(layout) +
        QStringLiteral(", e.ent_fact_no, e.ent_tiers_fact, e.ent_c_index") + kTransferFrom +
        QStringLiteral(" LEFT JOIN strarticle a ON a.a_index = f.f_article");
    return {select, transferCondition(selection, level),
            QStringLiteral("c_num_facture, c_fact_ir")};
}

ReportTotals transferSelectionTotals(const store::Store& store,
                                     const invoicing::SelectionCondition& selection,
                                     const QString& level) {
    const store::Condition where = transferCondition(selection, level);
    const auto row =
        store.selectOne(QStringLiteral("SELECT COUNT(*), CAST(COALESCE(SUM(f.f_montant), 0) AS "
                                       "BIGINT), CAST(COALESCE(SUM(f.f_qte), 0) AS BIGINT)") +
                            kTransferFrom + where.where(),
                        where.params());
    ReportTotals t;
    if (row) {
        t.lines = row->value(0).toInt();
        t.amount = Money::fromVariant(row->value(1));
        t.quantity = row->value(2).toLongLong();
    }
    return t;
}

std::vector<LinesWithoutAccount> linesWithoutAccount(const store::Store& store,
                                                     const invoicing::SelectionCondition& selection,
                                                     const QString& level) {
    const QString account = lineTariff(QStringLiteral("t_kvarn"));
    const store::Condition where =
        transferCondition(selection, level) &&
        store::Condition(QStringLiteral("COALESCE(trim(%1), '') = ''").arg(account));
    std::vector<LinesWithoutAccount> out;
    for (const auto& r :
         store.select(QStringLiteral("SELECT f.f_article, f.f_nature, COUNT(*)") + kTransferFrom +
                          where.where() +
                          QStringLiteral(" GROUP BY f.f_article, f.f_nature ORDER BY f.f_article, "
                                         "f.f_nature"),
                      where.params()))
        out.push_back(
            {r.value(0).toString().trimmed(), r.value(1).toString().trimmed(), r.value(2).toInt()});
    return out;
}

QString linesWithoutAccountText(const std::vector<LinesWithoutAccount>& lines) {
    int total = 0;
    QStringList which;
    for (const auto& l : lines) {
        total += l.lines;
        which << QStringLiteral("article %1, nature %2 : %3 ligne(s)")
                     .arg(l.article, l.nature.isEmpty() ? QStringLiteral("(aucune)") : l.nature)
                     .arg(l.lines);
    }
    return QStringLiteral(
               "%1 ligne(s) à transférer n'ont pas de compte KVARN dans les tarifs ; elles "
               "seront écrites sans compte :\n%2\nComplétez les tarifs de ces articles pour "
               "qu'elles en aient un.")
        .arg(total)
        .arg(which.join(QChar('\n')));
}

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
    const bool national = layout == TransferLayout::National;
    // One statement reads what the file holds: one consistent view of the
    // invoices, whatever other workstations commit meanwhile.
    const store::Condition where = transferCondition(selection, level);
    const store::Rows rows = store.select(fileStatement(layout, where), where.params());
    if (rows.empty()) throw Refusal(kNothingToTransfer);

    TransferContent content;
    if (national) {
        content = nationalTransfer(fileLines<NationalLine>(
            rows,
            {"c_num_facture", "x_lead", "x_header", "c_numero", "x_competition", "f_montant",
             "t_kvarn", "t_jkv", "ent_fact_no"},
            [](const store::Row& r, const std::vector<int>& at) {
                return NationalLine{r.value(at[0]).toString(), r.value(at[1]).toString(),
                                    optionalText(r, at[2]),    r.value(at[3]).toString(),
                                    r.value(at[4]).toString(), Money::fromVariant(r.value(at[5])),
                                    r.value(at[6]).toString(), r.value(at[7]).toString(),
                                    optionalText(r, at[8])};
            }));
    } else {
        content = leagueTransfer(
            fileLines<LeagueLine>(
                rows,
                {"c_num_facture", "x_lead", "c_date_facture", "f_tiers_fact", "f_montant",
                 "t_kvarn", "t_jkv", "ent_fact_no"},
                [](const store::Row& r, const std::vector<int>& at) {
                    return LeagueLine{r.value(at[0]).toString(),          r.value(at[1]).toString(),
                                      r.value(at[2]).toString(),          r.value(at[3]).toString(),
                                      Money::fromVariant(r.value(at[4])), r.value(at[5]).toString(),
                                      r.value(at[6]).toString(),          optionalText(r, at[7])};
                }),
            customerAccounts(store));
    }
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
