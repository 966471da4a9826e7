#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

// One e-mail as it leaves: addresses, subject, a plain UTF-8 text and at most
// one attached file, written out as MIME. Nothing typed by an operator or
// read from the data can add a header line: addresses are checked, control
// characters of the subject become blanks, the text is quoted-printable.
namespace orve::invoicing {

struct MailAttachment {
    QString fileName;  // the name the recipient sees
    QString contentType = QStringLiteral("application/pdf");
    QByteArray bytes;
};

struct MailMessage {
    QString from;
    QStringList to;
    QStringList cc;
    QString subject;
    QString body;  // any line endings; sent as CRLF lines
    std::optional<MailAttachment> attachment;

    // Every address the server must deliver to: To, then Cc, each once.
    QStringList recipients() const;
    // The message as it goes to the server or into an .eml file. `draft`
    // adds "X-Unsent: 1", so a mail program opens the file ready to send.
    QByteArray toMime(const QDateTime& date, const QString& messageId, bool draft = false) const;
};

// A plain address "local@domain.tld": letters, digits and the usual signs,
// a domain of dotted labels; nothing else (no blank, no name, no bracket,
// no line break), at most 254 characters.
bool plausibleAddress(const QString& address);

// An address field of the data may hold several addresses separated by ";"
// or ","; blanks around them are dropped, empty parts skipped.
QStringList splitAddresses(const QString& field);

// Control characters (line breaks, tabulations…) become blanks; the text is
// trimmed. What a header carries of an operator's text goes through here.
QString headerText(const QString& text);

// A header value as RFC 2047 encoded words ("=?UTF-8?B?…?="), folded so
// that no line passes 76 characters; plain ASCII that fits stays as it is.
QByteArray encodeHeaderValue(const QString& text);

// UTF-8 quoted-printable with CRLF line ends and lines of at most 76 characters.
QByteArray quotedPrintable(const QString& text);

// "Sat, 21 Nov 2026 10:15:00 +0100", whatever the program's language.
QByteArray mailDate(const QDateTime& date);

// "<unique@domain-of-sender>".
QString newMessageId(const QString& sender);

}  // namespace orve::invoicing
