// The invoice models and table columns of the scale history: what an invoice
// of each kind holds, and which columns the generator binds or fixes.
#include "shell/ScaleRows.h"

namespace orve::shell::scale {

Model regionalDay(int teams) {
    static const char* const kTeams[] = {"Participation journée régionale - équipe 1",
                                         "Participation journée régionale - équipe 2",
                                         "Participation journée régionale - équipe 3",
                                         "Participation journée régionale - équipe 4",
                                         "Participation journée régionale - équipe 5",
                                         "Participation journée régionale - équipe 6",
                                         "Participation journée régionale - équipe 7",
                                         "Participation journée régionale - équipe 8",
                                         "Participation journée régionale - équipe 9",
                                         "Participation journée régionale - équipe 10",
                                         "Participation journée régionale - équipe 11",
                                         "Participation journée régionale - équipe 12"};
    Model m;
    for (int i = 0; i < teams; ++i) m.push_back({"00000011", kTeams[i], false, 1, 3, 1500});
    return m;
}

const std::vector<InvoiceKind>& invoiceKinds() {
    static const ModelLine affiliation{"00000004", "Affiliation de club", false, 1, 1, 12000};
    static const ModelLine adult{"00000001", "Licence adulte", false, 4, 40, 4500};
    static const ModelLine young{"00000002", "Licence jeune (moins de 18 ans)", false, 1, 15, 2200};
    static const ModelLine trial{"00000003", "Licence découverte", false, 1, 8, 1000};
    static const ModelLine tax{"00000012", "Taxe fédérale de compétition", false, 1, 60, 300};
    static const ModelLine file{"00000005", "Frais de dossier", false, 1, 1, 1500};
    static const ModelLine training{"00000006", "Formation d'arbitre", false, 1, 3, 8000};
    static const ModelLine goods{
        "00000007", "Vente de matériel (tee-shirts, écussons)", false, 5, 50, 1250};
    static const ModelLine hall{
        "99999999", "Location de la salle pour l'assemblée générale", false, 1, 1, 25000};
    static const ModelLine yearly{"00000010", "Cotisation annuelle de ligue", false, 1, 1, 30000};
    static const ModelLine approval{
        "00000008", "Droit d'homologation de tournoi privé", false, 1, 1, 5000};
    static const ModelLine privateEntry{"00000009", "Engagement tournoi privé", false, 8, 64, 2000};
    static const ModelLine entry{"99999991", "Frais Engagement ", true, 1, 12, 3630};
    static const ModelLine qualifying{"99999990", "Lignage Eliminatoires", false, 6, 216, 450};
    static const ModelLine final{"99999990", "Lignage Finale", false, 8, 120, 450};
    static const ModelLine referee{"99999992", "Frais d'arbitrage", false, 1, 1, 4000};
    static const std::vector<InvoiceKind> kinds{
        {"LIC",
         {{affiliation, adult, young, trial, tax},
          {affiliation, adult, young, tax},
          {adult, young}}},
        {"DIV", {{file, training}, {file, goods, hall}, {goods}}},
        {"LI", {{yearly, tax}}},
        {"JORE", {regionalDay(6), regionalDay(10), regionalDay(4)}},
        {"PRIVE", {{approval, privateEntry}, {approval, privateEntry, tax}}},
        {"FD",
         {{entry, qualifying, final}, {entry, qualifying, final, referee}, {entry, qualifying}}},
    };
    return kinds;
}

const InvoiceKind& invoiceKind(const QString& kind) {
    for (const auto& k : invoiceKinds())
        if (kind == QLatin1String(k.kind)) return k;
    return invoiceKinds().back();
}

const std::vector<Column> kHeaderColumns{{"ent_fact_no"},
                                         {"ent_fact_type"},
                                         {"ent_nature"},
                                         {"ent_fact_date"},
                                         {"ent_fact_tri"},
                                         {"ent_fact_echeance"},
                                         {"ent_fact_competition"},
                                         {"ent_c_index"},
                                         {"ent_c_codification"},
                                         {"ent_tiers_fact"},
                                         {"ent_fact_entite", "' '"},
                                         {"ent_fact_lib"},
                                         {"ent_fact_president"},
                                         {"ent_fact_ad1"},
                                         {"ent_fact_ad2"},
                                         {"ent_fact_ad3", "''"},
                                         {"ent_fact_ad4", "''"},
                                         {"ent_fact_cp_ville"},
                                         {"ent_fact_mail1"},
                                         {"ent_fact_mail2", "''"},
                                         {"ent_acompte", "0"},
                                         {"ent_fact_edt", "'O'"},
                                         {"ent_envoi_mail"},
                                         {"ent_compta"},
                                         {"c_edt", "' '"},
                                         {"c_transfert"},
                                         {"ent_fact_origine"}};

// Bound, in this order: c_index, c_saison, c_type, c_intitule, c_nature,
// c_codification, c_cod1..c_cod5, c_numero, c_date_finale, c_tri_finale,
// c_formule, c_lr, c_organisateur, c_nom_organisateur, c_nat_fact.
std::vector<Column> masterColumns(const QByteArray& quotedToday) {
    static QByteArray today;
    today = quotedToday;
    return {{"c_index"},
            {"index_reference", "'00000000'"},
            {"c_saison"},
            {"c_type"},
            {"c_intitule"},
            {"c_nature"},
            {"c_codification"},
            {"c_cod1"},
            {"c_cod2"},
            {"c_cod3"},
            {"c_cod4"},
            {"c_cod5"},
            {"c_numero"},
            {"c_nb_lignes", "0"},
            {"c_date_finale"},
            {"c_tri_finale"},
            {"c_formule"},
            {"c_lr"},
            {"c_dept", "'00'"},
            {"c_num_bowling", "'000'"},
            {"c_organisateur"},
            {"c_nom_organisateur"},
            {"c_inscription", "0"},
            {"c_caution", "0"},
            {"c_arbitre", "'NC'"},
            {"c_nb_equipe", "0"},
            {"c_ligne_eliminatoire", "6"},
            {"c_ligne_finale", "8"},
            {"c_date_enreg", today.constData()},
            {"c_date_modif", today.constData()},
            {"c_facture", "'G'"},
            {"c_num_facture", "''"},
            {"c_date_facture", "'__/__/____'"},
            {"c_tri_facture", "' '"},
            {"c_edt", "''"},
            {"c_edt_fact", "'NON'"},
            {"c_nat_fact"},
            {"c_fact_ligne", "'O'"},
            {"c_fact_engagement", "'O'"},
            {"c_envoi_mail", "'N'"},
            {"c_add_tiers", "'N'"},
            {"c_transfert", "''"}};
}

}  // namespace orve::shell::scale
