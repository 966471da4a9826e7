-- The level that owns a competition: "JKV" for the national level, a league's
-- code, or "CD" and a committee's number. Only that level and the national
-- level change, calculate or invoice it. Competitions stored before get it
-- from their party rows at the next sign-in.
ALTER TABLE strcompetition ADD COLUMN c_niveau TEXT COLLATE NOCASE;
