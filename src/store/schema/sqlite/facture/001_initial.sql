-- Invoice headers and lines. Amounts in integer cents, quantities as integers.
CREATE TABLE strentete (
  ent_fact_no TEXT COLLATE NOCASE NOT NULL, ent_fact_type TEXT COLLATE NOCASE, ent_nature TEXT COLLATE NOCASE, ent_fact_date TEXT COLLATE NOCASE, ent_fact_tri TEXT COLLATE NOCASE,
  ent_fact_echeance TEXT COLLATE NOCASE, ent_fact_competition TEXT COLLATE NOCASE, ent_c_index TEXT COLLATE NOCASE, ent_c_codification TEXT COLLATE NOCASE,
  ent_tiers_fact TEXT COLLATE NOCASE, ent_fact_entite TEXT COLLATE NOCASE, ent_fact_lib TEXT COLLATE NOCASE, ent_fact_president TEXT COLLATE NOCASE,
  ent_fact_ad1 TEXT COLLATE NOCASE, ent_fact_ad2 TEXT COLLATE NOCASE, ent_fact_ad3 TEXT COLLATE NOCASE, ent_fact_ad4 TEXT COLLATE NOCASE, ent_fact_cp_ville TEXT COLLATE NOCASE,
  ent_fact_mail1 TEXT COLLATE NOCASE, ent_fact_mail2 TEXT COLLATE NOCASE, ent_tiers_clt TEXT COLLATE NOCASE, ent_clt_entite TEXT COLLATE NOCASE, ent_clt_lib TEXT COLLATE NOCASE,
  ent_clt_president TEXT COLLATE NOCASE, ent_clt_ad1 TEXT COLLATE NOCASE, ent_clt_ad2 TEXT COLLATE NOCASE, ent_clt_ad3 TEXT COLLATE NOCASE, ent_clt_ad4 TEXT COLLATE NOCASE,
  ent_clt_cp_ville TEXT COLLATE NOCASE, ent_montant INTEGER DEFAULT 0, ent_acompte INTEGER DEFAULT 0,
  ent_fact_edt TEXT COLLATE NOCASE, ent_envoi_mail TEXT COLLATE NOCASE, ent_compta TEXT COLLATE NOCASE, c_edt TEXT COLLATE NOCASE, c_transfert TEXT COLLATE NOCASE
);
-- A number is never given twice.
CREATE UNIQUE INDEX strentete_no ON strentete(ent_fact_no);
CREATE INDEX strentete_c_index ON strentete(ent_c_index);
CREATE TABLE strfacture (
  f_num_facture TEXT COLLATE NOCASE NOT NULL, f_num_lig TEXT COLLATE NOCASE, f_index_compet TEXT COLLATE NOCASE, f_article TEXT COLLATE NOCASE, f_libelle TEXT COLLATE NOCASE,
  f_nature TEXT COLLATE NOCASE, f_qte INTEGER DEFAULT 0, f_pu INTEGER DEFAULT 0, f_montant INTEGER DEFAULT 0,
  f_date_fact TEXT COLLATE NOCASE, f_tri_date TEXT COLLATE NOCASE, f_tiers_fact TEXT COLLATE NOCASE, f_fact_entite TEXT COLLATE NOCASE, f_tiers_clt TEXT COLLATE NOCASE,
  f_clt_entite TEXT COLLATE NOCASE
);
CREATE INDEX strfacture_num ON strfacture(f_num_facture, f_num_lig);
CREATE INDEX strfacture_compet ON strfacture(f_index_compet);
