-- The national transfer reads the tariff of each line's nature and article.
CREATE INDEX IF NOT EXISTS strtarif_article ON strtarif(t_nature, t_article, t_tri_deb);
