#include "AccountingFixture.h"

#include <QDir>
#include <QFile>

#include "app/Users.h"
#include "invoicing/InvoiceRecords.h"
#include "store/Formats.h"

namespace orve::test {

namespace {

void competition(store::Store& s, const QString& index, const QString& reference,
                 const QString& season, const QString& nature, const QString& state,
                 const QString& number, const QString& code2, const QString& title,
                 const QString& finalDate) {
    s.insert("strcompetition", {{"c_index", index},
                                {"index_reference", reference},
                                {"c_saison", season},
                                {"c_type", "FD"},
                                {"c_nature", nature},
                                {"c_facture", state},
                                {"c_numero", number},
                                {"c_cod2", code2},
                                {"c_intitule", title},
                                {"c_organisateur", "R"},
                                {"c_nom_organisateur", "Ligue Régionale"},
                                {"c_codification", " "},
                                {"c_date_finale", finalDate},
                                {"c_tri_finale", format::displayToSortKey(finalDate)}});
}

void article(store::Store& s, const char* index, const char* text, const char* nature,
             const QVariant& account, const QVariant& analysis) {
    s.insert("strarticle", {{"a_index", index},
                            {"a_libelle", QString::fromUtf8(text)},
                            {"a_nature", nature},
                            {"a_cpta", account},
                            {"a_analytique", analysis}});
}

void tariff(store::Store& s, const char* nature, const char* article, const char* from,
            const char* account, const char* code) {
    s.insert("strtarif", {{"t_nature", nature},
                          {"t_article", article},
                          {"t_tri_deb", from},
                          {"t_tri_fin", "________"},
                          {"t_kvarn", account},
                          {"t_jkv", code},
                          {"t_jg", "JG"}});
}

}  // namespace

void addInvoice(store::Store& s, const QString& number, const QString& type,
                const QString& competitionIndex, const QString& nature, const QString& party,
                const QString& date, const QString& dueDate, const std::vector<FixtureLine>& lines,
                const QString& transferred) {
    qint64 total = 0;
    int n = 0;
    const QString padded = invoicing::paddedInvoiceNumber(number);
    for (const auto& l : lines) {
        total += l.quantity * l.priceCents;
        s.insert("strfacture", {{"f_num_facture", padded},
                                {"f_num_lig", format::zeroPad(++n, 2)},
                                {"f_index_compet", competitionIndex},
                                {"f_article", l.article},
                                {"f_libelle", QString::fromUtf8(l.text)},
                                {"f_nature", nature},
                                {"f_qte", l.quantity},
                                {"f_pu", l.priceCents},
                                {"f_montant", l.quantity * l.priceCents},
                                {"f_date_fact", date},
                                {"f_tri_date", format::displayToSortKey(date)},
                                {"f_tiers_fact", party},
                                {"f_fact_entite", " "},
                                {"f_tiers_clt", party},
                                {"f_clt_entite", " "}});
    }
    s.insert("strentete", {{"ent_fact_no", number},
                           {"ent_fact_type", type},
                           {"ent_nature", nature},
                           {"ent_fact_date", date},
                           {"ent_fact_tri", format::displayToSortKey(date)},
                           {"ent_fact_echeance", dueDate},
                           {"ent_c_index", competitionIndex},
                           {"ent_tiers_fact", party},
                           {"ent_fact_entite", " "},
                           {"ent_fact_lib", QStringLiteral("Partie ") + party},
                           {"ent_montant", total},
                           {"ent_compta", transferred}});
}

void addAccountingFixture(store::Store& s) {
    store::Transaction tx(s);
    app::addUser(s, "gestu", "JKV", "gestu@kvarn.example", "kvarn-2026");
    app::addUser(s, "ligue06", "LR06", "ligue06@kvarn.example", "azur-2026");
    s.insert(
        "strclub",
        {{"club_code", "CL77001"}, {"club_nom", "Quilles de Seine"}, {"club_compta", "411771"}});
    s.insert(
        "strclub",
        {{"club_code", "CL77002"}, {"club_nom", "Strike de Meaux"}, {"club_compta", "411772"}});
    s.insert("strdept", {{"de_no", "077"}, {"de_lib", "Seine-et-Marne"}, {"de_compta", "411077"}});

    article(s, "00000001", "Licence adulte", "LIC", "756100000", "LICA");
    article(s, "00000005", "Frais de dossier", "DIV", "708800000", QVariant());
    article(s, "00000008", "Droit d'homologation", "PRIVE", QVariant(), "PRIVE");
    article(s, "99999990", "Prix d'une ligne", "XXX", "706100000", "COMPET");
    article(s, "99999991", "Engagement par joueur", "XXX", "706200000", "COMPET");
    // The earliest tariff is the one read; an empty one gives no account, nor
    // does an article without tariff, whatever the article's own account.
    tariff(s, "CHAF", "99999991", "20200901", "706299999", "CHAF-NEW");
    tariff(s, "CHAF", "99999991", "20180901", "706210000", "CHAF-ENG");
    tariff(s, "CHAF", "99999990", "20180901", "", "");
    tariff(s, "LIC", "00000001", "20180901", "756100000", "");
    tariff(s, "DIV", "00000005", "20180901", "708800000", "");

    competition(s, "FD100000", "00000000", "2021", "CHAF", "G", "7", "DM",
                "Challenge fédéral de printemps", "15/03/2021");
    competition(s, "FD100001", "FD100000", "2021", "CHAF", "F", "7", "DM",
                "Challenge fédéral de printemps", "15/03/2021");
    competition(s, "1FA00000", "00000000", "2021", "LIC", "X", "", "", "Licences", "31/08/2021");
    competition(s, "1FA00001", "00000000", "2021", "DIV", "X", "", "", "Facture Divers",
                "31/08/2021");
    competition(s, "FD000002", "FD000000", "2020", "CHAF", "F", "3", "DF", "Challenge 2020",
                "10/05/2020");

    addInvoice(
        s, "58", "F", "1FA00000", "LIC", "CL77002", "05/10/2020", "04/11/2020",
        {{"00000001", "Licence adulte", 12, 4500}, {"12345678", "Article disparu", 1, 123450}});
    addInvoice(s, "2021000012", "F", "FD100001", "CHAF", "CL77001", "20/03/2021", "19/04/2021",
               {{"99999991", "Frais Engagement : Equipe non qualifiée phase district", 2, 1210},
                {"99999991", "Frais Engagement : Equipe qualifiée phase régionale", 3, 770},
                {"99999990", "Lignage Eliminatoires (4 équipes)", 10, 450}});
    addInvoice(s, "2021000013", "A", "1FA00001", "DIV", "CD077", "01/12/2020", "01/12/2020",
               {{"00000005", "Frais de dossier", -1, 123450},
                {"00000008", "Droit d'homologation", -1, 50}});
    addInvoice(s, "2021000014", "F", "1FA00001", "DIV", "CL77099", "02/12/2020", "01/01/2021",
               {{"00000005", "Frais de dossier", 1, 1500}});
    addInvoice(s, "2021000020", "F", "FD100001", "CHAF", "CL77001", "25/03/2021", "24/04/2021",
               {{"99999990", "Lignage Finale (2 équipes)", 8, 450}}, "O");
    addInvoice(s, "2020000001", "F", "FD000002", "CHAF", "CL77001", "12/05/2020", "11/06/2020",
               {{"99999990", "Lignage Finale (3 équipes)", 6, 450}});
    // A line whose header is gone: the journal lists it, no transfer takes it.
    s.insert("strfacture", {{"f_num_facture", "00000077"},
                            {"f_num_lig", "01"},
                            {"f_index_compet", "1FA00000"},
                            {"f_article", "00000001"},
                            {"f_libelle", "Licence adulte"},
                            {"f_nature", "LIC"},
                            {"f_qte", 1},
                            {"f_pu", 4500},
                            {"f_montant", 4500},
                            {"f_date_fact", "07/10/2020"},
                            {"f_tri_date", "20201007"},
                            {"f_tiers_fact", "CL77001"}});
    tx.commit();
}

void addStatisticsFixture(store::Store& s) {
    store::Transaction tx(s);
    struct Organised {
        const char* index;
        const char* nature;
        const char* level;
        const char* organiser;
    };
    for (const Organised& c :
         {Organised{"FD200001", "CHAF", "", "R06"}, Organised{"FD200002", "DBEXC", "", "R11"},
          Organised{"FD200003", "CHAF", "DE", "D013"}, Organised{"FD200004", "PRIVE", "IR", "IR1"},
          Organised{"FD200005", "CHAF", "", "X99"}}) {
        competition(s, c.index, "FD200000", "2022", c.nature, "F", "1", "MX",
                    QStringLiteral("Compétition ") + c.index, "15/01/2022");
        s.update("strcompetition", {{"c_cod3", c.level}, {"c_cod4", c.organiser}}, "c_index = ?",
                 {c.index});
    }
    addInvoice(s, "2022000001", "F", "FD200001", "CHAF", "CL77001", "31/08/2022", "30/09/2022",
               {{"99999991", "Engagement", 2, 1000}, {"99999990", "Lignage", 5, 100}});
    addInvoice(s, "2022000002", "F", "FD200002", "DBEXC", "CL77002", "01/09/2021", "01/10/2021",
               {{"99999991", "Engagement", 1, 3000}});
    addInvoice(s, "2022000003", "F", "FD200003", "CHAF", "CD077", "15/01/2022", "15/02/2022",
               {{"99999990", "Lignage", 4, 100}});
    addInvoice(s, "2022000004", "F", "FD200004", "PRIVE", "CL77001", "10/02/2022", "10/03/2022",
               {{"00000008", "Homologation", 1, 5000}});
    addInvoice(s, "2022000005", "F", "FD200005", "CHAF", "CL77002", "01/09/2022", "01/10/2022",
               {{"99999991", "Engagement", 1, 700}});
    addInvoice(s, "2022000006", "F", "FD200005", "CHAF", "CL77002", "20/06/2022", "20/07/2022",
               {{"99999990", "Lignage", 3, 100}});
    tx.commit();
}

invoicing::SelectionCondition seasonSelection(const QString& season, const QString& month) {
    invoicing::SelectionState state;
    state.season = season;
    if (!month.isEmpty()) state.month = month;
    return invoicing::buildSelectionCondition(state);
}

QByteArray fileBytes(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return f.readAll();
}

QByteArray expectedFile(const QString& name) {
    return fileBytes(QDir(QStringLiteral(ORVE_TESTS_DIR)).filePath("accounting/data/" + name));
}

QString transferMark(const store::Store& store, const QString& number) {
    return store.scalar("SELECT ent_compta FROM strentete WHERE ent_fact_no = ?", {number})
        .toString();
}

}  // namespace orve::test
