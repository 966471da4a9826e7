#pragma once

#include <QDir>
#include <QFile>
#include <QSet>
#include <QString>
#include <QStringList>

#include "invoicing/InvoiceRecords.h"
#include "store/Store.h"
#include "store/StoreCopy.h"

// Data as the repair tools once met it at the federation: the seasons,
// invoices and competitions they are fixed to, with bystanders beside them
// that no tool may touch.
namespace orve::test::seed {

inline void competition(store::Store& s, const QString& index, const QString& season,
                        const QString& type, const QString& state, const QString& invoice,
                        const QString& documentMade = "OUI", const QString& reference = "00000000",
                        const QString& mailed = "N") {
    s.insert("strcompetition", {{"c_index", index},
                                {"index_reference", reference},
                                {"c_saison", season},
                                {"c_type", type},
                                {"c_intitule", "Compétition " + index},
                                {"c_nature", type == "LI" ? "LI" : "DBEXC"},
                                {"c_facture", state},
                                {"c_num_facture", invoice.isEmpty() ? QString(" ") : invoice},
                                {"c_date_facture", invoice.isEmpty() ? "__/__/____" : "15/03/2014"},
                                {"c_tri_facture", invoice.isEmpty() ? " " : "20140315"},
                                {"c_edt", "X"},
                                {"c_edt_fact", documentMade},
                                {"c_envoi_mail", mailed},
                                {"c_add_tiers", "N"}});
}

// A header with `lines` lines filed under `competition`; the lines repeat the
// header's parties and nature, as the invoice rules write them.
inline void invoice(store::Store& s, const QString& number, const QString& competition, int lines,
                    const store::Fields& extra = {}) {
    store::Fields header{{"ent_fact_no", number},
                         {"ent_fact_type", "F"},
                         {"ent_nature", "DBEXC"},
                         {"ent_fact_date", "15/03/2014"},
                         {"ent_fact_tri", "20140315"},
                         {"ent_c_index", competition},
                         {"ent_fact_competition", "Compétition " + competition},
                         {"ent_tiers_fact", "CL13001"},
                         {"ent_tiers_clt", " "},
                         {"ent_fact_lib", "Bowling Club Phocéen"},
                         {"ent_montant", 0},
                         {"ent_fact_edt", "O"},
                         {"ent_envoi_mail", "N"},
                         {"ent_compta", "O"}};
    for (const auto& [column, value] : extra) {
        bool replaced = false;
        for (auto& f : header)
            if (f.first == column) replaced = true, f.second = value;
        if (!replaced) header.emplace_back(column, value);
    }
    s.insert("strentete", header);
    const auto row = *s.selectOne("SELECT * FROM strentete WHERE ent_fact_no = ?", {number});
    for (int i = 1; i <= lines; ++i)
        s.insert("strfacture", {{"f_num_facture", invoicing::paddedInvoiceNumber(number)},
                                {"f_num_lig", QString("%1").arg(i, 2, 10, QChar('0'))},
                                {"f_index_compet", competition},
                                {"f_article", "99999991"},
                                {"f_libelle", "Engagement"},
                                {"f_nature", row.value("ent_nature")},
                                {"f_qte", 1},
                                {"f_pu", 1000},
                                {"f_montant", 1000},
                                {"f_date_fact", "15/03/2014"},
                                {"f_tri_date", "20140315"},
                                {"f_tiers_fact", row.value("ent_tiers_fact")},
                                {"f_tiers_clt", row.value("ent_tiers_clt")}});
}

inline const QString kPseudoMisc = QStringLiteral("8FA00001");

// The legacy targets of every tool, on top of a demo installation.
inline void legacyData(store::Store& s, const QString& invoiceFolder) {
    store::Transaction tx(s);
    // Season 2013: Mérignac, a league competition invoiced, one not invoiced,
    // a league master.
    competition(s, "00019746", "2013", "FD", "F", "2013000010");
    competition(s, "00019800", "2013", "LI", "F", "2013000011");
    competition(s, "00019801", "2013", "FD", " ", "");
    competition(s, "00019802", "2013", "LI", "G", "");
    // Season 2014: a register master and its party rows.
    competition(s, "00020001", "2014", "FD", "G", "");
    competition(s, "00020002", "2014", "FD", "F", "2014000121", "NON", "00020001");
    competition(s, "00021810", "2014", "FD", "F", "2014000123", "OUI", "00020001");
    competition(s, "00022625", "2014", "FD", "F", "2014000260", "OUI", "00020001");
    // Season 2015: one invoice never printed, one mailed but not said so here.
    competition(s, "00023000", "2015", "FD", "F", "2015000001", "NON");
    competition(s, "00023001", "2015", "FD", "F", "2015000002", "OUI");

    invoice(s, "2013000010", "00019746", 2);
    invoice(s, "2013000011", "00019800", 1);
    invoice(s, "2014000121", "00020002", 2);
    invoice(s, "2014000122", "00020002", 1);
    invoice(s, "2014000124", kPseudoMisc, 1);
    invoice(s, "2014000123", "00021810", 2);
    invoice(s, "2014000140", "00021810", 1);
    invoice(s, "2014000141", "00021810", 1);
    invoice(s, "2014000260", "00022625", 1);
    // A bystander whose second line strayed onto competition 00024967 and
    // whose first line lost its invoiced party.
    invoice(s, "2014000125", kPseudoMisc, 2);
    s.exec(
        "UPDATE strfacture SET f_index_compet = '00024967' WHERE f_num_facture = '2014000125' "
        "AND f_num_lig = '02'");
    s.exec(
        "UPDATE strfacture SET f_tiers_fact = 'ANCIEN' WHERE f_num_facture = '2014000125' "
        "AND f_num_lig = '01'");
    invoice(s, "2015000001", "00023000", 1);
    invoice(s, "2015000002", "00023001", 1, {{"ent_envoi_mail", "O"}});
    // The national challenge: two to transfer again (one titled by hand in
    // small letters), one already waiting.
    invoice(s, "2014000130", kPseudoMisc, 1, {{"ent_fact_competition", "CHALLENGE FÉDÉRAL"}});
    invoice(s, "2014000131", kPseudoMisc, 1, {{"ent_fact_competition", "Challenge fédéral "}});
    invoice(s, "2014000132", kPseudoMisc, 1,
            {{"ent_fact_competition", "CHALLENGE FÉDÉRAL"}, {"ent_compta", "N"}});
    // One number written twice, once with a leading zero.
    invoice(s, "2014000150", kPseudoMisc, 1);
    invoice(s, "02014000150", kPseudoMisc, 0);
    tx.commit();

    QDir().mkpath(invoiceFolder);
    for (const char* name : {"Facture_2013_0001.pdf", "FACTURE_2013_0002.PDF",
                             "Facture_2014_0001.pdf", "CL13001_FN_2013000010.pdf"}) {
        QFile f(QDir(invoiceFolder).filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write("%PDF-1.4\n");
    }
}

// What changed between two dumps, as "table: rowid" keys.
struct Diff {
    QSet<QString> removed;  // rows gone or changed (their old version)
    QSet<QString> added;    // rows new or changed (their new version)
    QSet<QString> touched() const { return removed + added; }
};

inline QString rowKey(const QString& dumpLine) { return dumpLine.section('|', 0, 0); }

inline Diff diff(const QStringList& before, const QStringList& after) {
    const QSet<QString> a(before.begin(), before.end());
    const QSet<QString> b(after.begin(), after.end());
    Diff d;
    for (const QString& line : a - b) d.removed << rowKey(line);
    for (const QString& line : b - a) d.added << rowKey(line);
    return d;
}

// The keys of the rows a condition selects, as a dump names them.
inline QSet<QString> keys(const store::Store& s, const QString& table, const QString& where,
                          const store::Params& params = {}) {
    QSet<QString> out;
    for (const auto& r : s.select("SELECT rowid FROM " + table + " WHERE " + where, params))
        out << table + ": " + r.value(0).toString();
    return out;
}

inline QStringList dump(const store::Store& s) { return store::StoreCopy::dump(s); }

}  // namespace orve::test::seed
