#include "accounting/TransferLayout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <initializer_list>

#include "accounting/AccountingConstants.h"
#include "app/OperatorRoles.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::accounting {

namespace {

const QString kLineEnd = QStringLiteral("\r\n");
constexpr int kFileFields = 12;

// The 0x80..0x9F block of Windows-1252; 0 where the code page has no character.
constexpr char16_t kHighBlock[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// A value as one field: a ";" or a line break inside would shift every column
// after it in the accounting package.
QString field(const QString& value) {
    QString v = value;
    v.replace(QChar(';'), QChar(','));
    return v;
}

// Fields as a line writes them, each followed by its ";".
QString fields(std::initializer_list<QString> values) {
    QString line;
    for (const QString& v : values) {
        line += field(v);
        line += QChar(';');
    }
    return line;
}

// A whole line: no value may break it in two.
void appendLine(QString& text, QString line) {
    line.replace(QChar('\r'), QChar(' '));
    line.replace(QChar('\n'), QChar(' '));
    text += line;
    text += kLineEnd;
}

// "Num Tournoi": a number as three digits; any other text as it is.
QString tournamentNumber(const QString& text) {
    const QString t = text.trimmed();
    bool ok = false;
    const qint64 n = t.toLongLong(&ok);
    return ok && n >= 0 ? format::zeroPad(n, 3) : field(t);
}

bool sameKey(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

void takeInvoice(TransferContent& content, const std::optional<QString>& header) {
    if (!header) return;
    if (content.invoices.empty() || content.invoices.back() != *header)
        content.invoices.push_back(*header);
}

QString leagueAmount(Money m) { return format::zeroPaddedAmount(m, 5, QChar(',')); }

}  // namespace

TransferLayout transferLayoutOf(const QString& userLeague) {
    return app::isNationalCode(userLeague) ? TransferLayout::National : TransferLayout::League;
}

void CustomerAccounts::addClub(const QString& code, const QString& account) {
    m_clubs.insert(code.trimmed().toUpper(), account.trimmed());
}

void CustomerAccounts::addCommittee(const QString& number, const QString& account) {
    m_committees.insert(number.trimmed().toUpper(), account.trimmed());
}

QString CustomerAccounts::accountOf(const QString& billedParty) const {
    const QString party = billedParty.trimmed().toUpper();
    QString account;
    if (party.startsWith(kClubPrefix))
        account = m_clubs.value(party);
    else
        account = m_committees.value(party.right(3));
    // A party without an account of its own goes to the waiting account.
    return account.isEmpty() ? kDefaultCustomerAccount : account;
}

QString nationalInvoiceKey(const QString& season, const QString& number) {
    const QString n = number.trimmed();
    const QString last = n.right(4);
    bool ok = false;
    const qint64 v = last.toLongLong(&ok);
    return season.trimmed() + (ok ? format::zeroPad(v, 4) : last);
}

TransferContent nationalTransfer(const std::vector<NationalLine>& lines) {
    TransferContent out;
    QString text = kNationalHeader + kLineEnd;
    text.reserve(static_cast<qsizetype>(lines.size()) * 120 + 256);
    for (const NationalLine& l : lines) {
        appendLine(text, fields({l.invoiceKey, l.invoiceDate, l.dueDate.value_or(kNoDueDate),
                                 l.customerAccount, l.competitionIndex,
                                 tournamentNumber(l.tournament), l.nature, l.code2, l.title,
                                 format::fileAmount(l.amount), l.account, l.analysis}));
        ++out.lines;
        out.amount += l.amount;
        takeInvoice(out, l.headerNumber);
    }
    out.bytes = toWindows1252(text);
    return out;
}

TransferContent leagueTransfer(const std::vector<LeagueLine>& rows,
                               const CustomerAccounts& accounts) {
    TransferContent out;
    QString text = kLeagueHeader + kLineEnd;
    text.reserve(static_cast<qsizetype>(rows.size()) * 140 + 256);
    size_t i = 0;
    while (i < rows.size()) {
        const QString number = rows[i].number;
        Money total;
        size_t j = i;
        for (; j < rows.size() && sameKey(rows[j].number, number); ++j) {
            const LeagueLine& r = rows[j];
            total += r.amount;
            appendLine(text, fields({r.number, r.invoiceDate, r.dueDate, r.account,
                                     r.billedParty + QChar('-') + r.number +
                                         QStringLiteral(" du ") + r.invoiceDate,
                                     leagueAmount(r.amount),
                                     r.amount.isNegative() ? kDebit : kCredit, r.analysis}));
            ++out.lines;
        }
        // The customer's side of the invoice, after its last line.
        const LeagueLine& last = rows[j - 1];
        appendLine(text, fields({last.number, last.invoiceDate, last.dueDate,
                                 accounts.accountOf(last.billedParty),
                                 last.number + QStringLiteral(" du ") + last.invoiceDate,
                                 leagueAmount(total), total.isNegative() ? kCredit : kDebit,
                                 kDefaultAnalysisCode}));
        ++out.lines;
        out.amount += total;
        takeInvoice(out, last.headerNumber);
        i = j;
    }
    out.bytes = toWindows1252(text);
    return out;
}

QByteArray toWindows1252(const QString& text) {
    QByteArray out;
    out.reserve(text.size());
    for (const QChar ch : text) {
        const char16_t u = ch.unicode();
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            out.append(static_cast<char>(u));
            continue;
        }
        char byte = '?';
        for (int k = 0; k < 32; ++k)
            if (kHighBlock[k] != 0 && kHighBlock[k] == u) byte = static_cast<char>(0x80 + k);
        out.append(byte);
    }
    return out;
}

QString fromTransferBytes(const QByteArray& bytes) {
    QByteArray data = bytes;
    if (data.startsWith("\xEF\xBB\xBF")) data.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString decoded = utf8(data);
    if (!utf8.hasError()) return decoded;
    QString out;
    out.reserve(data.size());
    for (const char c : data) {
        const auto b = static_cast<unsigned char>(c);
        if (b >= 0x80 && b <= 0x9F && kHighBlock[b - 0x80] != 0)
            out.append(QChar(kHighBlock[b - 0x80]));
        else
            out.append(QChar(b));
    }
    return out;
}

TransferFileRows readTransferFile(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile()) throw Refusal(kNoSuchFile);
    if (!file.open(QIODevice::ReadOnly))
        throw StoreError(QStringLiteral("Impossible de lire le fichier %1 : %2")
                             .arg(QDir::toNativeSeparators(path), file.errorString()));
    QStringList lines = fromTransferBytes(file.readAll()).split(QChar('\n'));
    TransferFileRows out;
    bool header = true;
    for (QString line : lines) {
        if (line.endsWith(QChar('\r'))) line.chop(1);
        if (header) {
            header = false;
            out.layout = line.startsWith(QStringLiteral("N Facture")) ? TransferLayout::League
                                                                      : TransferLayout::National;
            out.captions = line.split(QChar(';'));
            continue;
        }
        if (line.trimmed().isEmpty()) continue;
        QStringList values = line.split(QChar(';'));
        // Every field ends with ";": the text after the last one is no field.
        if (values.size() > 1 && values.last().isEmpty()) values.removeLast();
        while (values.size() < kFileFields) values << QString();
        out.rows.push_back(values.mid(0, kFileFields));
    }
    if (out.rows.empty()) throw Refusal(kEmptyTransferFile);
    while (out.captions.size() < kFileFields) out.captions << QString();
    out.captions = out.captions.mid(0, kFileFields);
    // The amount transferred: the national amounts as they are; in the league
    // layout the invoice lines, the customer line (last of each invoice) left out.
    for (size_t i = 0; i < out.rows.size(); ++i) {
        const QStringList& r = out.rows[i];
        if (out.layout == TransferLayout::National) {
            out.amount += Money::parse(r[9]).value_or(Money());
            continue;
        }
        const bool customer = i + 1 == out.rows.size() || out.rows[i + 1][0] != r[0];
        if (customer) continue;
        const Money m = Money::parse(r[5]).value_or(Money());
        out.amount += r[6].trimmed() == kDebit ? -m : m;
    }
    return out;
}

}  // namespace orve::accounting
