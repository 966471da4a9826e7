-- The invoicing runs under way, one row a run, so that another workstation's
-- opening of a window or calculation leaves that run's rows alone. A run
-- refreshes tr_signe (seconds since 1970) while it works and removes its row
-- at its end; a row whose run was killed goes stale and is ignored.
CREATE TABLE IF NOT EXISTS strtraitement (
  tr_portee TEXT NOT NULL COLLATE NOCASE, tr_jeton TEXT NOT NULL, tr_poste TEXT,
  tr_processus INTEGER, tr_login TEXT, tr_debut TEXT, tr_signe INTEGER
);
CREATE INDEX IF NOT EXISTS strtraitement_portee ON strtraitement(tr_portee);
