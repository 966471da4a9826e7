#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>
#include <cstdio>

#include "app/BatchCommands.h"

int main(int argc, char** argv) {
    // Documents are drawn with fonts, which need a GUI application; a shell has no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments();
    args.removeFirst();
    return orve::app::runBatch(args, QCoreApplication::applicationDirPath(), out, err);
}
