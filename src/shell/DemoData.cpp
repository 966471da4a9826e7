#include "shell/DemoData.h"

#include <QDir>
#include <tuple>

#include "app/InstallationSetup.h"
#include "app/Startup.h"
#include "app/Users.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/PseudoCompetitions.h"
#include "invoicing/DemoInvoices.h"
#include "invoicing/InvoiceHomes.h"
#include "shell/DemoCompetitions.h"
#include "shell/DemoSettings.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Seasons.h"
#include "store/Settings.h"
#include "store/Store.h"

namespace orve::shell {

using app::addUser;
using app::createInstallation;

const std::vector<DemoUser>& demoUsers() {
    static const std::vector<DemoUser> users{
        {"gestu", "kvarn-2026", "JKV", "national"},
        {"ligue06", "azur-2026", "LR06", "ligue"},
        {"CD13", "provence-2026", "13", "comité"},
    };
    return users;
}

namespace {

using store::Fields;
using store::Store;

struct League {
    const char* code;
    const char* lib;
    const char* presidentInt;
    const char* president;
    const char* ad1;
    const char* cp;
    const char* ville;
    const char* csrInt;
    const char* csr;
    const char* fact;
};

const League kLeagues[] = {
    {"LR06", "Provence-Alpes-Côte d'Azur", "Monsieur le Président", "Gérard Castellan",
     "12 boulevard des Platanes", "13008", "Marseille", "Madame la Présidente du CSR",
     "Odile Fabre", "LR"},
    {"LR11", "Île-de-France", "Madame la Présidente", "Sylvie Marchand", "48 rue de la Quille",
     "75011", "Paris", "Monsieur le Président du CSR", "Hervé Doucet", "CSR"},
    {"LR21", "Bourgogne-Franche-Comté", "Monsieur le Président", "Alain Perrot",
     "5 place des Tanneurs", "21000", "Dijon", "Monsieur le Président du CSR", "Luc Girardot",
     "LR"},
    {"LR33", "Nouvelle-Aquitaine", "Monsieur le Président", "Jean-Marc Lalanne",
     "31 cours de l'Intendance", "33000", "Bordeaux", "Madame la Présidente du CSR",
     "Claire Dupouy", "LR"},
    {"LR44", "Pays de la Loire", "Madame la Présidente", "Nathalie Guérin", "9 quai des Chantiers",
     "44200", "Nantes", "Monsieur le Président du CSR", "Yann Le Goff", "LR"},
    {"LR69", "Auvergne-Rhône-Alpes", "Monsieur le Président", "Bernard Villard",
     "77 avenue des Frères-Lumière", "69008", "Lyon", "", "", "LR"},
};

struct Committee {
    const char* no;
    const char* lib;
    const char* region;
    const char* district;
    const char* president;
    const char* ad1;
    const char* cp;
    const char* ville;
    const char* facturation;
    const char* compta;
};

const Committee kCommittees[] = {
    {"013", "Bouches-du-Rhône", "LR06", "D1", "Marcel Olivieri", "3 rue du Vieux-Port", "13002",
     "Marseille", "CD13", "411013"},
    {"083", "Var", "LR06", "D1", "Christine Baudoin", "18 avenue de la Rade", "83000", "Toulon",
     "CD83", "411083"},
    {"006", "Alpes-Maritimes", "LR06", "D2", "Paul Ravel", "2 promenade des Mimosas", "06000",
     "Nice", "LR06", "411006"},
    {"075", "Paris", "LR11", "D1", "Isabelle Roussel", "60 rue des Boulistes", "75012", "Paris",
     "CD75", "411075"},
    {"092", "Hauts-de-Seine", "LR11", "D1", "Thierry Mallet", "7 allée des Tilleuls", "92100",
     "Boulogne-Billancourt", "LR11", "411092"},
    {"021", "Côte-d'Or", "LR21", "D1", "Martine Jacquot", "11 rue Chaudronnerie", "21000", "Dijon",
     "CD21", "411021"},
    {"033", "Gironde", "LR33", "D1", "Didier Lacoste", "4 rue des Chartrons", "33000", "Bordeaux",
     "CD33", "411033"},
    {"044", "Loire-Atlantique", "LR44", "D1", "Rozenn Le Bihan", "22 rue de la Fosse", "44000",
     "Nantes", "CD44", "411044"},
    {"049", "Maine-et-Loire", "LR44", "D2", "Pascal Chauvin", "6 place du Ralliement", "49100",
     "Angers", "LR44", "411049"},
    {"069", "Rhône", "LR69", "D1", "Sandrine Faure", "15 rue Mercière", "69002", "Lyon", "CD69",
     "411069"},
};

struct Centre {
    const char* compte;
    const char* numero;
    const char* nom;
    const char* type;
    const char* region;
    const char* dept;
    const char* ad1;
    const char* cp;
    const char* ville;
    int pistes;
    const char* homologation;
};

const Centre kCentres[] = {
    {"BOW0131", "131", "Bowling du Prado", "Synthétique", "LR06", "013", "210 avenue du Prado",
     "13008", "Marseille", 24, "12/03/2019"},
    {"BOW0832", "832", "Toulon Strike", "Bois", "LR06", "083", "Zone des Playes", "83500",
     "La Seyne-sur-Mer", 16, "05/03/2019"},
    {"BOW0751", "751", "Quilles de Bercy", "Synthétique", "LR11", "075", "9 quai de Bercy", "75012",
     "Paris", 32, "20/09/2021"},
    {"BOW0441", "441", "Atlantique Bowling", "Synthétique", "LR44", "044", "Route de Vannes",
     "44800", "Saint-Herblain", 20, "14/01/2020"},
    {"BOW0211", "211", "Bowling des Ducs", "Bois", "LR21", "021", "3 rue du Golf", "21800",
     "Quetigny", 12, "02/06/2018"},
    {"BOW0691", "691", "Confluence Bowling", "Synthétique", "LR69", "069", "112 cours Charlemagne",
     "69002", "Lyon", 28, "30/11/2022"},
};

struct Club {
    const char* dept;
    int num;
    const char* nom;
    const char* region;
    const char* district;
    const char* president;
    const char* cp;
    const char* ville;
};

const Club kClubs[] = {
    {"013", 1, "Bowling Club Phocéen", "LR06", "D1", "Henri Santoni", "13008", "Marseille"},
    {"013", 2, "Les Quilles d'Aix", "LR06", "D1", "Émilie Roux", "13100", "Aix-en-Provence"},
    {"013", 3, "Strike Club Aubagne", "LR06", "D1", "Karim Benali", "13400", "Aubagne"},
    {"083", 1, "Toulon Bowling Passion", "LR06", "D1", "Véronique Arnaud", "83000", "Toulon"},
    {"006", 1, "Nice Azur Bowling", "LR06", "D2", "Fabrice Lucciani", "06200", "Nice"},
    {"075", 1, "Paris Quilles Club", "LR11", "D1", "Arnaud Lefèvre", "75012", "Paris"},
    {"075", 2, "Les Abattants de Bercy", "LR11", "D1", "Chantal Morel", "75012", "Paris"},
    {"092", 1, "Boulogne Bowling Club", "LR11", "D1", "Olivier Brunet", "92100",
     "Boulogne-Billancourt"},
    {"044", 1, "Nantes Atlantique Bowling", "LR44", "D1", "Gwenaël Tanguy", "44800",
     "Saint-Herblain"},
    {"049", 1, "Angers Strike Club", "LR44", "D2", "Sophie Bellanger", "49100", "Angers"},
    {"021", 1, "Dijon Quilles Bourguignonnes", "LR21", "D1", "Michel Bouchard", "21800",
     "Quetigny"},
    {"069", 1, "Lyon Confluence Bowling", "LR69", "D1", "Laurent Giraud", "69002", "Lyon"},
    {"069", 2, "Les Canuts du Bowling", "LR69", "D1", "Agnès Perrin", "69004", "Lyon"},
    {"033", 1, "Bordeaux Bowling Girondin", "LR33", "D1", "Sébastien Darrieux", "33000",
     "Bordeaux"},
};

struct Article {
    const char* index;
    const char* libelle;
    const char* nature;
    const char* cpta;
    const char* analytique;
    qint64 priceCents;  // season price; 0 when none
};

const Article kArticles[] = {
    {"00000001", "Licence adulte", "LIC", "756100000", "LIC", 4500},
    {"00000002", "Licence jeune (moins de 18 ans)", "LIC", "756100000", "LIC", 2200},
    {"00000003", "Licence découverte", "LIC", "756100000", "LIC", 1000},
    {"00000004", "Affiliation de club", "LIC", "756200000", "LIC", 12000},
    {"00000005", "Frais de dossier", "DIV", "708800000", "DIV", 1500},
    {"00000006", "Formation d'arbitre", "DIV", "706300000", "DIV", 8000},
    {"00000007", "Vente de matériel (tee-shirts, écussons)", "DIV", "707100000", "DIV", 1250},
    {"00000008", "Droit d'homologation de tournoi privé", "PRIVE", "706400000", "PRIVE", 5000},
    {"00000009", "Engagement tournoi privé", "PRIVE", "706400000", "PRIVE", 2000},
    {"00000010", "Cotisation annuelle de ligue", "LI", "756300000", "LI", 30000},
    {"00000011", "Participation journée régionale", "JORE", "706500000", "JORE", 15000},
    {"00000012", "Taxe fédérale de compétition", "TX", "706600000", "TX", 300},
    {"99999990", "Prix d'une ligne", "XXX", "706100000", "COMPET", 450},
    {"99999991", "Engagement par joueur", "XXX", "706200000", "COMPET", 1800},
    {"99999992", "Frais d'arbitrage", "XXX", "706300000", "COMPET", 4000},
    {"99999993", "Frais de déplacement", "XXX", "625100000", "COMPET", 0},
};

struct Nature {
    const char* code;
    const char* lib;
    const char* type;
    const char* fact;
    const char* factEngagement;
    const char* factLigne;
};

const Nature kNatures[] = {
    {"CDCND", "CDC NATIONAL DAMES", "FD", "E", "O", "O"},
    {"CDCNH", "CDC NATIONAL HOMMES", "FD", "E", "O", "O"},
    {"CHAF", "CHALLENGE FÉDÉRAL", "FD", "R", "O", "O"},
    {"DBEXC", "DOUBLETTES EXCELLENCE", "FD", "R", "O", "O"},
    {"DBHON", "DOUBLETTES HONNEUR", "FD", "R", "O", "N"},
    {"DIV", "FACTURATION DIVERSE", "DV", "R", "O", "N"},
    {"JORE", "JOURNÉES RÉGIONALES OU DÉPARTEMENTALES", "JO", "R", "O", "N"},
    {"LI", "FACTURATION DES LIGUES", "LI", "R", "O", "N"},
    {"LIC", "LICENCES", "LI", "R", "O", "N"},
    {"PRIVE", "COMPÉTITIONS PRIVÉES", "PR", "E", "O", "N"},
};

struct Licensee {
    const char* num;
    const char* nom;
    const char* prenom;
    const char* ad1;
    const char* cp;
    const char* ville;
};

const Licensee kLicensees[] = {
    {"0130021", "AUBERT", "Lucien", "4 rue des Lices", "13008", "Marseille"},
    {"0130022", "BARTOLI", "Manon", "19 traverse du Moulin", "13100", "Aix-en-Provence"},
    {"0130023", "CASANOVA", "Théo", "7 impasse des Cigales", "13400", "Aubagne"},
    {"0830011", "DELMAS", "Juliette", "2 rue Peiresc", "83000", "Toulon"},
    {"0060012", "ESPOSITO", "Marco", "33 avenue Borriglione", "06100", "Nice"},
    {"0750031", "FONTAINE", "Camille", "12 rue de Charenton", "75012", "Paris"},
    {"0750032", "GARNIER", "Louis", "5 rue Érard", "75012", "Paris"},
    {"0920015", "HAMEL", "Inès", "28 rue de Billancourt", "92100", "Boulogne-Billancourt"},
    {"0440041", "JAOUEN", "Erwan", "3 rue Kervégan", "44000", "Nantes"},
    {"0490017", "LEBRETON", "Anaïs", "10 rue Plantagenêt", "49100", "Angers"},
    {"0210009", "MOREAU", "Denis", "6 rue Monge", "21000", "Dijon"},
    {"0690051", "NOVAK", "Elsa", "41 rue de la Charité", "69002", "Lyon"},
    {"0690052", "OLLIER", "Rémi", "9 montée de la Grande-Côte", "69001", "Lyon"},
    {"0330027", "PEYRAT", "Chloé", "15 rue Notre-Dame", "33000", "Bordeaux"},
    {"0130024", "QUILICI", "Antoine", "1 place Castellane", "13006", "Marseille"},
    {"0750033", "RENAUD", "Margaux", "70 boulevard Diderot", "75012", "Paris"},
};

void fillReference(Store& s, const QString& today, int season) {
    for (const auto& l : kLeagues) {
        const QString code = QString::fromUtf8(l.code);
        s.insert("strregion",
                 {{"re_code", code},
                  {"re_lib", QStringLiteral("Ligue Régionale ") + QString::fromUtf8(l.lib)},
                  {"re_president_int", QString::fromUtf8(l.presidentInt)},
                  {"re_president", QString::fromUtf8(l.president)},
                  {"re_ad1", QString::fromUtf8(l.ad1)},
                  {"re_ad2", QStringLiteral("Maison des sports")},
                  {"re_ad3", ""},
                  {"re_ad4", ""},
                  {"re_cp", QString::fromUtf8(l.cp)},
                  {"re_ville", QString::fromUtf8(l.ville)},
                  {"re_mail1",
                   QStringLiteral("president.%1@ligues-bowling.example").arg(code.toLower())},
                  {"re_mail2",
                   *l.csr ? QStringLiteral("csr.%1@ligues-bowling.example").arg(code.toLower())
                          : QString()},
                  {"re_csr_int", QString::fromUtf8(l.csrInt)},
                  {"re_csr_nom", QString::fromUtf8(l.csr)},
                  {"re_fact", QString::fromUtf8(l.fact)},
                  {"re_date_enreg", today}});
        s.insert("strorganisateur",
                 {{"o_genre", "R"}, {"o_code", code}, {"o_libelle", QString::fromUtf8(l.lib)}});
    }
    for (const auto& c : kCommittees) {
        const QString no = QString::fromUtf8(c.no);
        s.insert("strdept", {{"de_no", no},
                             {"de_lib", QString::fromUtf8(c.lib)},
                             {"de_region", QString::fromUtf8(c.region)},
                             {"de_lr", QString::fromUtf8(c.region)},
                             {"de_district", QString::fromUtf8(c.district)},
                             {"de_president_int", QStringLiteral("Président(e) du C.D.")},
                             {"de_president", QString::fromUtf8(c.president)},
                             {"de_ad1", QString::fromUtf8(c.ad1)},
                             {"de_ad2", ""},
                             {"de_ad3", ""},
                             {"de_ad4", ""},
                             {"de_cp", QString::fromUtf8(c.cp)},
                             {"de_ville", QString::fromUtf8(c.ville)},
                             {"de_mail1", QStringLiteral("cd%1@comites-bowling.example").arg(no)},
                             {"de_mail2", ""},
                             {"de_facturation", QString::fromUtf8(c.facturation)},
                             {"de_compta", QString::fromUtf8(c.compta)},
                             {"de_date_enreg", today}});
        s.insert("strorganisateur",
                 {{"o_genre", "D"}, {"o_code", no}, {"o_libelle", QString::fromUtf8(c.lib)}});
    }
    for (const auto& b : kCentres) {
        const QString hom = QString::fromUtf8(b.homologation);
        s.insert(
            "strbowling",
            {{"b_compte_tiers", QString::fromUtf8(b.compte)},
             {"b_numero", QString::fromUtf8(b.numero)},
             {"b_nom", QString::fromUtf8(b.nom)},
             {"b_type", QString::fromUtf8(b.type)},
             {"b_region", QString::fromUtf8(b.region)},
             {"b_dept", QString::fromUtf8(b.dept)},
             {"b_district", "D1"},
             {"b_ad1", QString::fromUtf8(b.ad1)},
             {"b_ad2", ""},
             {"b_ad3", ""},
             {"b_cp", QString::fromUtf8(b.cp)},
             {"b_ville", QString::fromUtf8(b.ville)},
             {"b_tel1",
              QStringLiteral("04 91 00 %1 %2").arg(b.pistes, 2, 10, QChar('0')).arg(10 + b.pistes)},
             {"b_tel2", ""},
             {"b_fax", ""},
             {"b_mail1", QStringLiteral("accueil.%1@centres-bowling.example")
                             .arg(QString::fromUtf8(b.numero))},
             {"b_mail2", ""},
             {"b_site",
              QStringLiteral("https://bowling-%1.example").arg(QString::fromUtf8(b.numero))},
             {"b_pistes", b.pistes},
             {"b_homologation", hom},
             {"b_homologation_tri", format::displayToSortKey(hom)},
             {"b_nom_proprietaire",
              QStringLiteral("SAS Loisirs %1").arg(QString::fromUtf8(b.ville))},
             {"b_nom_responsable", QStringLiteral("Direction du centre")},
             {"b_fac_nom", QStringLiteral("SAS Loisirs %1").arg(QString::fromUtf8(b.ville))},
             {"b_fac_ad1", QString::fromUtf8(b.ad1)},
             {"b_fac_ad2", ""},
             {"b_fac_ad3", ""},
             {"b_fac_ad4", ""},
             {"b_fac_cp", QString::fromUtf8(b.cp)},
             {"b_fac_ville", QString::fromUtf8(b.ville)},
             {"b_date_enreg", today}});
    }
    for (const auto& c : kClubs) {
        const QString dept = QString::fromUtf8(c.dept);
        const QString num = format::zeroPad(c.num, 3);
        const QString code = QStringLiteral("CL") + dept.right(2) + num;
        s.insert(
            "strclub",
            {{"club_code", code},
             {"club_num", num},
             {"club_nom", QString::fromUtf8(c.nom)},
             {"club_type", "C"},
             {"club_region", QString::fromUtf8(c.region)},
             {"club_lr", QString::fromUtf8(c.region)},
             {"club_dept", dept},
             {"club_district", QString::fromUtf8(c.district)},
             {"club_bowling", ""},
             {"club_bowling_code", ""},
             {"club_president", QString::fromUtf8(c.president)},
             {"club_dirig", ""},
             {"club_ad1", QStringLiteral("Chez %1").arg(QString::fromUtf8(c.president))},
             {"club_ad2", QStringLiteral("%1 rue du Club").arg(c.num * 7)},
             {"club_ad3", ""},
             {"club_ad4", ""},
             {"club_cp", QString::fromUtf8(c.cp)},
             {"club_ville", QString::fromUtf8(c.ville)},
             {"club_mail1", QStringLiteral("contact.%1@clubs-bowling.example").arg(code.toLower())},
             {"club_mail2", ""},
             {"club_compta", format::zeroPad(410000 + dept.toInt() * 10 + c.num, 6)},
             {"club_date_enreg", today}});
    }
    for (const auto& l : kLicensees) {
        s.insert("strlicence", {{"l_an", QString::number(season)},
                                {"l_num", QString::fromUtf8(l.num)},
                                {"l_nom", QString::fromUtf8(l.nom)},
                                {"l_prenom", QString::fromUtf8(l.prenom)},
                                {"l_ad1", QString::fromUtf8(l.ad1)},
                                {"l_ad2", ""},
                                {"l_ad3", ""},
                                {"l_cp", QString::fromUtf8(l.cp)},
                                {"l_ville", QString::fromUtf8(l.ville)},
                                {"l_mail", QStringLiteral("%1.%2@licencies.example")
                                               .arg(QString::fromUtf8(l.prenom).toLower(),
                                                    QString::fromUtf8(l.nom).toLower())}});
    }
}

void fillArticlesAndNatures(Store& s, int season) {
    for (const auto& a : kArticles) {
        s.insert("strarticle", {{"a_index", QString::fromUtf8(a.index)},
                                {"a_libelle", QString::fromUtf8(a.libelle)},
                                {"a_nature", QString::fromUtf8(a.nature)},
                                {"a_cpta", QString::fromUtf8(a.cpta)},
                                {"a_analytique", QString::fromUtf8(a.analytique)}});
        if (a.priceCents == 0) continue;
        // Reserved competition prices are read by nature of competition.
        const QStringList natures = QString::fromUtf8(a.nature) == QStringLiteral("XXX")
                                        ? QStringList{"CHAF", "DBEXC", "DBHON", "CDCND", "CDCNH"}
                                        : QStringList{QString::fromUtf8(a.nature)};
        for (const QString& nature : natures) {
            // The national accounts of the article, by nature (the engagement
            // of a competition has its own below).
            if (QString::fromUtf8(a.index) != QStringLiteral("99999991") &&
                qstrcmp(a.nature, "TX") != 0)
                s.insert("strtarif",
                         {{"t_nature", nature},
                          {"t_article", QString::fromUtf8(a.index)},
                          {"t_tri_deb", "20180901"},
                          {"t_tri_fin", "________"},
                          {"t_kvarn", QString::fromUtf8(a.cpta)},
                          {"t_jkv", QString::fromUtf8(*a.analytique ? a.analytique : a.nature)},
                          {"t_jg", "JG"}});
            for (int y = season - 1; y <= season; ++y) {
                // Prices move a little from one season to the next.
                const qint64 price = y == season ? a.priceCents : a.priceCents * 96 / 100;
                s.insert("strtarifsaison", {{"t_article", QString::fromUtf8(a.index)},
                                            {"t_nature", nature},
                                            {"t_saison", QString::number(y)},
                                            {"t_tarif", price}});
            }
        }
    }
    for (const auto& n : kNatures) {
        s.insert("strnaturec", {{"n_code", QString::fromUtf8(n.code)},
                                {"n_libelle", QString::fromUtf8(n.lib)},
                                {"n_type", QString::fromUtf8(n.type)},
                                {"n_fact", QString::fromUtf8(n.fact)},
                                {"n_fact_engagement", QString::fromUtf8(n.factEngagement)},
                                {"n_fact_ligne", QString::fromUtf8(n.factLigne)}});
        // The federal tax may stand on an invoice of any nature.
        for (const auto& a : kArticles)
            if (qstrcmp(a.nature, "TX") == 0)
                s.insert("strtarif", {{"t_nature", QString::fromUtf8(n.code)},
                                      {"t_article", QString::fromUtf8(a.index)},
                                      {"t_tri_deb", "20180901"},
                                      {"t_tri_fin", "________"},
                                      {"t_kvarn", QString::fromUtf8(a.cpta)},
                                      {"t_jkv", QString::fromUtf8(a.analytique)},
                                      {"t_jg", "JG"}});
        s.insert("strtarif", {{"t_nature", QString::fromUtf8(n.code)},
                              {"t_article", "99999991"},
                              {"t_tri_deb", "20180901"},
                              {"t_tri_fin", "________"},
                              {"t_kvarn", "706200000"},
                              {"t_jkv", QString::fromUtf8(n.code)},
                              {"t_jg", "JG"}});
    }
    for (const char* t : {"FD", "PR", "LI", "DV", "JO"}) s.insert("strtypec", {{"t_code", t}});
    const std::pair<const char*, const char*> codes[] = {
        {"1", "CUM"}, {"1", "NAT"}, {"2", "DM"},  {"2", "DF"},  {"2", "MX"},
        {"3", "DE"},  {"3", "IR"},  {"4", "R06"}, {"4", "R11"}, {"4", "R44"},
        {"4", "D13"}, {"4", "D83"}, {"4", "ISE"}, {"5", "S1"},  {"5", "S2"}};
    for (const auto& [num, value] : codes)
        s.insert("strcodification", {{"p_num", num}, {"p_valeur", value}});
    s.insert("strmail", {{"mail_nom", "facture"},
                         {"mail_memo",
                          QStringLiteral("Bonjour,\n\nVeuillez trouver ci-joint votre facture.\n"
                                         "Nous vous remercions de votre règlement à réception.\n\n"
                                         "Le service comptable de la K.V.A.R.N.")}});
    s.insert("strmail", {{"mail_nom", "avoir"},
                         {"mail_memo",
                          QStringLiteral("Bonjour,\n\nVeuillez trouver ci-joint un avoir annulant "
                                         "une facture précédente.\n\nLe service comptable de la "
                                         "K.V.A.R.N.")}});
}

void writeSettings(const QString& dir) {
    orve::store::Settings ini(QDir(dir).filePath(QStringLiteral("orve.ini")));
    ini.beginGroup(QStringLiteral("federation"));
    ini.setValue("nom", QStringLiteral("FEDERATION KVARN"));
    ini.setValue("adresse", QStringLiteral("14 rue des Neuf-Quilles, 75010 Paris"));
    ini.setValue("telephone", QStringLiteral("01 40 00 12 34"));
    ini.setValue("fax", QStringLiteral("01 40 00 12 35"));
    ini.setValue("siret", QStringLiteral("SIRET 000 000 000 00017"));
    ini.setValue("banque", QStringLiteral("Banque Coopérative des Sports, agence Paris-Est"));
    ini.setValue("iban", QStringLiteral("FR76 0000 0000 0000 0000 0000 000"));
    ini.setValue("bic", QStringLiteral("BCSPFRPPXXX"));
    ini.endGroup();
    ini.beginGroup(QStringLiteral("documents"));
    ini.setValue("ouvrir_pdf", false);
    ini.endGroup();
    ini.sync();
}

}  // namespace

void createDemoInstallation(const QString& dir, const QDate& today, const QString& base) {
    createInstallation(dir,
                       {QStringLiteral("JKV"), QStringLiteral("Fédération KVARN (démonstration)"),
                        QStringLiteral("D1")},
                       today, base);
    writeSettings(dir);
    writeDemoMentions(dir);
    auto store = app::openInstallationStore(QDir(dir).absolutePath());
    const QString todayText = format::displayDate(today);
    // The season in progress: a season s runs from September of s-1 to August of s.
    const int season = store::seasonOf(today);
    {
        store::Transaction tx(*store);
        fillReference(*store, todayText, season);
        fillArticlesAndNatures(*store, season);
        competitions::ensurePseudoCompetitions(*store, today);
        // A newcomer invoices licences of the season in progress at once: the
        // pseudo-competitions are those of the working season, not of the
        // season the program fixes for installations brought over.
        // They end with their season, on 31 August.
        store->update(QStringLiteral("strcompetition"),
                      {{"c_saison", QString::number(season)},
                       {"c_date_finale", QStringLiteral("31/08/%1").arg(season)},
                       {"c_tri_finale", QString::number(season) + QStringLiteral("0831")}},
                      QStringLiteral("c_facture = ? AND c_index LIKE ?"),
                      {QStringLiteral("X"), QStringLiteral("8FA%")});
        store->update(
            QStringLiteral("strcompetition"),
            {{"c_intitule", QStringLiteral("Licence Saison %1-%2").arg(season - 1).arg(season)}},
            QStringLiteral("c_index = ?"), {invoicing::kLicenceIndex});
        invoicing::createDemoInvoices(*store, today);
        fillCompetitions(*store, season, today);
        fillImportedCompetitions(*store, season);
        tx.commit();
    }
    for (const auto& u : demoUsers()) {
        addUser(*store, u.login, u.league,
                QStringLiteral("%1@kvarn-bowling.example").arg(u.login.toLower()), u.password);
    }
}

}  // namespace orve::shell
