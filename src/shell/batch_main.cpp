#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>
#include <cstdio>
#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "app/BatchCommands.h"
#include "shell/Composition.h"
#include "shell/QtMessages.h"

int main(int argc, char** argv) {
#if defined(Q_OS_UNIX)
    // Data files, backups and documents hold addresses and amounts: owner only.
    ::umask(077);
#endif
    // Documents are drawn with fonts, which need a GUI application; a shell
    // without a display draws them offscreen.
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The runtime folder Qt would fall back to, made here so that a shell's
    // standard error carries only the command's own messages.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QByteArray runtime = QByteArray("/tmp/runtime-") + QByteArray::number(getuid());
        ::mkdir(runtime.constData(), 0700);
        qputenv("XDG_RUNTIME_DIR", runtime);
    }
#endif
    orve::shell::quietQtMessages();
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments();
    args.removeFirst();
    orve::app::BatchRegistry registry;
    orve::shell::registerBatchCommands(registry);
    // A batch takes the server password from the password file or PGPASSWORD.
    const auto open = [](const QString& folder, const orve::Clock& clock) {
        return orve::shell::openSession(folder, clock);
    };
    return orve::app::runBatch(registry, open, args, QCoreApplication::applicationDirPath(), out,
                               err);
}
