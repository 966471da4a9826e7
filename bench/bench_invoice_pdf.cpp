// Renders stored one-page invoices to PDF through the same call the screens
// and orve-batch use (read, lay out, write, mark the records) and prints the
// median time per invoice, the rate and the size of one file.
//
//   bench_invoice_pdf [COUNT] [LOGIN]     (defaults: 1000 gestu)

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/Session.h"
#include "app/SignIn.h"
#include "app/Startup.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceRecords.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"
#include "store/Formats.h"

using namespace orve;

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 1000;
    const QString login = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("gestu");
    const QDate today(2026, 11, 21);

    QTemporaryDir dir;
    const QString home = dir.filePath(QStringLiteral("inst"));
    shell::createDemoInstallation(home, today);
    auto session = shell::openSession(home, Clock::fixed(today));
    app::actAs(*session, login);
    store::Store& store = session->store();

    // The invoices to render: a club's licences, four lines each.
    std::vector<QString> numbers;
    {
        store::Transaction tx(store);
        for (int i = 0; i < count; ++i) {
            invoicing::InvoiceHeader h;
            h.dateText = format::displayDate(today);
            h.nature = QStringLiteral("LIC");
            h.competitionIndex = invoicing::kLicenceIndex;
            h.competitionTitle = QStringLiteral("LICENCES");
            h.billed = {QStringLiteral("CL13001"),
                        QString(),
                        QStringLiteral("Bowling Club Phocéen"),
                        QStringLiteral("Henri Santoni"),
                        QStringLiteral("Chez Henri Santoni"),
                        QStringLiteral("7 rue du Club"),
                        QString(),
                        QString(),
                        QStringLiteral("13008 Marseille"),
                        QString(),
                        QString()};
            const QString n = invoicing::createInvoice(store, h, today);
            invoicing::updateLine(store, n, QStringLiteral("01"),
                                  {QStringLiteral("00000001"), QStringLiteral("Licence adulte"),
                                   10 + i % 7, Money::fromCents(4500)});
            invoicing::appendLine(
                store, n,
                {QStringLiteral("00000002"), QStringLiteral("Licence jeune (moins de 18 ans)"), 3,
                 Money::fromCents(2200)});
            invoicing::appendLine(
                store, n,
                {QStringLiteral("00000004"), QStringLiteral("Affiliation de club"), 1,
                 Money::fromCents(12000)});
            invoicing::appendLine(store, n,
                                  {invoicing::kFreeTextArticle, QStringLiteral("Remise fidélité"),
                                   1, Money::fromCents(-1500)});
            numbers.push_back(n);
        }
        tx.commit();
    }

    const invoicing::DocumentSettings settings = invoicing::documentSettings(*session);
    std::vector<double> ms;
    ms.reserve(numbers.size());
    QString path;
    QElapsedTimer all;
    all.start();
    for (const QString& n : numbers) {
        QElapsedTimer t;
        t.start();
        path = invoicing::generateInvoicePdf(store, settings, n);
        ms.push_back(t.nsecsElapsed() / 1e6);
    }
    const double total = all.nsecsElapsed() / 1e9;
    std::vector<double> sorted = ms;
    std::sort(sorted.begin(), sorted.end());
    const double median = sorted[sorted.size() / 2];
    std::printf("invoices rendered : %d (as %s)\n", count, qPrintable(login));
    std::printf("first invoice     : %.2f ms (fonts and pictures loaded)\n", ms.front());
    std::printf("median per invoice: %.2f ms\n", median);
    std::printf("90th percentile   : %.2f ms\n", sorted[sorted.size() * 9 / 10]);
    std::printf("invoices per second: %.0f (wall %.2f s)\n", count / total, total);
    std::printf("file size         : %lld bytes (%s)\n",
                static_cast<long long>(QFileInfo(path).size()),
                qPrintable(QFileInfo(path).fileName()));
    return 0;
}
