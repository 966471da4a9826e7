#include "imports/DepartmentImport.h"

#include <QDir>
#include <QHash>

#include "store/Formats.h"
#include "store/PreparedStatement.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

constexpr int kFieldCount = 4;

}  // namespace

DepartmentImport::DepartmentImport(store::Store& store, const QDate& today)
    : m_store(store), m_today(format::displayDate(today)) {}

ImportReport DepartmentImport::load(const ImportFile& file) {
    ImportReport report;
    report.file = file.path();
    report.encoding = file.encodingName();
    store::Store& scratch = m_store.scratch();
    store::Transaction tx(scratch);
    scratch.exec(QStringLiteral("DELETE FROM strtxt"));
    auto insert = store::PreparedStatement::insertInto(scratch, QStringLiteral("strtxt"),
                                                       {QStringLiteral("x_texte")});
    // Every line keeps its place, blank ones too, so that the validation
    // names lines by the numbers an editor shows.
    for (const auto& line : file.lines()) {
        insert.exec({line.text.trimmed()});
        ++report.read;
    }
    tx.commit();
    return report;
}

QString DepartmentImport::target() const {
    if (m_store.address().shared())
        return QStringLiteral("base partagée %1 (tiers)").arg(m_store.address().display());
    return QDir::toNativeSeparators(m_store.path(store::File::Tiers));
}

int DepartmentImport::loadedLines() const {
    return m_store.scratch().scalar(QStringLiteral("SELECT count(*) FROM strtxt")).toInt();
}

ImportReport DepartmentImport::apply(const ImportProgress& progress) {
    ImportReport report;
    const store::Rows loaded =
        m_store.scratch().select(QStringLiteral("SELECT x_texte FROM strtxt ORDER BY rowid"));
    if (loaded.empty())
        throw Refusal(
            QStringLiteral("Aucune ligne à valider : intégrez d'abord le fichier des "
                           "comités départementaux."));
    struct Change {
        QString department;
        QString league;
        QString district;
    };
    std::vector<Change> changes;
    store::Transaction tx(m_store);
    // Read inside the transaction, so the check and the writing see the same committees.
    QHash<QString, QString> departments;  // upper-case number → as stored
    for (const auto& r : m_store.select(QStringLiteral("SELECT de_no FROM strdept")))
        departments.insert(r.value(0).toString().toUpper(), r.value(0).toString());

    int number = 0;
    const int lines = static_cast<int>(loaded.size());
    for (const auto& row : loaded) {
        const ImportFile::Line line{++number, row.value(0).toString()};
        if (progress && number % 1000 == 0 && !progress(number, lines))
            throw Refusal(kImportCancelled);
        ++report.read;
        if (const QString why = unreadableLine(line); !why.isEmpty()) {
            report.skip(line, why);
            continue;
        }
        const QStringList f = ImportFile::fields(line.text, kFieldCount);
        // "1", "01" and "001" are all committee 001; a number that is not one,
        // or none at all (a line without ";"), names no committee.
        const int n = fieldNumber(f[1], 999);
        const QString department = n >= 0 ? padded(n, 3) : f[1];
        const auto stored = departments.constFind(department.toUpper());
        if (stored == departments.constEnd()) {
            report.skip(line, QStringLiteral("Dept ") + department + QStringLiteral(" inconnu"));
            continue;
        }
        if (const QString why = overlongField(f, {3, 4}); !why.isEmpty()) {
            report.skip(line, why);
            continue;
        }
        // The league is written as the file gives it, known here or not: the
        // federation's file is the reference for the committees' leagues.
        changes.push_back({*stored, f[2], f[3]});
    }

    store::PreparedStatement update(
        m_store, QStringLiteral("UPDATE strdept SET de_region = ?, de_district = ?, "
                                "de_date_enreg = ? WHERE de_no = ?"));
    const int total = static_cast<int>(changes.size());
    if (progress && !progress(0, total)) throw Refusal(kImportCancelled);
    int done = 0;
    for (const Change& c : changes) {
        update.exec({c.league, c.district, m_today, c.department});
        ++report.updated;
        if (++done % 500 == 0 && progress && !progress(done, total))
            throw Refusal(kImportCancelled);
    }
    if (progress && !progress(total, total)) throw Refusal(kImportCancelled);
    tx.commit();
    return report;
}

}  // namespace orve::imports
