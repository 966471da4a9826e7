#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>
#include <cstdio>

#include "app/BatchCommands.h"

int main(int argc, char** argv) {
    // Documents are drawn with fonts, which need a GUI application; a shell
    // without a display draws them offscreen.
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments();
    args.removeFirst();
    return orve::app::runBatch(args, QCoreApplication::applicationDirPath(), out, err);
}
