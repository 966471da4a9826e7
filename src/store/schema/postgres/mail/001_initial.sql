-- Texts of the e-mails that carry invoices.
CREATE TABLE strmail (
  rowid bigserial PRIMARY KEY,
  mail_nom citext NOT NULL, mail_memo text);
CREATE UNIQUE INDEX strmail_nom ON strmail(mail_nom);
