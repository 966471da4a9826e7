-- The workstation's own lists of invoice headers for mailing: the invoices
-- offered for sending from the invoice window ("envoi") and those whose mark
-- the dispatch ticking corrects ("pointage"). The tick c_edt lives here, never
-- in the shared headers, so two clerks never send each other's selection.
CREATE TABLE strenvoi (
  x_liste TEXT COLLATE NOCASE NOT NULL,
  ent_fact_no TEXT COLLATE NOCASE NOT NULL, ent_fact_type TEXT COLLATE NOCASE, ent_nature TEXT COLLATE NOCASE,
  ent_fact_date TEXT COLLATE NOCASE, ent_fact_tri TEXT COLLATE NOCASE, ent_fact_competition TEXT COLLATE NOCASE,
  ent_c_index TEXT COLLATE NOCASE, ent_fact_lib TEXT COLLATE NOCASE, ent_fact_president TEXT COLLATE NOCASE,
  ent_fact_mail1 TEXT COLLATE NOCASE, ent_fact_mail2 TEXT COLLATE NOCASE, ent_montant INTEGER DEFAULT 0,
  ent_envoi_mail TEXT COLLATE NOCASE, c_edt TEXT COLLATE NOCASE
);
CREATE UNIQUE INDEX strenvoi_no ON strenvoi(x_liste, ent_fact_no);
