#pragma once

#include <QString>

// Pieces of the statements shared by the transfer, the journal and the
// statistics. Each report is one statement over competitions (c), invoice
// lines (f) and, where needed, headers (e) of the attached stores.
namespace orve::accounting::sql {

// The competition's own columns a report row carries.
inline const QString kCompetitionColumns = QStringLiteral(
    "c.c_saison, c.c_type, c.c_intitule, c.c_nature, c.c_codification, c.c_numero, "
    "c.c_date_finale, c.c_formule, c.c_dept, c.c_num_bowling, c.c_organisateur, "
    "c.c_nom_organisateur, c.c_cod1, c.c_cod2, c.c_cod3, c.c_cod4, c.c_cod5, c.c_tri_finale, "
    "c.c_facture, c.c_edt, c.c_edt_fact, c.c_index");

// "dd/mm/yyyy" made from a line's sort date "yyyymmdd".
inline const QString kLineDate = QStringLiteral(
    "substr(f.f_tri_date, 7, 2) || '/' || substr(f.f_tri_date, 5, 2) || '/' || "
    "substr(f.f_tri_date, 1, 4)");

// A header's number as its lines write it: eight digits at least.
inline const QString kPaddedHeaderNumber = QStringLiteral(
    "CASE WHEN length(e.ent_fact_no) < 8 THEN substr('00000000', 1, 8 - length(e.ent_fact_no)) "
    "|| e.ent_fact_no ELSE e.ent_fact_no END");

// A line's number as its header writes it: no leading zeros.
inline const QString kLineHeaderNumber = QStringLiteral("ltrim(f.f_num_facture, '0')");

// Lines of the selected competitions (the journal's and the statistics' own
// reading: lines filed under the competition).
inline const QString kCompetitionLines =
    QStringLiteral(" FROM strcompetition c JOIN strfacture f ON f.f_index_compet = c.c_index");

}  // namespace orve::accounting::sql
