#include "imports/ClubImport.h"

#include <QHash>
#include <QSet>

#include "store/Formats.h"
#include "store/PreparedStatement.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

constexpr int kFieldCount = 25;

// Written on new and existing clubs alike, in this order; the league and
// district come last so that a club of an unknown committee can keep its own.
const QStringList kCommonColumns{
    "club_date_enreg", "club_num",       "club_lr",           "club_dept",  "club_type",
    "club_nom",        "club_bowling",   "club_bowling_code", "club_dirig", "club_mail1",
    "club_mail2",      "club_president", "club_ad1",          "club_ad2",   "club_ad3",
    "club_ad4",        "club_cp",        "club_ville"};
const QStringList kLeagueColumns{"club_region", "club_district"};

QString updateSql(const QStringList& columns) {
    QStringList sets;
    for (const QString& c : columns) sets << c + QStringLiteral(" = ?");
    return QStringLiteral("UPDATE strclub SET %1 WHERE club_code = ?").arg(sets.join(','));
}

struct Committee {
    QString league;
    QString district;
};

QHash<QString, Committee> committees(const store::Store& store) {
    QHash<QString, Committee> out;
    for (const auto& r :
         store.select(QStringLiteral("SELECT de_no, de_region, de_district FROM strdept")))
        out.insert(r.value(0).toString().toUpper(), {r.value(1).toString(), r.value(2).toString()});
    return out;
}

// "00000": a number is zero-padded, anything else (a foreign postcode) kept.
QString postcode(const QString& field) {
    return fieldNumber(field, 99999) >= 0 && field.size() < 5
               ? QString(5 - field.size(), QChar('0')) + field
               : field;
}

}  // namespace

ClubImport::ClubImport(store::Store& store, const QDate& today)
    : m_store(store), m_today(format::displayDate(today)) {}

QString ClubImport::clubCode(const QString& departmentField, int department, int club) {
    return QStringLiteral("CL") + padded(department, departmentField.size() == 3 ? 3 : 2) +
           padded(club, 3);
}

void ClubImport::check(const ImportFile& file, const ImportProgress& progress) {
    m_report = ImportReport();
    m_report.file = file.path();
    m_report.encoding = file.encodingName();
    m_clubs.clear();
    const QHash<QString, Committee> known = committees(m_store);
    const int total = static_cast<int>(file.lines().size());
    for (const auto& line : file.lines()) {
        if (progress && line.number % 1000 == 0 && !progress(line.number, total))
            throw Refusal(kImportCancelled);
        if (line.number == 1) continue;  // the header
        ++m_report.read;
        if (const QString why = unreadableLine(line); !why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        const QStringList f = ImportFile::fields(line.text, kFieldCount);
        QString why = numberProblem(QStringLiteral("numéro de département"), f[0], 999);
        if (why.isEmpty()) why = numberProblem(QStringLiteral("numéro de club"), f[1], 999);
        if (why.isEmpty()) why = overlongField(f, {3, 4, 5, 6, 7, 8, 9, 10, 22, 23, 24});
        if (!why.isEmpty()) {
            m_report.skip(line, why);
            continue;
        }
        const int department = fieldNumber(f[0], 999);
        const int club = fieldNumber(f[1], 999);
        Club c;
        c.code = clubCode(f[0], department, club);
        c.account = padded(department, 3) + padded(club, 3);
        c.department = padded(department, 3);
        c.values = store::Params{m_today,
                                 padded(club, 3),
                                 QStringLiteral("00"),  // deliberately, whatever the file says
                                 c.department,
                                 f[2].left(1),
                                 f[3],
                                 QStringLiteral(" "),
                                 f[23],
                                 QStringLiteral("0"),
                                 f[22],
                                 f[21],
                                 f[9],
                                 f[4],
                                 f[5],
                                 f[6],
                                 QStringLiteral(" "),
                                 postcode(f[7]),
                                 f[8]};
        if (!known.contains(c.department))
            m_report.note(line, QStringLiteral("Dept %1 inconnu : club importé sans ligue ni "
                                               "district")
                                    .arg(c.department));
        m_clubs.push_back(std::move(c));
    }
}

ImportReport ClubImport::write(const ImportProgress& progress) {
    ImportReport report = m_report;
    const int total = toWrite();
    store::Transaction tx(m_store);
    // Read inside the transaction: what another workstation saved meanwhile counts.
    const QHash<QString, Committee> known = committees(m_store);
    QSet<QString> existing;
    for (const auto& r : m_store.select(QStringLiteral("SELECT club_code FROM strclub")))
        existing.insert(r.value(0).toString().toUpper());
    auto insert = store::PreparedStatement::insertInto(
        m_store, QStringLiteral("strclub"),
        kCommonColumns + kLeagueColumns + QStringList{"club_code", "club_compta"});
    store::PreparedStatement update(m_store, updateSql(kCommonColumns + kLeagueColumns));
    store::PreparedStatement updateKeepingLeague(m_store, updateSql(kCommonColumns));
    if (progress && !progress(0, total)) throw Refusal(kImportCancelled);
    int done = 0;
    store::Params values;
    for (const Club& c : m_clubs) {
        values = c.values;
        const auto committee = known.constFind(c.department);
        const bool isNew = !existing.contains(c.code);
        if (committee != known.constEnd() || isNew) {
            values.emplace_back(committee != known.constEnd() ? committee->league : QString());
            values.emplace_back(committee != known.constEnd() ? committee->district : QString());
        }
        if (isNew) {
            // The account is given once, at creation: a re-import never changes it.
            values.emplace_back(c.code);
            values.emplace_back(c.account);
            insert.exec(values);
            existing.insert(c.code);
            ++report.created;
        } else {
            values.emplace_back(c.code);
            (committee != known.constEnd() ? update : updateKeepingLeague).exec(values);
            ++report.updated;
        }
        if (++done % 500 == 0 && progress && !progress(done, total))
            throw Refusal(kImportCancelled);
    }
    if (progress && !progress(total, total)) throw Refusal(kImportCancelled);
    tx.commit();
    return report;
}

}  // namespace orve::imports
