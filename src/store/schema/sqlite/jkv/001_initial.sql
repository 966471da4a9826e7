-- Installation, users, competitions, natures, types, organisers, codification lists,
-- articles and tariffs. Text columns compare without regard to case; counts are
-- integers; amounts are integer cents.
CREATE TABLE strspecif (
  spe_cod TEXT COLLATE NOCASE, spe_nom TEXT COLLATE NOCASE, spe_district TEXT COLLATE NOCASE, spe_debut_exe_tri TEXT COLLATE NOCASE, spe_fin_exe_tri TEXT COLLATE NOCASE
);
CREATE TABLE strparam (
  par_login TEXT COLLATE NOCASE NOT NULL, par_pwd TEXT, par_region TEXT COLLATE NOCASE, par_mail TEXT COLLATE NOCASE
);
CREATE UNIQUE INDEX strparam_login ON strparam(par_login);
CREATE TABLE strcompetition (
  c_index TEXT COLLATE NOCASE NOT NULL, index_reference TEXT COLLATE NOCASE, c_saison TEXT COLLATE NOCASE, c_type TEXT COLLATE NOCASE, c_intitule TEXT COLLATE NOCASE, c_nature TEXT COLLATE NOCASE,
  c_codification TEXT COLLATE NOCASE, c_cod1 TEXT COLLATE NOCASE, c_cod2 TEXT COLLATE NOCASE, c_cod3 TEXT COLLATE NOCASE, c_cod4 TEXT COLLATE NOCASE, c_cod5 TEXT COLLATE NOCASE, c_numero TEXT COLLATE NOCASE,
  c_nb_lignes INTEGER DEFAULT 0, c_date_finale TEXT COLLATE NOCASE, c_tri_finale TEXT COLLATE NOCASE, c_formule TEXT COLLATE NOCASE, c_lr TEXT COLLATE NOCASE,
  c_dept TEXT COLLATE NOCASE, c_num_bowling TEXT COLLATE NOCASE, c_organisateur TEXT COLLATE NOCASE, c_nom_organisateur TEXT COLLATE NOCASE, c_nom_organ_suite TEXT COLLATE NOCASE,
  c_inscription INTEGER DEFAULT 0, c_caution INTEGER DEFAULT 0, c_arbitre TEXT COLLATE NOCASE,
  c_nb_joueur_prevu INTEGER DEFAULT 0, c_nb_joueur_reel INTEGER DEFAULT 0,
  c_nb_equipe INTEGER DEFAULT 0, c_nb_equipe_eliminatoire INTEGER DEFAULT 0,
  c_nb_equipe_finale INTEGER DEFAULT 0, c_ligne_eliminatoire INTEGER DEFAULT 0,
  c_ligne_finale INTEGER DEFAULT 0, c_phase TEXT COLLATE NOCASE, c_date_enreg TEXT COLLATE NOCASE, c_date_modif TEXT COLLATE NOCASE,
  c_facture TEXT COLLATE NOCASE, c_num_facture TEXT COLLATE NOCASE, c_date_facture TEXT COLLATE NOCASE, c_tri_facture TEXT COLLATE NOCASE, c_edt TEXT COLLATE NOCASE, c_edt_fact TEXT COLLATE NOCASE,
  c_nat_fact TEXT COLLATE NOCASE, c_fact_ligne TEXT COLLATE NOCASE, c_fact_engagement TEXT COLLATE NOCASE, c_fact_ir TEXT COLLATE NOCASE, c_fact_multi TEXT COLLATE NOCASE,
  c_envoi_mail TEXT COLLATE NOCASE, c_add_tiers TEXT COLLATE NOCASE, c_transfert TEXT COLLATE NOCASE
);
CREATE INDEX strcompetition_index ON strcompetition(c_index);
CREATE INDEX strcompetition_reference ON strcompetition(index_reference);
CREATE INDEX strcompetition_invoice ON strcompetition(c_num_facture);
CREATE INDEX strcompetition_season ON strcompetition(c_saison, c_facture);
CREATE TABLE strnaturec (
  n_code TEXT COLLATE NOCASE NOT NULL, n_libelle TEXT COLLATE NOCASE, n_type TEXT COLLATE NOCASE, n_fact TEXT COLLATE NOCASE, n_fact_engagement TEXT COLLATE NOCASE, n_fact_ligne TEXT COLLATE NOCASE
);
CREATE UNIQUE INDEX strnaturec_code ON strnaturec(n_code);
CREATE TABLE strtypec (t_code TEXT COLLATE NOCASE NOT NULL);
CREATE TABLE strorganisateur (o_genre TEXT COLLATE NOCASE, o_code TEXT COLLATE NOCASE, o_libelle TEXT COLLATE NOCASE);
CREATE TABLE strcodification (p_num TEXT COLLATE NOCASE, p_valeur TEXT COLLATE NOCASE);
CREATE TABLE strarticle (
  a_index TEXT COLLATE NOCASE NOT NULL, a_libelle TEXT COLLATE NOCASE, a_nature TEXT COLLATE NOCASE, a_cpta TEXT COLLATE NOCASE, a_analytique TEXT COLLATE NOCASE
);
CREATE UNIQUE INDEX strarticle_index ON strarticle(a_index);
CREATE TABLE strtarifsaison (
  t_article TEXT COLLATE NOCASE, t_nature TEXT COLLATE NOCASE, t_saison TEXT COLLATE NOCASE, t_tarif INTEGER DEFAULT 0
);
CREATE INDEX strtarifsaison_article ON strtarifsaison(t_article, t_nature, t_saison);
CREATE TABLE strtarif (
  t_nature TEXT COLLATE NOCASE, t_article TEXT COLLATE NOCASE, t_tri_deb TEXT COLLATE NOCASE, t_tri_fin TEXT COLLATE NOCASE, t_kvarn TEXT COLLATE NOCASE, t_jkv TEXT COLLATE NOCASE, t_jg TEXT COLLATE NOCASE
);
