#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <vector>

namespace orve::test {

// A python3 that has aiosmtpd (the system's, when another python3 comes
// first in the PATH); empty when none.
QString aiosmtpdPython();

// A real SMTP server (aiosmtpd) on 127.0.0.1 and a free port, for as long as
// the object lives. It keeps every message it accepts, refuses the addresses
// it is told to, and asks for a login when given one.
class SmtpTestServer {
  public:
    explicit SmtpTestServer(const QStringList& refused = {}, const QString& user = {},
                            const QString& password = {});
    ~SmtpTestServer();
    SmtpTestServer(const SmtpTestServer&) = delete;
    SmtpTestServer& operator=(const SmtpTestServer&) = delete;

    // Empty when it runs, else why it does not.
    const QString& error() const { return m_error; }
    int port() const { return m_port; }

    struct Received {
        QString from;
        QStringList to;      // the envelope's recipients
        int connection = 0;  // which SMTP connection brought it, from 1
        QString file;        // the message as received
    };
    std::vector<Received> received() const;

    // Writes [mail] into an orve.ini for this server (no encryption).
    void configure(const QString& iniPath, const QString& user = {},
                   const QString& sender = QStringLiteral("factures@kvarn-bowling.example")) const;

  private:
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_port = 0;
    QString m_error;
};

// A message file read back by Python's e-mail parser (what a mail program
// sees): "from", "to", "cc", "subject", "date", "message-id", "body",
// "attachments" [{filename, type, size, sha256}], "defects".
QJsonObject parseMailFile(const QString& path);

// A port on which nothing listens (a server that is down).
int closedPort();

}  // namespace orve::test

// Readable QString values in the failures of these tests.
#include <ostream>
QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
QT_END_NAMESPACE
