#include "accounting/AccountingBatch.h"

#include <QDir>
#include <QFileInfo>

#include "accounting/AccountingConstants.h"
#include "accounting/AccountingTransfer.h"
#include "accounting/SalesJournal.h"
#include "accounting/TurnoverStatistics.h"
#include "invoicing/InvoiceEntry.h"
#include "reference/Visibility.h"
#include "store/Refusal.h"

namespace orve::accounting {

namespace {

const QString kFilters = QStringLiteral(
    "[--type T] [--nature N] [--organisateur CODE] [--departement CODE] [--nom TEXTE] "
    "[--cod1..--cod5 VALEUR] [--facture NUMERO] [--competition INDEX]");
const QString kTransferUsage = QStringLiteral("transfert [--saison S] [--mois MM/AAAA] ") +
                               kFilters + QStringLiteral(" [--oui] | transfert --annuler FICHIER");
const QString kJournalUsage = QStringLiteral("journal [--saison S] [--mois MM/AAAA] ") + kFilters +
                              QStringLiteral(" --csv FICHIER");
const QString kStatsUsage =
    QStringLiteral("stats --mode 1..4 [--saison S] [--du JJ/MM/AAAA] [--au JJ/MM/AAAA] ") +
    kFilters + QStringLiteral(" --csv FICHIER");

// The selection panel's state from the command's options; the season in
// progress unless one is named.
invoicing::SelectionCondition selectionOf(app::BatchContext& c) {
    invoicing::SelectionState s;
    const QString season = c.option(QStringLiteral("--saison"));
    s.season = season.isEmpty() ? QString::number(c.session().workingSeason()) : season;
    auto opt = [&c](const QString& name, QString& target) {
        const QString v = c.option(name);
        if (!v.isEmpty()) target = v;
    };
    opt(QStringLiteral("--type"), s.type);
    opt(QStringLiteral("--nature"), s.nature);
    opt(QStringLiteral("--organisateur"), s.league);
    opt(QStringLiteral("--departement"), s.department);
    opt(QStringLiteral("--nom"), s.organiserName);
    for (int i = 0; i < 5; ++i) opt(QStringLiteral("--cod%1").arg(i + 1), s.codes[i]);
    opt(QStringLiteral("--mois"), s.month);
    opt(QStringLiteral("--facture"), s.invoiceNumber);
    opt(QStringLiteral("--competition"), s.competitionIndex);
    return invoicing::buildSelectionCondition(s);
}

QString requiredCsv(app::BatchContext& c, const QString& usage) {
    const QString file = c.option(QStringLiteral("--csv"));
    if (file.isEmpty())
        throw Refusal(QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(usage));
    return file;
}

void printTotals(app::BatchContext& c, const ReportTotals& t) {
    c.out() << invoicing::totalAmountText(t.amount) << "\n"
            << invoicing::totalQuantityText(t.quantity) << "\n";
}

int transfer(app::BatchContext& c) {
    app::Session& session = c.session();
    const QString cancelled = c.option(QStringLiteral("--annuler"));
    if (c.hasFlag(QStringLiteral("--annuler"))) {
        if (cancelled.isEmpty())
            throw Refusal(
                QStringLiteral("Argument manquant. Usage : orve-batch %1").arg(kTransferUsage));
        const CancelResult r =
            cancelTransfer(session.store(), cancelled, supportContact(session.settingsPath()));
        for (const QString& m : r.missing) c.out() << m << "\n";
        c.out() << r.invoices << " facture(s) repositionnée(s) pour un transfert ultérieur\n"
                << kDone << "\n";
        return 0;
    }
    // The layout is the operator's: it must be known.
    if (!session.signedIn())
        throw Refusal(
            QStringLiteral("Indiquez l'opérateur du transfert avec --as LOGIN : la "
                           "présentation du fichier dépend de sa ligue."));
    const TransferLayout layout = transferLayoutOf(session.user().league);
    const QString level = reference::Viewer::of(session).level();
    const invoicing::SelectionCondition selection = selectionOf(c);
    if (layout == TransferLayout::National) {
        // As the window asks first: the clerk may complete the tariffs.
        const auto unaccounted = linesWithoutAccount(session.store(), selection, level);
        if (!unaccounted.empty()) {
            if (!c.hasFlag(QStringLiteral("--oui")))
                throw Refusal(linesWithoutAccountText(unaccounted) +
                              QStringLiteral("\nRelancez avec --oui pour écrire le fichier "
                                             "quand même."));
            c.out() << linesWithoutAccountText(unaccounted) << "\n";
        }
    }
    const TransferResult r = writeTransfer(session.store(), session.dataFolder(), layout, level,
                                           selection, session.today());
    c.out() << kTransferWritten << QDir::toNativeSeparators(r.path) << "\n"
            << r.lines << " ligne(s), " << r.invoices << " facture(s)\n";
    return 0;
}

int journal(app::BatchContext& c) {
    const QString file = requiredCsv(c, kJournalUsage);
    app::Session& session = c.session();
    const invoicing::SelectionCondition selection = selectionOf(c);
    const ReportTotals totals = journalTotals(session.store(), selection);
    writeReportFile(file, journalCsv(session.store(), selection));
    c.out() << "journal des ventes : "
            << QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath()) << " (" << totals.lines
            << " ligne(s))\n";
    printTotals(c, totals);
    return 0;
}

int statistics(app::BatchContext& c) {
    const QString file = requiredCsv(c, kStatsUsage);
    app::Session& session = c.session();
    StatisticsRequest request;
    request.mode = statisticsModeOf(c.option(QStringLiteral("--mode")));
    request.selection = selectionOf(c);
    const QString season = c.option(QStringLiteral("--saison")).isEmpty()
                               ? QString::number(session.workingSeason())
                               : c.option(QStringLiteral("--saison"));
    request.period = statisticsPeriod(season, c.option(QStringLiteral("--du")),
                                      c.option(QStringLiteral("--au")));
    const StatisticsResult result = computeStatistics(session.store(), request);
    writeReportFile(file, statisticsCsv(session.store(), request));
    c.out() << summaryCaption(request.mode) << " : "
            << QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath()) << " ("
            << result.summary.size() << " ligne(s) de récapitulatif)\n";
    if (result.notice) c.out() << *result.notice << "\n";
    printTotals(c, result.totals);
    return 0;
}

}  // namespace

void registerAccountingBatchCommands(app::BatchRegistry& registry) {
    registry.add({QStringLiteral("transfert"), kTransferUsage + QStringLiteral(" --as LOGIN"),
                  transfer, app::entryRights(QStringLiteral("mnu_facturation_compta"))});
    registry.add({QStringLiteral("journal"), kJournalUsage, journal,
                  app::entryRights(QStringLiteral("mnu_facturation_journal"), false)});
    registry.add({QStringLiteral("stats"), kStatsUsage, statistics, [](const app::BatchContext& c) {
                      static const QStringList entries{
                          QStringLiteral("mnu_stat_ca_compet"), QStringLiteral("mnu_stat_ca_ligue"),
                          QStringLiteral("mnu_stat_ca_dept"), QStringLiteral("mnu_stat_ca_ir")};
                      const int mode = c.option(QStringLiteral("--mode")).toInt();
                      return app::BatchRights{entries.value(mode - 1, entries.first()), false};
                  }});
}

}  // namespace orve::accounting
