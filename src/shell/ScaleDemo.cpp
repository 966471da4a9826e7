// The scale demo as a command: the installation opened, the history added
// and timed, and what was added told in one line.
#include "shell/ScaleDemo.h"

#include <QDir>
#include <QElapsedTimer>

#include "app/Startup.h"
#include "shell/ScaleGenerator.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::shell {

ScaleReport addScaleHistory(const QString& dir, const QDate& today, qint64 lines) {
    QElapsedTimer timer;
    timer.start();
    auto store = app::openInstallationStore(QDir(dir).absolutePath());
    ScaleReport report;
    scale::generateHistory(*store, today, lines, report);
    report.seconds = static_cast<double>(timer.elapsed()) / 1000.0;
    return report;
}

qint64 scaleLines(const QString& option) {
    bool ok = false;
    const qint64 lines = option.trimmed().toLongLong(&ok);
    if (!ok || lines <= 0)
        throw Refusal(QStringLiteral("--scale attend un nombre de lignes de facture : « %1 »")
                          .arg(format::echoed(option)));
    return lines;
}

QString describe(const ScaleReport& r) {
    return QStringLiteral(
               "historique ajouté : %1 saisons, %2 lignes de facture, %3 factures dont "
               "%4 avoirs, %5 compétitions, %6 clubs ; %7 factures déjà transférées en "
               "compta (%8 s)")
        .arg(r.seasons)
        .arg(r.lines)
        .arg(r.invoices)
        .arg(r.creditNotes)
        .arg(r.competitions)
        .arg(r.clubs)
        .arg(r.transferred)
        .arg(QString::number(r.seconds, 'f', 1));
}

}  // namespace orve::shell
