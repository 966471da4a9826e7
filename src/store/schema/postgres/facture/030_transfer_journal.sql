-- Each accounting transfer file: written under a temporary name, its
-- invoices marked in the same transaction as this row, then given its name
-- ("E" until then, "T" once done). A run stopped in between is finished by
-- the next one, which puts the temporary in place or removes it.
CREATE TABLE IF NOT EXISTS strtransfert (
  rowid bigserial PRIMARY KEY,
  tr_fichier text NOT NULL, tr_temporaire text NOT NULL, tr_date text,
  tr_lignes bigint DEFAULT 0, tr_factures bigint DEFAULT 0, tr_etat text
);
CREATE INDEX IF NOT EXISTS strtransfert_etat ON strtransfert(tr_etat);
-- The invoices a transfer file took, found again to cancel it.
CREATE INDEX IF NOT EXISTS strentete_transfert ON strentete(c_transfert);
