-- Names and titles compared without regard to case, accented capitals
-- included (upper() folds only A to Z under the C locale), as on SQLite.
CREATE OR REPLACE FUNCTION public.orve_pli(v text) RETURNS text
  LANGUAGE sql IMMUTABLE AS $$ SELECT upper(translate(v, 'àâäáãåæçéèêëíìîïñóòôöõœúùûüýÿ', 'ÀÂÄÁÃÅÆÇÉÈÊËÍÌÎÏÑÓÒÔÖÕŒÚÙÛÜÝŸ')) $$;
