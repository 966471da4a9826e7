-- Shared by every schema: codes compare without regard to case (citext), and
-- the few SQLite functions the statements use exist here too.
CREATE EXTENSION IF NOT EXISTS citext SCHEMA public;
CREATE OR REPLACE FUNCTION public.instr(haystack text, needle text) RETURNS integer
  LANGUAGE sql IMMUTABLE AS $$ SELECT strpos(haystack, needle) $$;
-- SQLite's CAST(x AS INTEGER): the leading whole number, 0 when there is none.
CREATE OR REPLACE FUNCTION public.orve_int(v text) RETURNS bigint
  LANGUAGE sql IMMUTABLE AS $$ SELECT COALESCE(CAST(substring(trim(v) from '^[+-]?[0-9]+') AS bigint), 0) $$;
CREATE OR REPLACE FUNCTION public.orve_int(v bigint) RETURNS bigint
  LANGUAGE sql IMMUTABLE AS $$ SELECT v $$;
CREATE OR REPLACE FUNCTION public.orve_concat(acc text, v text) RETURNS text
  LANGUAGE sql IMMUTABLE AS $$ SELECT CASE WHEN v IS NULL THEN acc WHEN acc IS NULL THEN v ELSE acc || ',' || v END $$;
DROP AGGREGATE IF EXISTS public.group_concat(text);
CREATE AGGREGATE public.group_concat(text) (SFUNC = public.orve_concat, STYPE = text);
-- Installation, users, competitions, natures, types, organisers, codification lists,
-- articles and tariffs. Text columns compare without regard to case; counts are
-- integers; amounts are integer cents.
CREATE TABLE strspecif (
  rowid bigserial PRIMARY KEY,
  spe_cod citext, spe_nom citext, spe_district citext, spe_debut_exe_tri citext, spe_fin_exe_tri citext
);
CREATE TABLE strparam (
  rowid bigserial PRIMARY KEY,
  par_login citext NOT NULL, par_pwd text, par_region citext, par_mail citext
);
CREATE UNIQUE INDEX strparam_login ON strparam(par_login);
CREATE TABLE strcompetition (
  rowid bigserial PRIMARY KEY,
  c_index citext NOT NULL, index_reference citext, c_saison citext, c_type citext, c_intitule citext, c_nature citext,
  c_codification citext, c_cod1 citext, c_cod2 citext, c_cod3 citext, c_cod4 citext, c_cod5 citext, c_numero citext,
  c_nb_lignes bigint DEFAULT 0, c_date_finale citext, c_tri_finale citext, c_formule citext, c_lr citext,
  c_dept citext, c_num_bowling citext, c_organisateur citext, c_nom_organisateur citext, c_nom_organ_suite citext,
  c_inscription bigint DEFAULT 0, c_caution bigint DEFAULT 0, c_arbitre citext,
  c_nb_joueur_prevu bigint DEFAULT 0, c_nb_joueur_reel bigint DEFAULT 0,
  c_nb_equipe bigint DEFAULT 0, c_nb_equipe_eliminatoire bigint DEFAULT 0,
  c_nb_equipe_finale bigint DEFAULT 0, c_ligne_eliminatoire bigint DEFAULT 0,
  c_ligne_finale bigint DEFAULT 0, c_phase citext, c_date_enreg citext, c_date_modif citext,
  c_facture citext, c_num_facture citext, c_date_facture citext, c_tri_facture citext, c_edt citext, c_edt_fact citext,
  c_nat_fact citext, c_fact_ligne citext, c_fact_engagement citext, c_fact_ir citext, c_fact_multi citext,
  c_envoi_mail citext, c_add_tiers citext, c_transfert citext
);
CREATE INDEX strcompetition_index ON strcompetition(c_index);
CREATE INDEX strcompetition_reference ON strcompetition(index_reference);
CREATE INDEX strcompetition_invoice ON strcompetition(c_num_facture);
CREATE INDEX strcompetition_season ON strcompetition(c_saison, c_facture);
CREATE TABLE strnaturec (
  rowid bigserial PRIMARY KEY,
  n_code citext NOT NULL, n_libelle citext, n_type citext, n_fact citext, n_fact_engagement citext, n_fact_ligne citext
);
CREATE UNIQUE INDEX strnaturec_code ON strnaturec(n_code);
CREATE TABLE strtypec (
  rowid bigserial PRIMARY KEY,
  t_code citext NOT NULL);
CREATE TABLE strorganisateur (
  rowid bigserial PRIMARY KEY,
  o_genre citext, o_code citext, o_libelle citext);
CREATE TABLE strcodification (
  rowid bigserial PRIMARY KEY,
  p_num citext, p_valeur citext);
CREATE TABLE strarticle (
  rowid bigserial PRIMARY KEY,
  a_index citext NOT NULL, a_libelle citext, a_nature citext, a_cpta citext, a_analytique citext
);
CREATE UNIQUE INDEX strarticle_index ON strarticle(a_index);
CREATE TABLE strtarifsaison (
  rowid bigserial PRIMARY KEY,
  t_article citext, t_nature citext, t_saison citext, t_tarif bigint DEFAULT 0
);
CREATE INDEX strtarifsaison_article ON strtarifsaison(t_article, t_nature, t_saison);
CREATE TABLE strtarif (
  rowid bigserial PRIMARY KEY,
  t_nature citext, t_article citext, t_tri_deb citext, t_tri_fin citext, t_kvarn citext, t_jkv citext, t_jg citext
);
