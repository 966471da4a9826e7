#include "app/MenuTree.h"

#include <QStringList>

namespace orve::app {

namespace {
MenuEntry top(const char* name, const char* caption) {
    return {QString::fromLatin1(name), QString::fromUtf8(caption), 0, {}, {}, true};
}
MenuEntry item(int level, const char* name, const char* caption, const char* screen = "",
               const char* mode = "") {
    return {QString::fromLatin1(name),   QString::fromUtf8(caption), level,
            QString::fromLatin1(screen), QString::fromLatin1(mode),  true};
}
// Entries that lead to no screen in this system are kept out of sight.
MenuEntry hidden(int level, const char* name, const char* caption, const char* mode = "") {
    MenuEntry e = item(level, name, caption, "", mode);
    e.shown = false;
    return e;
}
// Maintenance tools are run, not opened: their "screen" is the tool's own name.
MenuEntry tool(const char* name, const char* caption) { return item(1, name, caption, name); }
}  // namespace

const std::vector<MenuEntry>& menuTree() {
    static const std::vector<MenuEntry> tree{
        top("mnu_fic", "&Données"),
        item(1, "mnu_fic_competition_gestion", "les &Compétitions", "ORVE_ges_competition"),
        item(1, "mnu_fic_tiers", "les &Tiers"),
        item(2, "mnu_fic_tiers_lr", "les &Ligues/CSR/Districts", "ORVE_tiers_lr"),
        item(2, "mnu_fic_tiers_dept", "les &Départements", "ORVE_tiers_dept"),
        item(2, "mnu_fic_tiers_bowling", "les centres de &Bowling", "ORVE_tiers_bowling"),
        item(2, "mnu_fic_tiers_clubs", "les &Clubs", "ORVE_tiers_club"),
        item(1, "mnu_fic_mnu_fic_naturec_gestion", "les &Natures de compétitions",
             "ORVE_ges_naturec"),
        item(1, "mnu_fic_parametre_article", "&Articles à facturer", "ORVE_ges_article"),
        item(1, "mnu_fic_base_fede", "&Intégration Données"),
        item(2, "mnu_fic_prive", "import compétitions &Privées ", "ORVE_int_prive"),
        item(2, "mnu_fic_cdc", "import& CDC national", "ORVE_int_cdc"),
        hidden(2, "mnu_fic_competition_integration", "import &Compétitions"),
        hidden(2, "mnu_fic_resultat_integration", "import &Résultats"),
        hidden(2, "mnu_fic_licence_integration", "import &Licenciés"),
        hidden(2, "mnu_fic_organisateur_integration", "import &Organisateurs"),
        hidden(2, "mnu_fic_naturec_integration", "import &Nature compétition"),
        hidden(2, "mnu_fic_bowling_integration", "import c&Entres bowling"),
        hidden(2, "mnu_fic_region_integration", "import l&Igues régions"),
        item(2, "mnu_fic_dept_integration", "import &Comités Départementaux", "ORVE_int_dept"),
        item(2, "mnu_fic_club_integration", "import c&Lubs", "ORVE_int_club"),
        item(1, "mnu_fic_parametre_droits", "&Droits acces"),
        item(1, "mnu_fic_usb", "&Sauvegarde USB", "Frame5"),
        top("mnu_facturation", "&Facturation"),
        item(1, "mnu_facturation_globale", "facturation &Compétitions", "ORVE_facture_creation",
             "COMPET"),
        item(1, "mnu_facturation_creation", "facturation &Licences", "ORVE_facture_creation",
             "LIC"),
        item(1, "mnu_facturation_diverses", "Facturation &Divers", "ORVE_facture_creation", "DIV"),
        item(1, "mnu_facturation_li", "Facturation &Ligues (LI)", "ORVE_facture_creation", "LI"),
        item(1, "mnu_facturation_JORE", "Facturation &J.Rég ou Dept (JORE)",
             "ORVE_facture_creation", "JORE"),
        item(1, "mnu_facturation_prive_m", "facturation &Privé (complément)",
             "ORVE_facture_creation", "PRIVE"),
        item(1, "mnu_facturation_prive", "facturation &Privé (JKV)", "ORVE_facture_jkv"),
        item(1, "mnu_facturation_cdc", "facturation &CDC Nat. (JKV)", "ORVE_facture_cdc"),
        item(1, "mnu_facturation_journal", "&Journal des ventes", "ORVE_facture_jalvente"),
        item(1, "mnu_facturation_compta", "&Transfert factures en compta", "ORVE_facture_compta"),
        top("mnu_stat", "&Statistiques"),
        item(1, "mnu_stat_ca_compet", "CA par &Nature de compétitions", "ORVE_stat", "1"),
        item(1, "mnu_stat_ca_ir", "CA par &Inter Région", "ORVE_stat", "4"),
        item(1, "mnu_stat_ca_ligue", "CA par &Ligue", "ORVE_stat", "2"),
        item(1, "mnu_stat_ca_dept", "CA par &Departement", "ORVE_stat", "3"),
        top("mnu_outils", "&Outils"),
        item(1, "mnu_out_mail", "&Texte pour mail", "ORVE_out_mail"),
        item(1, "mnu_out_mail_top", "&Pointage des envois mails", "ORVE_out_mail_top"),
        item(1, "mnu_out_newsaison", "&Mise en place d'une saison", "ORVE_out_newsaison"),
        item(1, "mnu_out_newnumero", "&Changement numérotation facture", "ORVE_out_newnumero"),
        tool("mnu_outils_1", "maj lignes facture/entete"),
        tool("mnu_outils_13", "&raz des factures non generees en PDF"),
        tool("mnu_outils_2", "&Effacement des compet 2014"),
        tool("mnu_outils_4", "&raz des factures 2013"),
        tool("mnu_outils_6", "&raz facture merignac"),
        tool("mnu_outils_5", "&LIA si type LI (2013)"),
        tool("mnu_outils_7", "&raz des licenciés"),
        tool("mnu_outils_3", "&Ajout dept 98"),
        tool("mnu_outils_8", "SUPP 121/22/24"),
        tool("mnu_outils_10", "SUP fact 140/141/123/17"),
        tool("mnu_outils_12", "SUP fact 260"),
        tool("mnu_outils_11", "maj envoi_mail"),
        tool("mnu_outils_9", "espion"),
        tool("mnu_outils_14", "index compet 24967"),
        tool("mnu_outils_15", "doublon facture entete"),
        tool("mnu_outils_16", "&Retransférer CHAF en compta"),
        tool("mnu_outils_verif", "&Vérification des données"),
        hidden(0, "int_1", "Intégration competitions privées", "10"),
        hidden(0, "int_2", "Creation competition fédérales", "6"),
        top("mnu_quitter", "&Quitter"),
    };
    return tree;
}

bool isAdministratorEntry(const QString& name) {
    static const QStringList admin{"mnu_facturation_prive",    "mnu_fic_prive",
                                   "mnu_fic_parametre_droits", "mnu_fic_base_fede",
                                   "mnu_facturation_prive_m",  "mnu_facturation_cdc",
                                   "mnu_facturation_JORE",     "mnu_facturation_li"};
    return admin.contains(name);
}

bool isNationalEntry(const QString& name) {
    if (name == QStringLiteral("mnu_out_newsaison") || name == QStringLiteral("mnu_out_newnumero"))
        return true;
    // Every numbered tool; the data check only reads.
    return name.startsWith(QStringLiteral("mnu_outils_")) &&
           name != QStringLiteral("mnu_outils_verif");
}

bool entryAllowed(const QString& name, bool signedIn, const QString& login, bool national) {
    if (name == QStringLiteral("mnu_quitter")) return true;
    if (!signedIn) return false;
    const auto usable = [&](const QString& entry) {
        return (!isAdministratorEntry(entry) || login == QStringLiteral("gestu")) &&
               (!isNationalEntry(entry) || national);
    };
    const auto& tree = menuTree();
    int at = -1;
    for (int i = 0; i < static_cast<int>(tree.size()); ++i)
        if (tree[static_cast<size_t>(i)].name == name) at = i;
    if (at < 0) return usable(name);
    // The entry, then each submenu above it up to the menu bar.
    int level = tree[static_cast<size_t>(at)].level + 1;
    for (int i = at; i >= 0 && level > 0; --i) {
        const MenuEntry& e = tree[static_cast<size_t>(i)];
        if (e.level >= level) continue;
        level = e.level;
        if (!usable(e.name)) return false;
    }
    return true;
}

QString entryOfMode(const QString& screen, const QString& mode) {
    for (const auto& e : menuTree())
        if (e.screen == screen && e.mode == mode) return e.name;
    return {};
}

QString entryCaption(const QString& name) {
    for (const auto& e : menuTree())
        if (e.name == name) return QString(e.caption).remove(QChar('&')).trimmed();
    return name;
}

}  // namespace orve::app
