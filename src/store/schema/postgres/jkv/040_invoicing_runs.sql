-- The invoicing runs under way, one row a run, so that another workstation's
-- opening of a window or calculation leaves that run's rows alone. A run
-- refreshes tr_signe (seconds since 1970) while it works and removes its row
-- at its end; a row whose run was killed goes stale and is ignored.
CREATE TABLE IF NOT EXISTS strtraitement (
  rowid bigserial PRIMARY KEY,
  tr_portee citext NOT NULL, tr_jeton text NOT NULL, tr_poste text,
  tr_processus bigint, tr_login text, tr_debut text, tr_signe bigint
);
CREATE INDEX IF NOT EXISTS strtraitement_portee ON strtraitement(tr_portee);
