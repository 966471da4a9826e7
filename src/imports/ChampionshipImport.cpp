#include "imports/ChampionshipImport.h"

#include <QRegularExpression>
#include <QSet>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

constexpr int kFieldCount = 7;
constexpr int kMostLines = 9999;

QString key(const QString& code, const QString& nature) {
    return code.toUpper() + '|' + nature.toUpper();
}

}  // namespace

ChampionshipSettings ChampionshipSettings::fromTexts(const QString& season,
                                                     const QString& finalDate, const QDate& today) {
    const int year = fieldNumber(season.trimmed(), 9999);
    if (season.trimmed().size() != 4 || year < 1000)
        throw Refusal(
            QStringLiteral("La saison « %1 » n'est pas une année.").arg(format::echoed(season)));
    const auto date = format::parseDisplayDate(finalDate);
    if (!date)
        throw Refusal(QStringLiteral("La date de la finale « %1 » n'est pas une date (jj/mm/aaaa).")
                          .arg(format::echoed(finalDate)));
    return {year, *date, today};
}

QString defaultFinalDate(int season) {
    return kChampionshipFinalDayMonth + QString::number(season);
}

ChampionshipImport::ChampionshipImport(store::Store& store, ChampionshipSettings settings)
    : m_store(store), m_settings(settings) {}

QSet<QString> ChampionshipImport::existing() const {
    QSet<QString> out;
    for (const auto& r : m_store.select(
             QStringLiteral("SELECT c_codification, c_nature FROM strcompetition WHERE c_saison = "
                            "? AND index_reference = ? AND c_nature IN (?, ?)"),
             {QString::number(m_settings.season), kMasterReference, kWomenNature, kMenNature}))
        out.insert(key(r.value(0).toString(), r.value(1).toString()));
    return out;
}

void ChampionshipImport::check(const ImportFile& file, const ImportProgress& progress) {
    static const QRegularExpression club(
        QStringLiteral("^(CL\\d{5,6})(?!\\d)\\s*(?:[-:]\\s*)?(.*)$"),
        QRegularExpression::CaseInsensitiveOption);
    m_report = ImportReport();
    m_report.file = file.path();
    m_report.encoding = file.encodingName();
    m_entries.clear();
    QSet<QString> clubs;
    for (const auto& r : m_store.select(QStringLiteral("SELECT club_code FROM strclub")))
        clubs.insert(r.value(0).toString().toUpper());
    QStringList previous;
    int previousNumber = 0;
    const int total = static_cast<int>(file.lines().size());
    for (const auto& line : file.lines()) {
        if (progress && line.number % 1000 == 0 && !progress(line.number, total))
            throw Refusal(kImportCancelled);
        ++m_report.read;
        if (const QString why = unreadableLine(line); !why.isEmpty()) {
            m_report.skip(line, why);
            previous.clear();
            continue;
        }
        const QStringList f = ImportFile::fields(line.text, kFieldCount);
        if (f == previous) {
            m_report.skip(line, QStringLiteral("répète la ligne %1").arg(previousNumber));
            continue;
        }
        previous = f;
        previousNumber = line.number;
        if (f[0].isEmpty()) {
            m_report.skip(line, QStringLiteral("club absent"));
            continue;
        }
        const auto m = club.match(f[0]);
        if (!m.hasMatch()) {
            m_report.skip(line, QStringLiteral("code club « %1 » invalide (CL suivi du "
                                               "département et du numéro du club attendu)")
                                    .arg(format::echoed(f[0].section(' ', 0, 0))));
            continue;
        }
        if (const QString why = overlongField(f, {1}); !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        Entry e;
        e.code = m.captured(1).toUpper();
        e.name = m.captured(2).trimmed();
        QString wrong;
        for (int i = 0; i < 6 && wrong.isEmpty(); ++i) {
            const QString& text = f[i + 1];
            if (!text.isEmpty())
                wrong = numberProblem(QStringLiteral("nombre de lignes (champ %1)").arg(i + 2),
                                      text, kMostLines);
            (i < 3 ? e.women[i] : e.men[i - 3]) =
                QString::number(text.isEmpty() ? 0 : fieldNumber(text, kMostLines));
        }
        if (!wrong.isEmpty()) {
            m_report.skip(line, wrong);
            continue;
        }
        // The invoicing finds the club by its code: say so now if it will not.
        if (!clubs.contains(e.code) && e.code != kNoParty)
            m_report.note(line, QStringLiteral("club %1 inconnu : compétitions importées sans "
                                               "club à facturer")
                                    .arg(e.code));
        m_entries.push_back(std::move(e));
    }
    const QSet<QString> stored = existing();
    m_duplicates = 0;
    for (const Entry& e : m_entries)
        for (const QString& nature : {kWomenNature, kMenNature})
            if (stored.contains(key(e.code, nature))) ++m_duplicates;
}

ImportReport ChampionshipImport::write(bool again, const ImportProgress& progress) {
    ImportReport report = m_report;
    const int total = static_cast<int>(m_entries.size());
    store::Transaction tx(m_store);
    const QSet<QString> stored = again ? QSet<QString>() : existing();
    CompetitionWriter writer(m_store);
    const QString season = QString::number(m_settings.season);
    const QString prefix = indexPrefix(season, kChampionshipType);
    ImportedCompetition c;
    c.season = season;
    c.type = kChampionshipType;
    c.title = kChampionshipTitle;
    setFinalDate(c, m_settings.finalDate);
    c.organiserKind = QStringLiteral("C");
    c.registered = kChampionshipRegistrationDate;
    if (progress && !progress(0, total)) throw Refusal(kImportCancelled);
    int done = 0;
    for (const Entry& e : m_entries) {
        c.codification = e.code;
        c.organiserName = e.name;
        for (const QString& nature : {kWomenNature, kMenNature}) {
            if (stored.contains(key(e.code, nature))) continue;
            const QString(&counts)[3] = nature == kWomenNature ? e.women : e.men;
            c.nature = nature;
            c.cod3 = counts[0];
            c.cod4 = counts[1];
            c.cod5 = counts[2];
            writer.add(prefix, c);
            ++report.created;
        }
        if (++done % 250 == 0 && progress && !progress(done, total))
            throw Refusal(kImportCancelled);
    }
    if (progress && !progress(total, total)) throw Refusal(kImportCancelled);
    tx.commit();
    return report;
}

}  // namespace orve::imports
