// Several workstations numbering invoices at the same moment: WORKSTATIONS
// orve-batch processes each make EACH invoices of three lines
// (factures-essai) on one installation, first on a throw-away PostgreSQL
// server, then on one SQLite folder. Prints the invoices per second over all
// of them, the slowest invoice, the retries after a conflict, and what the
// numbering must never show: duplicates, gaps, invoices without their lines.
//
//   bench_concurrent_numbering [WORKSTATIONS] [EACH]     (defaults: 4 250)

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "shell/Composition.h"
#include "store/Store.h"

using namespace orve;

namespace {

const QString kBatch = QStringLiteral(ORVE_BATCH);
const QString kServerScript = QStringLiteral(ORVE_PG_SERVER_SCRIPT);
const QDate kToday(2026, 11, 21);

QProcessEnvironment environment() {
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("ORVE_TODAY"), QStringLiteral("21/11/2026"));
    return env;
}

// Runs a program to its end; its standard output, or a message on failure.
bool run(const QString& program, const QStringList& args, QString* out = nullptr) {
    QProcess p;
    p.setProcessEnvironment(environment());
    p.start(program, args);
    if (!p.waitForFinished(600000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        std::fprintf(stderr, "%s %s a échoué : %s\n", qPrintable(program),
                     qPrintable(args.join(' ')), p.readAllStandardError().constData());
        return false;
    }
    if (out) *out = QString::fromUtf8(p.readAllStandardOutput());
    return true;
}

qint64 highestNumber(const QString& home) {
    auto session = shell::openSession(home, Clock::fixed(kToday));
    return session->store()
        .scalar(QStringLiteral("SELECT MAX(CAST(ent_fact_no AS INTEGER)) FROM strentete"))
        .toLongLong();
}

void measure(const char* label, const QString& home, int workstations, int each) {
    const qint64 before = highestNumber(home);
    std::vector<std::unique_ptr<QProcess>> runs;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < workstations; ++i) {
        auto p = std::make_unique<QProcess>();
        p->setProcessEnvironment(environment());
        p->start(kBatch,
                 {QStringLiteral("--home"), home, QStringLiteral("--as"), QStringLiteral("gestu"),
                  QStringLiteral("factures-essai"), QString::number(each)});
        runs.push_back(std::move(p));
    }
    static const QRegularExpression report(
        QStringLiteral("^(\\d+) facture.* la plus lente : (\\d+) ms ; reprise\\(s\\) après "
                       "conflit : (\\d+)"));
    int made = 0;
    int failed = 0;
    qint64 slowest = 0;
    int retries = 0;
    for (auto& p : runs) {
        p->waitForFinished(-1);
        const QString out = QString::fromUtf8(p->readAllStandardOutput());
        const auto m = report.match(out);
        if (p->exitStatus() != QProcess::NormalExit || p->exitCode() != 0 || !m.hasMatch()) {
            ++failed;
            std::fprintf(stderr, "un poste a échoué : %s\n",
                         p->readAllStandardError().trimmed().constData());
            continue;
        }
        made += m.captured(1).toInt();
        slowest = std::max(slowest, m.captured(2).toLongLong());
        retries += m.captured(3).toInt();
    }
    const double seconds = clock.nsecsElapsed() / 1e9;

    auto session = shell::openSession(home, Clock::fixed(kToday));
    const store::Store& s = session->store();
    const auto figures = s.selectOne(
        QStringLiteral("SELECT count(*), count(DISTINCT CAST(ent_fact_no AS INTEGER)), "
                       "COALESCE(MAX(CAST(ent_fact_no AS INTEGER)), 0) FROM strentete WHERE "
                       "CAST(ent_fact_no AS INTEGER) > ?"),
        {before});
    const qint64 stored = figures->value(0).toLongLong();
    const qint64 distinct = figures->value(1).toLongLong();
    const qint64 highest = figures->value(2).toLongLong();
    const qint64 incomplete =
        s.scalar(QStringLiteral("SELECT count(*) FROM strentete WHERE CAST(ent_fact_no AS INTEGER) "
                                "> ? AND (SELECT count(*) FROM strfacture WHERE "
                                "CAST(f_num_facture AS INTEGER) = CAST(ent_fact_no AS INTEGER)) "
                                "<> 3"),
                 {before})
            .toLongLong();
    std::printf("%s : %d postes × %d factures\n", label, workstations, each);
    std::printf("  factures faites        : %d (%lld enregistrées, %d poste(s) en échec)\n", made,
                static_cast<long long>(stored), failed);
    std::printf("  factures par seconde   : %.1f (en tout, %.2f s)\n", made / seconds, seconds);
    std::printf("  facture la plus lente  : %lld ms\n", static_cast<long long>(slowest));
    std::printf("  reprises après conflit : %d\n", retries);
    std::printf("  doublons               : %lld\n", static_cast<long long>(stored - distinct));
    std::printf("  trous                  : %lld\n",
                static_cast<long long>(highest - before - distinct));
    std::printf("  sans leurs 3 lignes    : %lld\n", static_cast<long long>(incomplete));
    std::fflush(stdout);
}

// The bench's own server, stopped and removed however the bench ends.
struct Server {
    QString folder;
    ~Server() {
        if (!folder.isEmpty()) run(QStringLiteral("/bin/sh"), {kServerScript, "stop", folder});
    }
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int workstations = argc > 1 ? std::atoi(argv[1]) : 4;
    const int each = argc > 2 ? std::atoi(argv[2]) : 250;
    QTemporaryDir dir;

    {
        Server server;
        QString out;
        if (!run(QStringLiteral("/bin/sh"), {kServerScript, QStringLiteral("start")}, &out))
            return 1;
        server.folder = out.trimmed();
        if (!run(QStringLiteral("createdb"), {"-h", server.folder, "-U", "postgres", "orve_bench"}))
            return 1;
        const QString home = dir.filePath(QStringLiteral("serveur"));
        const QString base = QStringLiteral("postgresql://postgres@%1/orve_bench")
                                 .arg(QString::fromUtf8(QUrl::toPercentEncoding(server.folder)));
        if (!run(kBatch, {QStringLiteral("init-demo"), home, QStringLiteral("--base"), base}))
            return 1;
        measure("PostgreSQL", home, workstations, each);
    }
    {
        const QString home = dir.filePath(QStringLiteral("dossier"));
        if (!run(kBatch, {QStringLiteral("init-demo"), home})) return 1;
        measure("SQLite", home, workstations, each);
    }
    return 0;
}
