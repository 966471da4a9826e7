#include "imports/PrivateImport.h"

#include "store/Formats.h"
#include "store/Money.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

constexpr int kFieldCount = 12;
constexpr int kLargestNumber = 99999;
constexpr int kMostPlayers = 99999;

QString key(const QString& season, const QString& cod1, const QString& cod2) {
    return season + '|' + cod1.toUpper() + '|' + cod2.toUpper();
}

// The kind of organiser a code names, as the register keeps it.
QString organiserKind(const QString& code) {
    if (code.startsWith(QStringLiteral("CL"), Qt::CaseInsensitive)) return QStringLiteral("C");
    if (code.startsWith(QStringLiteral("CD"), Qt::CaseInsensitive)) return QStringLiteral("D");
    if (code.startsWith(QStringLiteral("LR"), Qt::CaseInsensitive)) return QStringLiteral("R");
    return QStringLiteral(" ");
}

// "CL13001 Bowling Club Phocéen", "CD13 - Comité …", "BOW0131 …": two or
// three letters and digits make the party's code, the rest its name; an
// organiser without such a code is a name only.
void splitOrganiser(const QString& field, ImportedCompetition& c) {
    qsizetype i = 0;
    while (i < field.size() && i < 3 && field[i].isLetter() && field[i].unicode() < 128) ++i;
    qsizetype j = i;
    while (j < field.size() && field[j].isDigit() && field[j].unicode() < 128) ++j;
    if (i < 2 || j == i) {
        c.organiserName = field;
        return;
    }
    c.codification = field.left(j).toUpper();
    QStringView rest = QStringView(field).mid(j).trimmed();
    if (rest.startsWith(u'-') || rest.startsWith(u':')) rest = rest.mid(1).trimmed();
    c.organiserName = rest.toString();
}

}  // namespace

PrivateImport::PrivateImport(store::Store& store) : m_store(store) {}

std::optional<QDate> PrivateImport::finalDate(const QString& text) {
    // d/m/yy or dd/mm/yyyy: day and month of one or two digits, a year of two or four.
    const QStringList parts = text.trimmed().split('/');
    if (parts.size() != 3) return std::nullopt;
    const int day = parts[0].size() <= 2 ? fieldNumber(parts[0], 31) : -1;
    const int month = parts[1].size() <= 2 ? fieldNumber(parts[1], 12) : -1;
    const bool yearShape = parts[2].size() == 2 || parts[2].size() == 4;
    if (day < 0 || month < 0 || !yearShape || fieldNumber(parts[2], 9999) < 0) return std::nullopt;
    const QDate d(2000 + parts[2].right(2).toInt(), month, day);
    if (!d.isValid()) return std::nullopt;
    return d;
}

QSet<QString> PrivateImport::existing() const {
    QSet<QString> out;
    for (const auto& r : m_store.select(
             QStringLiteral("SELECT c_saison, c_cod1, c_cod2 FROM strcompetition WHERE c_nature "
                            "= ? AND index_reference = ?"),
             {kPrivateNature, kMasterReference}))
        out.insert(key(r.value(0).toString(), r.value(1).toString(), r.value(2).toString()));
    return out;
}

void PrivateImport::check(const ImportFile& file, const ImportProgress& progress) {
    m_report = ImportReport();
    m_report.file = file.path();
    m_report.encoding = file.encodingName();
    m_rows.clear();
    const int total = static_cast<int>(file.lines().size());
    for (const auto& line : file.lines()) {
        if (progress && line.number % 1000 == 0 && !progress(line.number, total))
            throw Refusal(kImportCancelled);
        ++m_report.read;
        if (const QString why = unreadableLine(line); !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        QStringList f = ImportFile::fields(line.text, kFieldCount);
        // The organiser is what follows the line's last ";", however many
        // fields the sender put before it.
        f[11] = ImportFile::lastField(line.text);
        if (f[0].size() != 4 || fieldNumber(f[0], 9999) < 1000) {
            m_report.skip(line, f[0].isEmpty() ? QStringLiteral("saison absente")
                                               : QStringLiteral("saison « %1 » n'est pas une année")
                                                     .arg(format::echoed(f[0])));
            continue;
        }
        if (const QString why =
                numberProblem(QStringLiteral("numéro du tournoi"), f[3], kLargestNumber);
            !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        const int number = fieldNumber(f[3], kLargestNumber);
        const auto date = finalDate(f[5]);
        if (!date) {
            m_report.skip(
                line,
                QStringLiteral("date de la finale « %1 » invalide").arg(format::echoed(f[5])));
            continue;
        }
        if (const QString why = f[7].isEmpty() ? QString()
                                               : numberProblem(QStringLiteral("nombre de joueurs"),
                                                               f[7], kMostPlayers);
            !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        const int players = f[7].isEmpty() ? 0 : fieldNumber(f[7], kMostPlayers);
        const auto fixedPart = f[8].isEmpty() ? std::optional<Money>(Money()) : Money::parse(f[8]);
        if (!fixedPart || fixedPart->isNegative()) {
            m_report.skip(line, QStringLiteral("partie fixe « %1 » n'est pas un montant")
                                    .arg(format::echoed(f[8])));
            continue;
        }
        if (const QString why = overlongField(f, {2, 3, 7, 12}); !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        Row r;
        r.prefix = indexPrefix(f[0], kPrivateType);
        ImportedCompetition& c = r.competition;
        c.season = f[0];
        c.type = kPrivateType;
        c.title = f[6];
        c.nature = kPrivateNature;
        c.cod1 = f[1] + f[2];
        c.cod2 = padded(number, 5);
        setFinalDate(c, *date);
        splitOrganiser(f[11], c);
        c.organiserKind = organiserKind(f[11]);
        c.registered = kPrivateRegistrationDate;
        c.players = players;
        c.fixedPartCents = fixedPart->cents();
        m_rows.push_back(std::move(r));
    }
    const QSet<QString> stored = existing();
    m_duplicates = 0;
    for (const Row& r : m_rows)
        if (stored.contains(key(r.competition.season, r.competition.cod1, r.competition.cod2)))
            ++m_duplicates;
}

ImportReport PrivateImport::write(bool again, const ImportProgress& progress) {
    ImportReport report = m_report;
    const int total = toWrite();
    store::Transaction tx(m_store);
    const QSet<QString> stored = again ? QSet<QString>() : existing();
    CompetitionWriter writer(m_store);
    if (progress && !progress(0, total)) throw Refusal(kImportCancelled);
    int done = 0;
    for (const Row& r : m_rows) {
        const ImportedCompetition& c = r.competition;
        if (!stored.contains(key(c.season, c.cod1, c.cod2))) {
            writer.add(r.prefix, c);
            ++report.created;
        }
        if (++done % 500 == 0 && progress && !progress(done, total))
            throw Refusal(kImportCancelled);
    }
    if (progress && !progress(total, total)) throw Refusal(kImportCancelled);
    tx.commit();
    return report;
}

}  // namespace orve::imports
