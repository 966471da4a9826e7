// Invoices one competition of club rows through the real rules, as the
// competition window's button does: each invoice with its lines and its row
// written in one transaction, the documents drawn on every core, the rows
// marked "F" once their files are on disk. Prints the invoices per second,
// the median time per invoice (between two invoices of the run) and what one
// document weighs.
//
//   bench_competition_invoicing [CLUBS] [RUNS] [LOGIN]   (defaults: 1000 3 gestu)
//
// LOGIN chooses the letterhead of the documents (the national one for
// gestu, the league paper for ligue06).

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "app/Session.h"
#include "app/SignIn.h"
#include "competitions/CompetitionCalculation.h"
#include "competitions/CompetitionInvoicing.h"
#include "competitions/CompetitionRegister.h"
#include "invoicing/DocumentSettings.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"

using namespace orve;

namespace {

// CPU seconds of the whole process, and of the calling (store) thread alone.
double cpuSeconds(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

// A league of its own with `count` clubs and its operator's competition,
// counts typed on every row and calculated.
QString prepare(store::Store& store, const reference::Viewer& viewer, int count) {
    {
        store::Transaction tx(store);
        for (int i = 0; i < count; ++i) {
            // Seven characters, as club codes are.
            const QString code = QStringLiteral("CL9%1").arg(i, 4, 10, QChar('0'));
            store.insert("strclub",
                         {{"club_code", code},
                          {"club_nom", QStringLiteral("Bowling Club d'essai n° %1").arg(i)},
                          {"club_region", viewer.league},
                          {"club_district", "D1"},
                          {"club_dept", "096"},
                          {"club_president", QStringLiteral("Camille Martin")},
                          {"club_ad1", QStringLiteral("Maison des associations")},
                          {"club_ad2", QStringLiteral("%1 avenue du Stade").arg(i + 1)},
                          {"club_cp", "96000"},
                          {"club_ville", QStringLiteral("Ville-d'Essai")},
                          {"club_mail1", QStringLiteral("club%1@essai.example").arg(i)}});
        }
        tx.commit();
    }
    competitions::CompetitionRecord r;
    r.season = "2027";
    r.title = QStringLiteral("Championnat des clubs");
    r.composition = "4";
    r.nature = "CDCNH";
    r.eliminatoryLines = "6";
    r.finalLines = "3";
    r.date = "16/05/2027";
    const QString index = competitions::saveCompetition(store, viewer, r).index;
    store.exec(
        "UPDATE strcompetition SET c_nb_equipe = 2, c_nb_equipe_eliminatoire = 1, "
        "c_nb_equipe_finale = 1 WHERE index_reference = ?",
        {index});
    competitions::calculateCompetition(store, viewer, index, r.nature, false);
    return index;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int runs = argc > 2 ? std::atoi(argv[2]) : 3;
    const QString login = argc > 3 ? QString::fromLocal8Bit(argv[3]) : QStringLiteral("gestu");
    const QDate today(2026, 11, 21);
    std::printf("competition of %d club rows, %d run(s), %d core(s), documents as %s\n", count,
                runs, QThread::idealThreadCount(), qPrintable(login));

    for (int run = 1; run <= runs; ++run) {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("inst"));
        shell::createDemoInstallation(home, today);
        auto session = shell::openSession(home, Clock::fixed(today));
        // The operator of a league of its own, whose clubs are those of the bench.
        const reference::Viewer viewer{"bench", "LR96", "D1"};
        app::actAs(*session, login);
        store::Store& store = session->store();
        const QString index = prepare(store, viewer, count);
        const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);

        std::vector<qint64> between;  // ns between two invoices started
        between.reserve(count);
        QElapsedTimer step;
        QElapsedTimer all;
        const double processBefore = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const double storeBefore = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        all.start();
        step.start();
        const competitions::InvoicingOutcome out = competitions::invoiceCompetition(
            store, viewer, settings, index, {Money::fromCents(1000), Money::fromCents(250)}, today,
            [&](int, int) {
                between.push_back(step.nsecsElapsed());
                step.restart();
                return true;
            });
        const double wall = all.nsecsElapsed() / 1e9;
        const double storeCpu = cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - storeBefore;
        const double processCpu = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processBefore;
        // The first interval is the run's start; the drain's calls come in groups.
        std::vector<double> ms;
        for (size_t i = 1; i < between.size() && i < out.numbers.size(); ++i)
            ms.push_back(between[i] / 1e6);
        std::sort(ms.begin(), ms.end());
        const int printed = store
                                .scalar(
                                    "SELECT COUNT(*) FROM strcompetition WHERE "
                                    "index_reference = ? AND c_facture = 'F'",
                                    {index})
                                .toInt();
        std::printf("run %d: %zu invoices, %d rows \"F\", wall %.2f s\n", run, out.numbers.size(),
                    printed, wall);
        std::printf("  invoices per second   : %.0f (all in: records, PDF files, marks)\n",
                    out.numbers.size() / wall);
        std::printf("  median per invoice    : %.2f ms (90th percentile %.2f ms)\n",
                    ms.empty() ? 0.0 : ms[ms.size() / 2],
                    ms.empty() ? 0.0 : ms[ms.size() * 9 / 10]);
        const double n = static_cast<double>(out.numbers.size());
        std::printf("  wall per invoice      : %.2f ms\n", wall * 1000 / n);
        // What the machine's other users take shows in the wall time only:
        // the CPU time tells what the run itself costs.
        std::printf("  CPU per invoice       : %.2f ms (store thread %.2f ms, documents %.2f ms)\n",
                    processCpu * 1000 / n, storeCpu * 1000 / n, (processCpu - storeCpu) * 1000 / n);
        std::printf("  CPU-bound rate        : %.0f invoices per second on %d idle core(s)\n",
                    n / processCpu * QThread::idealThreadCount(), QThread::idealThreadCount());
        if (!out.files.empty())
            std::printf("  file size             : %lld bytes (%s)\n",
                        static_cast<long long>(QFileInfo(out.files.front()).size()),
                        qPrintable(QFileInfo(out.files.front()).fileName()));
    }
    return 0;
}
