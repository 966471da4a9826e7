#include "support/SmtpTestServer.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTcpServer>

#include "store/Settings.h"
#include "support/TestInstall.h"

namespace orve::test {

namespace {

QString supportFile(const char* name) {
    return QStringLiteral(ORVE_TESTS_DIR "/support/") + QLatin1String(name);
}

}  // namespace

QString aiosmtpdPython() {
    static const QString found = [] {
        for (const QString& candidate :
             {qEnvironmentVariable("ORVE_TEST_PYTHON"), QStringLiteral("/usr/bin/python3"),
              QStringLiteral("python3")}) {
            if (candidate.isEmpty()) continue;
            QProcess p;
            p.start(candidate, {QStringLiteral("-c"), QStringLiteral("import aiosmtpd")});
            if (p.waitForFinished(20000) && p.exitStatus() == QProcess::NormalExit &&
                p.exitCode() == 0)
                return candidate;
        }
        return QString();
    }();
    return found;
}

SmtpTestServer::SmtpTestServer(const QStringList& refused, const QString& user,
                               const QString& password) {
    const QString python = aiosmtpdPython();
    if (python.isEmpty()) {
        m_error = QStringLiteral("no python3 with aiosmtpd (install python3-aiosmtpd)");
        return;
    }
    QStringList args{supportFile("smtp_test_server.py"), m_folder.path()};
    for (const QString& r : refused) args << QStringLiteral("--refuse") << r;
    if (!user.isEmpty())
        args << QStringLiteral("--user") << user << QStringLiteral("--password") << password;
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(python, args);
    QByteArray out;
    while (!out.contains('\n') && m_process.waitForReadyRead(20000))
        out += m_process.readAllStandardOutput();
    if (!out.startsWith("PORT ")) {
        m_error = QStringLiteral("SMTP test server did not start: ") + QString::fromUtf8(out) +
                  QString::fromUtf8(m_process.readAllStandardError());
        return;
    }
    m_port = out.mid(5).trimmed().toInt();
}

SmtpTestServer::~SmtpTestServer() {
    if (m_process.state() == QProcess::NotRunning) return;
    // End of standard input stops it.
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(10000)) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

std::vector<SmtpTestServer::Received> SmtpTestServer::received() const {
    std::vector<Received> out;
    const QDir dir(m_folder.path());
    for (const QString& name : dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(name));
        if (!f.open(QIODevice::ReadOnly)) continue;
        const QJsonObject o = QJsonDocument::fromJson(f.readAll()).object();
        Received r;
        r.from = o.value("from").toString();
        for (const auto& v : o.value("to").toArray()) r.to << v.toString();
        r.connection = o.value("connection").toInt();
        r.file = dir.filePath(name.section('.', 0, 0) + QStringLiteral(".eml"));
        out.push_back(r);
    }
    return out;
}

void SmtpTestServer::configure(const QString& iniPath, const QString& user,
                               const QString& sender) const {
    orve::store::Settings ini(iniPath);
    ini.beginGroup(QStringLiteral("mail"));
    ini.setValue("serveur", QStringLiteral("127.0.0.1"));
    ini.setValue("port", m_port);
    ini.setValue("securite", QStringLiteral("aucune"));
    ini.setValue("utilisateur", user);
    ini.setValue("expediteur", sender);
    ini.setValue("delai", 20);
    ini.endGroup();
    ini.sync();
}

QJsonObject parseMailFile(const QString& path) {
    QProcess p;
    p.start(aiosmtpdPython().isEmpty() ? QStringLiteral("python3") : aiosmtpdPython(),
            {supportFile("mail_parts.py"), path});
    p.waitForFinished(30000);
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

int closedPort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const int port = probe.serverPort();
    probe.close();
    return port;
}

}  // namespace orve::test
