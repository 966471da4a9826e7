-- Invoice headers and lines. Amounts in integer cents, quantities as integers.
CREATE TABLE strentete (
  rowid bigserial PRIMARY KEY,
  ent_fact_no citext NOT NULL, ent_fact_type citext, ent_nature citext, ent_fact_date citext, ent_fact_tri citext,
  ent_fact_echeance citext, ent_fact_competition citext, ent_c_index citext, ent_c_codification citext,
  ent_tiers_fact citext, ent_fact_entite citext, ent_fact_lib citext, ent_fact_president citext,
  ent_fact_ad1 citext, ent_fact_ad2 citext, ent_fact_ad3 citext, ent_fact_ad4 citext, ent_fact_cp_ville citext,
  ent_fact_mail1 citext, ent_fact_mail2 citext, ent_tiers_clt citext, ent_clt_entite citext, ent_clt_lib citext,
  ent_clt_president citext, ent_clt_ad1 citext, ent_clt_ad2 citext, ent_clt_ad3 citext, ent_clt_ad4 citext,
  ent_clt_cp_ville citext, ent_montant bigint DEFAULT 0, ent_acompte bigint DEFAULT 0,
  ent_fact_edt citext, ent_envoi_mail citext, ent_compta citext, c_edt citext, c_transfert citext
);
-- A number is never given twice.
CREATE UNIQUE INDEX strentete_no ON strentete(ent_fact_no);
CREATE INDEX strentete_c_index ON strentete(ent_c_index);
CREATE TABLE strfacture (
  rowid bigserial PRIMARY KEY,
  f_num_facture citext NOT NULL, f_num_lig citext, f_index_compet citext, f_article citext, f_libelle citext,
  f_nature citext, f_qte bigint DEFAULT 0, f_pu bigint DEFAULT 0, f_montant bigint DEFAULT 0,
  f_date_fact citext, f_tri_date citext, f_tiers_fact citext, f_fact_entite citext, f_tiers_clt citext,
  f_clt_entite citext
);
CREATE INDEX strfacture_num ON strfacture(f_num_facture, f_num_lig);
CREATE INDEX strfacture_compet ON strfacture(f_index_compet);
