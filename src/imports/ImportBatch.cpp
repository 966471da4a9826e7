#include "imports/ImportBatch.h"

#include <QDir>

#include "imports/ChampionshipImport.h"
#include "imports/ClubImport.h"
#include "imports/DepartmentImport.h"
#include "imports/PrivateImport.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

const QString kUsage = QStringLiteral(
    "import clubs|depts|cdc|prive FICHIER [--saison S] [--date jj/mm/aaaa] [--doublons oui|non]");

void print(app::BatchContext& c, const ImportReport& report, const QString& words) {
    for (const QString& line : report.printed()) c.out() << line << "\n";
    c.out() << report.closing(words) << "\n";
}

// Without an operator to answer the question, a second import of the same
// competitions happens only when asked for.
bool importAgain(app::BatchContext& c, int duplicates) {
    const QString answer = c.option(QStringLiteral("--doublons")).toLower();
    if (!answer.isEmpty() && answer != QStringLiteral("oui") && answer != QStringLiteral("non"))
        throw Refusal(
            QStringLiteral("--doublons attend oui ou non. Usage : orve-batch %1").arg(kUsage));
    const bool again = answer == QStringLiteral("oui");
    if (duplicates > 0) {
        c.out() << duplicateQuestion(duplicates) << " " << (again ? "oui" : "non") << "\n";
        if (answer.isEmpty())
            c.out() << "(seules les nouvelles sont importées ; --doublons oui pour les importer "
                       "une seconde fois)\n";
    }
    return again;
}

int importFile(app::BatchContext& c) {
    const QStringList p = c.positional();
    const QString kind = app::requiredArgument(p, 0, kUsage);
    const QString path = app::requiredArgument(p, 1, kUsage);
    if (!QStringList{"clubs", "depts", "cdc", "prive"}.contains(kind))
        throw Refusal(
            QStringLiteral("Import inconnu « %1 ». Usage : orve-batch %2").arg(kind, kUsage));
    const ImportFile file = ImportFile::read(path);
    app::Session& session = c.session();
    store::Store& store = session.store();
    c.out() << "fichier : " << QDir::toNativeSeparators(path) << " (" << file.encodingName() << ", "
            << file.lines().size() << " lignes)\n";
    // Said before the first record is written, so a watcher knows the
    // transaction is under way.
    const ImportProgress progress = [&c](int done, int total) {
        if (done == 0) {
            c.out() << "enregistrement de " << total << " ligne(s) en une opération…\n";
            c.out().flush();
        }
        return true;
    };
    const CompetitionImportSteps steps{
        [&c](int existing) { return importAgain(c, existing); }, {}, {}, progress};
    // A wrong --doublons is refused even when the file has nothing to ask about.
    if (kind == QStringLiteral("cdc") || kind == QStringLiteral("prive")) importAgain(c, 0);
    if (kind == QStringLiteral("clubs")) {
        ClubImport import(store, session.today());
        import.check(file);
        print(c, import.write(progress), kProcessingDone);
    } else if (kind == QStringLiteral("depts")) {
        DepartmentImport import(store, session.today());
        c.out() << loadingMessage(import.load(file).read) << "\n";
        print(c, import.apply(progress), kProcessingDone);
    } else if (kind == QStringLiteral("cdc")) {
        const QString given = c.option(QStringLiteral("--saison"));
        const QString season = given.isEmpty() ? QString::number(session.workingSeason()) : given;
        const QString date = c.option(QStringLiteral("--date"));
        const auto settings = ChampionshipSettings::fromTexts(
            season, date.isEmpty() ? kChampionshipFinalDayMonth + season.trimmed() : date,
            session.today());
        c.out() << "saison " << settings.season << ", finale du "
                << settings.finalDate.toString(QStringLiteral("dd/MM/yyyy")) << "\n";
        ChampionshipImport import(store, settings);
        print(c, importCompetitions(import, file, steps), kProcessingDone);
    } else {
        PrivateImport import(store);
        print(c, importCompetitions(import, file, steps), kProcessingDone);
    }
    return 0;
}

}  // namespace

void registerImportBatchCommands(app::BatchRegistry& registry) {
    registry.add({QStringLiteral("import"), kUsage + QStringLiteral(" --as LOGIN"), importFile,
                  [](const app::BatchContext& c) {
                      const QString kind = c.positional().value(0);
                      const QString entry = kind == QStringLiteral("clubs")
                                                ? QStringLiteral("mnu_fic_club_integration")
                                            : kind == QStringLiteral("depts")
                                                ? QStringLiteral("mnu_fic_dept_integration")
                                            : kind == QStringLiteral("cdc")
                                                ? QStringLiteral("mnu_fic_cdc")
                                                : QStringLiteral("mnu_fic_prive");
                      return app::BatchRights{entry, true};
                  }});
}

}  // namespace orve::imports
