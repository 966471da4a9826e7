#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

#include "app/BatchCommands.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments();
    args.removeFirst();
    return orve::app::runBatch(args, QCoreApplication::applicationDirPath(), out, err);
}
