#include "support/TestInstall.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QSaveFile>

#include "app/InstallationSetup.h"
#include "app/SignIn.h"
#include "app/Startup.h"
#include "app/ui/FrenchDesktop.h"
#include "shell/Composition.h"
#include "shell/DemoData.h"
#include "support/TestServer.h"

namespace orve::test {

TestInstall::TestInstall(Kind kind, const QDate& today) : m_today(today) {
    m_home = m_dir.path() + QStringLiteral("/inst");
    if (onServer()) m_base = createDatabase();
    if (kind == Kind::Demo) {
        shell::createDemoInstallation(m_home, today, m_base);
    } else {
        app::createInstallation(m_home, {"TST", "Installation de test", "D1"}, today, m_base);
    }
}

TestInstall::~TestInstall() {
    if (!m_base.isEmpty()) dropDatabase(m_base);
}

std::unique_ptr<app::Session> TestInstall::start() const {
    return shell::openSession(m_home, Clock::fixed(m_today));
}

std::unique_ptr<app::Session> TestInstall::startAs(const QString& login) const {
    auto s = start();
    app::actAs(*s, login);
    return s;
}

namespace {

// The offscreen platform's screen is 800 x 600 unless told otherwise; windows
// are tried on the smallest laptop screen the federation's offices use.
void offscreenLaptopScreen() {
    if (qgetenv("QT_QPA_PLATFORM") != "offscreen") return;
    const QString path = QDir::temp().filePath(
        QStringLiteral("orve-ecran-%1x%2.json").arg(kScreenWidth).arg(kScreenHeight));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QStringLiteral("{\"screens\": [{\"name\": \"portable\", \"x\": 0, \"y\": 0, "
                              "\"width\": %1, \"height\": %2, \"logicalDpi\": 96, "
                              "\"logicalBaseDpi\": 96, \"dpr\": 1}]}\n")
                   .arg(kScreenWidth)
                   .arg(kScreenHeight)
                   .toUtf8());
    if (!file.commit()) return;
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(path));
}

}  // namespace

void application() {
    static int argc = 1;
    static char name[] = "orve-tests";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance()) return;
    offscreenLaptopScreen();
    auto* app = new QApplication(argc, argv);
    app::installFrench(*app);
}

int runProgram(const QString& program, const QStringList& args, const QString& input, QString* out,
               QString* err, const QStringList& extraEnv) {
    QProcess p;
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    for (const QString& kv : extraEnv) env.insert(kv.section('=', 0, 0), kv.section('=', 1));
    p.setProcessEnvironment(env);
    p.start(program, args);
    p.write(input.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished(120000);
    if (out) *out = QString::fromUtf8(p.readAllStandardOutput());
    if (err) *err = QString::fromUtf8(p.readAllStandardError());
    return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
}

}  // namespace orve::test
