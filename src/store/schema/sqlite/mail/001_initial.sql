-- Texts of the e-mails that carry invoices.
CREATE TABLE strmail (mail_nom TEXT COLLATE NOCASE NOT NULL, mail_memo TEXT);
CREATE UNIQUE INDEX strmail_nom ON strmail(mail_nom);
