#include "competitions/PseudoCompetitions.h"

#include "invoicing/RecordStates.h"
#include "store/Formats.h"

namespace orve::competitions {

namespace {

struct PseudoCompetition {
    const QString& index;
    const char* title;
    const char* nature;
};

// Fixed in the program on purpose: these rows are not derived from the date.
const PseudoCompetition kPseudoCompetitions[] = {
    {invoicing::kLicenceIndex, "Licence Saison 2018-2019", "LIC"},
    {invoicing::kMiscIndex, "Facture Divers", "DIV"},
    {invoicing::kLeagueIndex, "Facture Ligues", "LI"},
    {invoicing::kRegionalDayIndex, "Facture Journées LR CD", "JORE"},
};

}  // namespace

void ensurePseudoCompetitions(store::Store& store, const QDate& today) {
    const QString todayText = format::displayDate(today);
    store::Transaction tx(store);
    for (const auto& p : kPseudoCompetitions) {
        const QString& index = p.index;
        if (store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ?"), {index}))
            continue;
        store.insert(QStringLiteral("strcompetition"),
                     {{"c_index", index},
                      {"c_intitule", QString::fromUtf8(p.title)},
                      {"c_nature", QString::fromLatin1(p.nature)},
                      {"c_saison", "2018"},
                      {"c_type", "FD"},
                      {"c_codification", " "},
                      {"c_nb_lignes", 0},
                      {"c_nb_joueur_prevu", 0},
                      {"c_nb_joueur_reel", 0},
                      {"c_nb_equipe", 0},
                      {"c_ligne_eliminatoire", 0},
                      {"c_ligne_finale", 0},
                      {"c_nb_equipe_eliminatoire", 0},
                      {"c_nb_equipe_finale", 0},
                      {"c_numero", ""},
                      {"c_cod1", ""},
                      {"c_cod2", ""},
                      {"c_cod3", ""},
                      {"c_cod4", ""},
                      {"c_cod5", ""},
                      {"c_date_facture", ""},
                      {"c_phase", ""},
                      {"c_date_finale", "31/08/2018"},
                      {"c_tri_finale", "20180831"},
                      {"c_formule", "1"},
                      {"c_dept", "00"},
                      {"c_num_bowling", "000"},
                      {"c_organisateur", "R"},
                      {"c_nom_organisateur", QStringLiteral("Ligue Régionale")},
                      {"c_inscription", 0},
                      {"c_caution", 0},
                      {"c_arbitre", "NC"},
                      {"c_date_enreg", todayText},
                      {"c_date_modif", todayText},
                      {"c_facture", invoicing::kPseudoState},
                      {"c_tri_facture", " "},
                      {"c_num_facture", " "},
                      {"c_edt_fact", invoicing::kDocumentMade},
                      {"c_nat_fact", "R"},
                      {"c_fact_ligne", "N"},
                      {"c_fact_engagement", "O"},
                      {"c_envoi_mail", invoicing::kNo},
                      {"c_add_tiers", "N"},
                      {"index_reference", "00000000"}});
    }
    tx.commit();
}

}  // namespace orve::competitions
