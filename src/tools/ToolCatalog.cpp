#include "tools/ToolCatalog.h"

#include <QDir>

#include "app/Backup.h"
#include "store/Refusal.h"
#include "tools/ToolTexts.h"

namespace orve::tools {

namespace {

using Kind = MaintenanceTool::Kind;
using Count = std::function<Changes(const ToolContext&)>;
using Run = std::function<ToolOutcome(ToolContext&, const QString&)>;

// A count over the store alone.
Count counting(Changes (*count)(const store::Store&)) {
    return [count](const ToolContext& c) { return count(c.store); };
}

// A repair over the store alone, ending with a message made from what it changed.
Run running(Changes (*repair)(store::Store&), std::function<QString(const Changes&)> message) {
    return [repair, message](ToolContext& c, const QString&) {
        ToolOutcome out;
        out.changes = repair(c.store);
        out.message = message(out.changes);
        return out;
    };
}

std::function<QString(const Changes&)> fixed(const QString& text) {
    return [text](const Changes&) { return text; };
}

QString invoicesRemoved(const Changes& c) {
    return counted(c.headers, QStringLiteral("facture effacée"),
                   QStringLiteral("factures effacées")) +
           QStringLiteral(" (") +
           counted(c.lines, QStringLiteral("ligne"), QStringLiteral("lignes")) +
           QStringLiteral(")");
}

QString competitionsReset(const Changes& c) {
    return counted(c.competitions, QStringLiteral("compétition remise à facturer"),
                   QStringLiteral("compétitions remises à facturer"));
}

Run report(QStringList (*check)(const store::Store&), const QString& closing) {
    return [check, closing](ToolContext& c, const QString&) {
        ToolOutcome out;
        out.report = check(c.store);
        out.message = closing;
        return out;
    };
}

std::vector<MaintenanceTool> makeTools() {
    std::vector<MaintenanceTool> t;
    auto add = [&t](int number, const char* caption, Kind kind, const char* action,
                    const char* nothing, Count count, Run run) {
        t.push_back({number, QStringLiteral("mnu_outils_%1").arg(number),
                     QString::fromUtf8(caption), kind, QString::fromUtf8(action),
                     QString::fromUtf8(nothing), std::move(count), std::move(run)});
    };
    add(1, "maj lignes facture/entete", Kind::Repair,
        "recopier dans les lignes de facture le facturé, le client et la nature de leur en-tête",
        "", counting(countLinesToAlign),
        running(alignLinesWithHeaders, fixed(QStringLiteral("maj lignes factures terminée"))));
    add(13, "&raz des factures non generees en PDF", Kind::Destructive,
        "effacer les factures des compétitions facturées sans document PDF et remettre ces "
        "compétitions à facturer",
        "Aucune compétition à effacer", counting(countUnprintedInvoices),
        running(resetUnprintedInvoices, [](const Changes& c) {
            return QStringLiteral("raz des factures non générées en PDF terminée : ") +
                   competitionsReset(c) + QStringLiteral(", ") + invoicesRemoved(c);
        }));
    add(2, "&Effacement des compet 2014", Kind::Destructive,
        "effacer les compétitions de la saison 2014", "Aucune compétition en 2014",
        counting(countCompetitions2014),
        running(deleteCompetitions2014, fixed(QStringLiteral("competitions 2014 effacées"))));
    add(
        4, "&raz des factures 2013", Kind::Destructive,
        "effacer les factures des compétitions 2013 facturées, remettre ces compétitions à "
        "facturer et retirer les documents Facture_2013*.pdf",
        "Aucune facture 2013 à effacer",
        [](const ToolContext& c) { return count2013Invoices(c.store, c.invoiceFolder); },
        [](ToolContext& c, const QString& backup) {
            ToolOutcome out;
            out.changes = reset2013Invoices(c.store, c.invoiceFolder, backup);
            out.message = QStringLiteral("raz des factures 2013 terminée : ") +
                          competitionsReset(out.changes) + QStringLiteral(", ") +
                          invoicesRemoved(out.changes) + QStringLiteral(", ") +
                          counted(out.changes.documents, QStringLiteral("document PDF retiré"),
                                  QStringLiteral("documents PDF retirés"));
            return out;
        });
    add(6, "&raz facture merignac", Kind::Destructive,
        "remettre à facturer la compétition 00019746 de la saison 2013",
        "La compétition 00019746 de la saison 2013 n'existe pas : rien à effacer",
        counting(countMerignacInvoice),
        running(resetMerignacInvoice, fixed(QStringLiteral("effacement des factures terminé"))));
    add(5, "&LIA si type LI (2013)", Kind::Repair,
        "donner la nature LIA aux compétitions 2013 de type LI",
        // The legacy words, deliberately unchanged.
        "Aucune compétition en 2014", counting(countLeagueCompetitions2013),
        running(setLeagueNature2013,
                fixed(QStringLiteral("traitement 2013 : si type=LI, nature=LIA  --- terminé"))));
    add(7, "&raz des licenciés", Kind::Destructive, "effacer tous les licenciés",
        "Aucun licencié à effacer", counting(countLicensees),
        running(deleteLicensees, fixed(QStringLiteral("effacement des licences terminé"))));
    add(3, "&Ajout dept 98", Kind::Repair, "créer le comité départemental 098 MONACO",
        "dept 098 est déjà créé", counting(countCommitteeToAdd),
        [](ToolContext& c, const QString&) {
            ToolOutcome out;
            out.changes = addMonacoCommittee(c.store, c.today);
            out.message = out.changes.others > 0 ? QStringLiteral("dept 098 créé")
                                                 : QStringLiteral("dept 098 est déjà créé");
            return out;
        });
    add(8, "SUPP 121/22/24", Kind::Destructive,
        "effacer les factures 2014000121, 2014000122 et 2014000124 avec leurs lignes",
        "Aucune des factures 2014000121, 2014000122, 2014000124 n'existe",
        counting(countInvoices121), running(deleteInvoices121, [](const Changes& c) {
            return QStringLiteral("SUPP 121/22/24 terminé : ") + invoicesRemoved(c);
        }));
    add(10, "SUP fact 140/141/123/17", Kind::Destructive,
        "effacer les factures 2014000140, 2014000141, 2014000123 et 2014000017 avec leurs "
        "lignes et remettre à facturer la compétition 00021810",
        "Aucune des factures 2014000140, 2014000141, 2014000123, 2014000017 ni la compétition "
        "00021810 n'existe",
        counting(countInvoices123), running(deleteInvoices123, [](const Changes& c) {
            return QStringLiteral("SUP fact 140/141/123/17 terminé : ") + invoicesRemoved(c) +
                   QStringLiteral(", ") + competitionsReset(c);
        }));
    add(12, "SUP fact 260", Kind::Destructive,
        "effacer la facture 2014000260 avec ses lignes et remettre à facturer la compétition "
        "00022625",
        "Ni la facture 2014000260 ni la compétition 00022625 n'existe", counting(countInvoice260),
        running(deleteInvoice260, [](const Changes& c) {
            return QStringLiteral("SUP fact 260 terminé : ") + invoicesRemoved(c) +
                   QStringLiteral(", ") + competitionsReset(c);
        }));
    add(11, "maj envoi_mail", Kind::Repair,
        "recopier dans les compétitions facturées l'envoi par mail de leur facture", "",
        counting(countMailFlagsToCopy),
        running(copyMailFlagsToCompetitions, fixed(QStringLiteral("traitement terminé"))));
    add(9, "espion", Kind::Report, "", "", {},
        report(spyInvoiceLines, QStringLiteral("traitement terminé")));
    add(14, "index compet 24967", Kind::Destructive,
        "effacer les lignes de facture de la compétition 00024967",
        "Aucune ligne de facture sur la compétition 00024967", counting(countStrayLines),
        running(deleteStrayLines, [](const Changes& c) {
            return counted(c.lines, QStringLiteral("ligne de la compétition 00024967 effacée"),
                           QStringLiteral("lignes de la compétition 00024967 effacées"));
        }));
    add(15, "doublon facture entete", Kind::Report, "", "", {},
        report(duplicateInvoiceNumbers, QStringLiteral("doublon terminé")));
    add(16, "&Retransférer CHAF en compta", Kind::Destructive,
        "remettre les factures du CHALLENGE FÉDÉRAL dans le prochain transfert en comptabilité",
        "il y a : 0 factures CHAF à retransférer", counting(countChallengeInvoices),
        running(retransferChallengeInvoices, [](const Changes& c) {
            return QStringLiteral("il y a : %1 factures CHAF à retransférer\nmaj terminée")
                .arg(c.headers);
        }));
    return t;
}

}  // namespace

const std::vector<MaintenanceTool>& maintenanceTools() {
    static const std::vector<MaintenanceTool> tools = makeTools();
    return tools;
}

const MaintenanceTool* toolByNumber(int number) {
    for (const auto& t : maintenanceTools())
        if (t.number == number) return &t;
    return nullptr;
}

const MaintenanceTool* toolByEntry(const QString& entry) {
    for (const auto& t : maintenanceTools())
        if (t.entry == entry) return &t;
    return nullptr;
}

ToolContext toolContext(app::Session& session) {
    return {session.store(), session.programFolder(), session.invoiceFolder(), session.today(),
            QDateTime(session.today(), QTime::currentTime())};
}

QString toolIntent(const MaintenanceTool& tool, const Changes& changes) {
    return QStringLiteral("Cet outil va %1 (%2).")
        .arg(tool.action, counted(changes.total(), QStringLiteral("enregistrement"),
                                  QStringLiteral("enregistrements")));
}

QString toolQuestion(const MaintenanceTool& tool, const Changes& changes) {
    return toolIntent(tool, changes) + QStringLiteral(" Continuer ?");
}

ToolStep prepareTool(const MaintenanceTool& tool, const ToolContext& context) {
    ToolStep step;
    if (!tool.count) return step;
    step.changes = tool.count(context);
    if (step.changes.total() == 0 && !tool.nothingToDo.isEmpty()) {
        step.next = ToolStep::Next::NothingToDo;
        step.text = tool.nothingToDo;
    } else if (tool.kind == Kind::Destructive) {
        step.next = ToolStep::Next::Ask;
        step.text = toolQuestion(tool, step.changes);
    }
    return step;
}

QString toolBackupFolder(const QString& installationFolder, const QDateTime& moment) {
    const QDir base(QDir(installationFolder).filePath(QStringLiteral("sauvegardes")));
    const QString name =
        QStringLiteral("avant-outil-") + moment.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString folder = base.filePath(name);
    for (int n = 2; QFileInfo::exists(folder); ++n)
        folder = base.filePath(name + QStringLiteral("-%1").arg(n));
    return folder;
}

ToolOutcome runTool(const MaintenanceTool& tool, ToolContext& context) {
    QString backup;
    if (tool.kind == Kind::Destructive) {
        backup = toolBackupFolder(context.installationFolder, context.moment);
        if (!QDir().mkpath(backup))
            throw StoreError(
                QStringLiteral("Sauvegarde impossible : le dossier %1 ne peut pas être créé. "
                               "L'outil n'a rien modifié.")
                    .arg(QDir::toNativeSeparators(backup)));
        try {
            app::backupStore(context.store, backup);
        } catch (...) {
            // Nothing of a half-made backup is left to be taken for a good one.
            QDir(backup).removeRecursively();
            throw;
        }
    }
    ToolOutcome out = tool.run(context, backup);
    out.backupFolder = backup;
    if (!backup.isEmpty())
        out.message += QStringLiteral("\nDonnées sauvegardées avant l'outil dans : ") +
                       QDir::toNativeSeparators(backup);
    return out;
}

}  // namespace orve::tools
