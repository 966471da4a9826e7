-- A credit note names the invoice it cancels, as French law wants; an invoice
-- is cancelled once only, even when two workstations try at the same moment.
ALTER TABLE strentete ADD COLUMN ent_fact_origine TEXT COLLATE NOCASE;
CREATE UNIQUE INDEX strentete_origine ON strentete(ent_fact_origine);
