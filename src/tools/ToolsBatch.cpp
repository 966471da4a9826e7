#include "tools/ToolsBatch.h"

#include <QDir>

#include "store/Refusal.h"
#include "tools/DataCheck.h"
#include "tools/InvoiceRenumbering.h"
#include "tools/NewSeason.h"
#include "tools/ToolCatalog.h"

namespace orve::tools {

namespace {

const QString kSeasonUsage = QStringLiteral("saison NOUVELLE_ANNEE");
const QString kRenumberUsage = QStringLiteral("renumeroter PROCHAIN_NUMERO");
const QString kToolUsage = QStringLiteral(
    "outil N [--oui] (N de 1 à 16 ; sans --oui, dit ce "
    "que l'outil ferait sans rien modifier)");
const QString kCheckUsage =
    QStringLiteral("verifier (code de sortie 1 quand une vérification trouve quelque chose)");

bool allDigits(const QString& text) {
    if (text.isEmpty()) return false;
    for (QChar ch : text)
        if (!ch.isDigit()) return false;
    return true;
}

int season(app::BatchContext& c) {
    const QString year = app::requiredArgument(c.positional(), 0, kSeasonUsage);
    app::Session& s = c.session();
    c.out() << setUpSeason(s.store(), year, s.today()).message() << "\n";
    return 0;
}

int renumber(app::BatchContext& c) {
    const QString next = app::requiredArgument(c.positional(), 0, kRenumberUsage);
    if (!allDigits(next) || next.size() > kLongestInvoiceNumber)
        throw Refusal(QStringLiteral("Le prochain N° de facture s'écrit en chiffres seulement "
                                     "(%1 au plus) : « %2 ».")
                          .arg(kLongestInvoiceNumber)
                          .arg(next));
    app::Session& s = c.session();
    c.out() << "La dernière facture porte le N° " << lastInvoiceNumber(s.store()) << "\n";
    const RenumberingResult r = renumberInvoices(s.store(), next, s.today());
    if (!r.placeholder.isEmpty())
        c.out() << "en-tête « " << kRenumberingLabel << " » N° " << r.placeholder << " écrit\n";
    c.out() << r.message() << "\n";
    return 0;
}

int tool(app::BatchContext& c) {
    const QString n = app::requiredArgument(c.positional({QStringLiteral("--oui")}), 0, kToolUsage);
    const MaintenanceTool* t = allDigits(n) ? toolByNumber(n.toInt()) : nullptr;
    if (!t)
        throw Refusal(
            QStringLiteral("Outil inconnu : %1. Usage : orve-batch %2").arg(n, kToolUsage));
    app::Session& s = c.session();
    ToolContext context = toolContext(s);
    c.out() << t->entry << " « " << QString(t->caption).remove(QChar('&')) << " »\n";
    const ToolStep step = prepareTool(*t, context);
    if (step.next == ToolStep::Next::NothingToDo) {
        c.out() << step.text << "\n";
        return 0;
    }
    if (t->kind != MaintenanceTool::Kind::Report && !c.hasFlag(QStringLiteral("--oui"))) {
        c.out() << toolIntent(*t, step.changes)
                << "\nRien n'a été modifié : ajoutez --oui pour l'exécuter.\n";
        return 0;
    }
    const ToolOutcome out = runTool(*t, context);
    for (const QString& line : out.report) c.out() << line << "\n";
    c.out() << out.message << "\n";
    return 0;
}

int verify(app::BatchContext& c) {
    const DataCheckReport report = checkData(c.session().store(), c.session().invoiceFolder());
    c.out() << report.summary() << "\n";
    for (const QString& line : report.lines()) c.out() << line << "\n";
    return report.findings() == 0 ? 0 : 1;
}

}  // namespace

void registerToolsBatchCommands(app::BatchRegistry& registry) {
    registry.add({QStringLiteral("saison"), kSeasonUsage, season,
                  app::entryRights(QStringLiteral("mnu_out_newsaison"))});
    registry.add({QStringLiteral("renumeroter"), kRenumberUsage, renumber,
                  app::entryRights(QStringLiteral("mnu_out_newnumero"))});
    registry.add({QStringLiteral("outil"), kToolUsage, tool, [](const app::BatchContext& c) {
                      return app::BatchRights{
                          QStringLiteral("mnu_outils_") + c.positional().value(0).trimmed(),
                          c.hasFlag(QStringLiteral("--oui"))};
                  }});
    registry.add({QStringLiteral("verifier"), kCheckUsage, verify,
                  app::entryRights(QStringLiteral("mnu_outils_verif"), false)});
}

}  // namespace orve::tools
