-- Third parties: leagues, committees, bowling centres, clubs, licensed players.
CREATE TABLE strregion (
  rowid bigserial PRIMARY KEY,
  re_code citext NOT NULL, re_lib citext, re_president citext, re_president_int citext,
  re_ad1 citext, re_ad2 citext, re_ad3 citext, re_ad4 citext, re_cp citext, re_ville citext, re_mail1 citext, re_mail2 citext,
  re_csr_nom citext, re_csr_int citext, re_fact citext, re_date_enreg citext
);
CREATE UNIQUE INDEX strregion_code ON strregion(re_code);
CREATE TABLE strdept (
  rowid bigserial PRIMARY KEY,
  de_no citext NOT NULL, de_lib citext, de_region citext, de_lr citext, de_district citext, de_president citext,
  de_president_int citext, de_ad1 citext, de_ad2 citext, de_ad3 citext, de_ad4 citext, de_cp citext, de_ville citext,
  de_mail1 citext, de_mail2 citext, de_facturation citext, de_compta citext, de_date_enreg citext
);
CREATE UNIQUE INDEX strdept_no ON strdept(de_no);
CREATE TABLE strbowling (
  rowid bigserial PRIMARY KEY,
  b_compte_tiers citext NOT NULL, b_numero citext, b_nom citext, b_type citext, b_region citext, b_dept citext,
  b_district citext, b_ad1 citext, b_ad2 citext, b_ad3 citext, b_cp citext, b_ville citext, b_tel1 citext, b_tel2 citext,
  b_fax citext, b_mail1 citext, b_mail2 citext, b_site citext, b_pistes bigint DEFAULT 0, b_homologation citext,
  b_homologation_tri citext, b_nom_proprietaire citext, b_nom_responsable citext, b_fac_nom citext,
  b_fac_ad1 citext, b_fac_ad2 citext, b_fac_ad3 citext, b_fac_ad4 citext, b_fac_cp citext, b_fac_ville citext,
  b_date_enreg citext
);
CREATE UNIQUE INDEX strbowling_compte ON strbowling(b_compte_tiers);
CREATE TABLE strclub (
  rowid bigserial PRIMARY KEY,
  club_code citext NOT NULL, club_num citext, club_nom citext, club_type citext, club_region citext, club_lr citext,
  club_dept citext, club_district citext, club_bowling citext, club_bowling_code citext, club_president citext,
  club_dirig citext, club_ad1 citext, club_ad2 citext, club_ad3 citext, club_ad4 citext, club_cp citext, club_ville citext,
  club_mail1 citext, club_mail2 citext, club_compta citext, club_date_enreg citext
);
CREATE UNIQUE INDEX strclub_code ON strclub(club_code);
CREATE TABLE strlicence (
  rowid bigserial PRIMARY KEY,
  l_an citext, l_num citext, l_nom citext, l_prenom citext, l_ad1 citext, l_ad2 citext, l_ad3 citext, l_cp citext, l_ville citext,
  l_mail citext
);
CREATE INDEX strlicence_num ON strlicence(l_an, l_num);
CREATE INDEX strlicence_nom ON strlicence(l_nom, l_prenom);
