// The accounting reports on years of invoicing: a demo installation with a
// history of LINES invoice lines (init-demo --scale), then, for the last
// whole season with every filter on "Tous", the median time of
//   - the journal's refresh (totals and the grid's first page, as the window does),
//   - the statistics in each mode (the grouped summary),
//   - the transfer's selection (totals and first page),
//   - the writing of the season's transfer file (national, then league layout),
// each beside the bare SELECT of the same rows through the same connection.
//
//   bench_accounting [LINES] [DIR]   (defaults: 600000, a temporary folder;
//                                     an existing DIR is used as it is)

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <vector>

#include "accounting/AccountingTransfer.h"
#include "accounting/ReportSql.h"
#include "accounting/SalesJournal.h"
#include "accounting/TurnoverStatistics.h"
#include "app/ui/StoreTableModel.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"
#include "shell/ScaleDemo.h"
#include "store/Seasons.h"

using namespace orve;

namespace {

constexpr int kRuns = 7;

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// Processor time of the program, to tell the work from the waiting on a
// machine shared with other work.
double cpuMs() {
#if defined(Q_OS_UNIX)
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
#else
    return 0;
#endif
}

struct Timing {
    double ms = 0;     // median wall-clock time
    double cpuMs = 0;  // median processor time
};

// Median milliseconds of `work`, after one run that warms the caches.
Timing timed(const std::function<void()>& work, const std::function<void()>& before = {}) {
    if (before) before();
    work();
    std::vector<double> ms, cpu;
    for (int i = 0; i < kRuns; ++i) {
        if (before) before();
        QElapsedTimer t;
        const double c = cpuMs();
        t.start();
        work();
        ms.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
        cpu.push_back(cpuMs() - c);
    }
    return {median(ms), median(cpu)};
}

// Every row of a statement, read as any listing reads them.
size_t bare(const store::Store& store, const QString& sql, const store::Params& params) {
    return store.select(sql, params).size();
}

void line(const QString& what, Timing t, Timing bare, size_t rows) {
    std::printf("%-46s %9.1f %8.1f %12.1f %8.1f %8.2f %8zu\n", qPrintable(what), t.ms, t.cpuMs,
                bare.ms, bare.cpuMs, t.ms / bare.ms, rows);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const qint64 lines = argc > 1 ? std::atoll(argv[1]) : 600000;
    const Clock clock = Clock::fromEnvironment();
    const QDate today = clock.today();

    QTemporaryDir temporary;
    QString home = argc > 2 ? QString::fromLocal8Bit(argv[2]) : temporary.filePath("inst");
    if (!QFileInfo(QDir(home).filePath("chemin_base.txt")).exists()) {
        std::printf("installation de démonstration de %lld lignes dans %s…\n",
                    static_cast<long long>(lines), qPrintable(QDir::toNativeSeparators(home)));
        std::fflush(stdout);
        QElapsedTimer t;
        t.start();
        shell::createDemoInstallation(home, today);
        const shell::ScaleReport r = shell::addScaleHistory(home, today, lines);
        std::printf("%s (init-demo --scale : %.1f s en tout)\n", qPrintable(shell::describe(r)),
                    static_cast<double>(t.elapsed()) / 1000.0);
    }
    auto session = shell::openSession(home, clock);
    store::Store& store = session->store();
    const QString season = QString::number(store::seasonOf(today) - 1);

    invoicing::SelectionState state;
    state.season = season;
    const invoicing::SelectionCondition selection = invoicing::buildSelectionCondition(state);
    const store::Params seasonOnly{season};
    const QString seasonLines = QStringLiteral("SELECT f.*") + accounting::sql::kCompetitionLines +
                                QStringLiteral(" WHERE c.c_saison = ?");
    const QString seasonLinesInPeriod =
        seasonLines + QStringLiteral(" AND f.f_tri_date >= ? AND f.f_tri_date <= ?");
    const QString untransferred =
        QStringLiteral(
            "SELECT f.* FROM strcompetition c JOIN strentete e ON e.ent_c_index = "
            "c.c_index JOIN strfacture f ON f.f_num_facture = ") +
        accounting::sql::kPaddedHeaderNumber +
        QStringLiteral(" WHERE c.c_saison = ? AND COALESCE(e.ent_compta, 'N') <> 'O'");

    const qint64 total = store.scalar("SELECT COUNT(*) FROM strfacture").toLongLong();
    std::printf(
        "\n%lld lignes de facture ; saison %s, tous les filtres sur « Tous » ; médianes "
        "de %d mesures\n\n",
        static_cast<long long>(total), qPrintable(season), kRuns);
    std::printf("%-46s %9s %8s %12s %8s %8s %8s\n", "", "ms", "ms CPU", "SELECT nu ms", "ms CPU",
                "rapport", "lignes");

    // The journal, as its window refreshes: totals, then the grid's first page.
    app::StoreTableModel grid;
    Timing bareMs = timed([&] { bare(store, seasonLines, seasonOnly); });
    const size_t seasonRows = bare(store, seasonLines, seasonOnly);
    line(QStringLiteral("journal des ventes (rafraîchissement)"), timed([&] {
             accounting::journalTotals(store, selection);
             grid.setQuery(store, accounting::journalQuery(selection));
         }),
         bareMs, seasonRows);

    for (int mode = 1; mode <= 4; ++mode) {
        accounting::StatisticsRequest request;
        request.mode = accounting::statisticsModeOf(QString::number(mode));
        request.selection = selection;
        request.period = accounting::statisticsPeriod(season, {}, {});
        const store::Params params{season, request.period.from, request.period.to};
        bareMs = timed([&] { bare(store, seasonLinesInPeriod, params); });
        const QString what = QStringLiteral("statistiques mode %1 (%2)")
                                 .arg(mode)
                                 .arg(accounting::summaryCaption(request.mode).section(' ', -1));
        line(what, timed([&] { accounting::computeStatistics(store, request); }), bareMs,
             bare(store, seasonLinesInPeriod, params));
    }

    bareMs = timed([&] { bare(store, untransferred, seasonOnly); });
    line(QStringLiteral("transfert : sélection (rafraîchissement)"), timed([&] {
             accounting::transferSelectionTotals(store, selection, QStringLiteral("JKV"));
             grid.setQuery(store, accounting::transferSelectionQuery(
                                      selection, accounting::TransferLayout::National,
                                      QStringLiteral("JKV")));
         }),
         bareMs, bare(store, untransferred, seasonOnly));

    // The whole season's file: its invoices put back before each run, their
    // marks as they were afterwards.
    const QString first = season + QStringLiteral("000000");
    const QString last = season + QStringLiteral("999999");
    std::map<std::pair<QString, QString>, std::vector<QString>> marks;
    for (const auto& r : store.select("SELECT ent_fact_no, ent_compta, c_transfert FROM strentete "
                                      "WHERE ent_fact_no BETWEEN ? AND ?",
                                      {first, last}))
        marks[{r.value(1).toString(), r.value(2).toString()}].push_back(r.value(0).toString());
    auto putBack = [&] {
        store.exec(
            "UPDATE strentete SET ent_compta = 'N', c_transfert = NULL WHERE ent_fact_no "
            "BETWEEN ? AND ?",
            {first, last});
        store.exec("DELETE FROM strtransfert");
    };
    QTemporaryDir files;
    for (const auto layout :
         {accounting::TransferLayout::National, accounting::TransferLayout::League}) {
        putBack();
        bareMs = timed([&] { bare(store, untransferred, seasonOnly); });
        const size_t rows = bare(store, untransferred, seasonOnly);
        accounting::TransferResult result;
        const Timing ms = timed(
            [&] {
                // The scale history's invoices are all the national level's.
                result = accounting::writeTransfer(store, files.path(), layout,
                                                   QStringLiteral("JKV"), selection, today);
            },
            [&] {
                putBack();
                for (const QString& f : QDir(files.path()).entryList(QDir::Files))
                    QFile::remove(QDir(files.path()).filePath(f));
            });
        const QString what =
            QStringLiteral("fichier de transfert %1 (%2 lignes)")
                .arg(layout == accounting::TransferLayout::National ? "national" : "ligue")
                .arg(result.lines);
        line(what, ms, bareMs, rows);
    }
    putBack();
    for (const auto& [mark, numbers] : marks)
        for (size_t i = 0; i < numbers.size(); i += 400) {
            QStringList marksSql;
            store::Params params{mark.first, mark.second.isEmpty() ? QVariant() : mark.second};
            for (size_t k = i; k < std::min(numbers.size(), i + 400); ++k) {
                marksSql << "?";
                params.push_back(numbers[k]);
            }
            store.exec(QStringLiteral("UPDATE strentete SET ent_compta = ?, c_transfert = ? "
                                      "WHERE ent_fact_no IN (%1)")
                           .arg(marksSql.join(',')),
                       params);
        }
    std::printf(
        "\nobjectifs : chaque rafraîchissement < 1000 ms et < 2 × le SELECT nu ; fichier "
        "de transfert d'une saison < 2000 ms\n");
    return 0;
}
