// Imports a club file and a private tournament file into a demo installation
// through the rules the windows and orve-batch use (read, check, write in one
// transaction), and prints the lines per second of each.
//
//   bench_imports [LINES] [postgresql://…]     (defaults: 20000, SQLite files)

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <functional>

#include "imports/ClubImport.h"
#include "imports/PrivateImport.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"

using namespace orve;
using namespace orve::imports;

namespace {

QByteArray clubFile(int lines) {
    QByteArray out =
        "Dept;Club;Type;Nom;Adresse 1;Adresse 2;Adresse 3;Code postal;Ville;"
        "Président;11;12;13;14;15;16;17;18;19;20;21;Mail 2;Mail 1;Centre;25\r\n";
    for (int i = 0; i < lines; ++i) {
        // 95 departments of up to 999 clubs: every line a club of its own.
        const QByteArray dept = QByteArray::number(1 + i % 95);
        const QByteArray num = QByteArray::number(1 + i / 95);
        out += dept + ';' + num + ";C;Bowling Club n\xC2\xB0 " + QByteArray::number(i) +
               ";12 rue des Quilles;B\xC3\xA2timent A;;" + dept + "000;Ville " + dept +
               ";Pr\xC3\xA9sident " + QByteArray::number(i) +
               ";01 02 03 04 05;;;;;;;;;;;secretariat@club.example;president@club.example;BOW0131;"
               "15/11/2026\r\n";
    }
    return out;
}

QByteArray privateFile(int lines) {
    QByteArray out;
    for (int i = 0; i < lines; ++i)
        out += "2027;TP;" + QByteArray::number(10 + i % 90) + ';' +
               QByteArray::number(1 + i % 99999) + ";BOW0131;14/02/27;Open n\xC2\xB0 " +
               QByteArray::number(i) +
               ";48;150,00;Marseille;04 91 00 00 00;CL13001 Bowling Club Phoc\xC3\xA9"
               "en\n";
    return out;
}

// Runs one import from the file on disk and prints its figures.
void measure(const char* what, const QString& path, int lines,
             const std::function<ImportReport(const ImportFile&)>& run) {
    QElapsedTimer timer;
    timer.start();
    const std::clock_t cpuStart = std::clock();
    const ImportFile file = ImportFile::read(path);
    const qint64 readMs = timer.elapsed();
    const ImportReport report = run(file);
    const double seconds = timer.nsecsElapsed() / 1e9;
    const double cpu = double(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    std::printf(
        "%-22s %6d lignes en %6.3f s (lecture %lld ms) : %7.0f lignes/s ; temps "
        "processeur %6.3f s : %7.0f lignes/s  [créations %d, mises à jour %d, ignorées %d]\n",
        what, lines, seconds, static_cast<long long>(readMs), lines / seconds, cpu, lines / cpu,
        report.created, report.updated, report.skipped());
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int lines = argc > 1 ? std::atoi(argv[1]) : 20000;
    const QString base = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    const QDate today(2026, 11, 21);
    QTemporaryDir dir;
    const QString home = dir.filePath(QStringLiteral("inst"));
    shell::createDemoInstallation(home, today, base);
    auto session = shell::openSession(home, Clock::fixed(today));
    store::Store& store = session->store();
    std::printf("installation de démonstration %s\n",
                base.isEmpty() ? "(fichiers SQLite)" : qPrintable(base));

    const QString clubs = dir.filePath(QStringLiteral("clubs.csv"));
    const QString privates = dir.filePath(QStringLiteral("prives.csv"));
    for (const auto& [path, bytes] :
         {std::pair{clubs, clubFile(lines)}, std::pair{privates, privateFile(lines)}}) {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()) return 1;
    }
    const auto importClubs = [&](const ImportFile& file) {
        ClubImport import(store, today);
        import.check(file);
        return import.write();
    };
    measure("clubs (créations)", clubs, lines, importClubs);
    measure("clubs (mises à jour)", clubs, lines, importClubs);
    measure("compétitions privées", privates, lines, [&](const ImportFile& file) {
        PrivateImport import(store);
        import.check(file);
        return import.write(true);
    });
    return 0;
}
