-- The level that issued an invoice ("JKV", a league's code, "CD" and a
-- committee's number): its transfer goes to that level's accounting file, and
-- only that level and the national level cancel it. Invoices stored before
-- carry their competition's level when it has one, else the national level's.
ALTER TABLE strentete ADD COLUMN ent_niveau citext;
