#include "shell/QtMessages.h"

#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace orve::shell {

namespace {

bool housekeeping(const QString& message) {
    return message.contains(QStringLiteral("QSqlDatabasePrivate::removeDatabase")) ||
           message.contains(QStringLiteral("QSqlDatabasePrivate::addDatabase")) ||
           message.contains(QStringLiteral("propagateSizeHints")) ||
           message.startsWith(QStringLiteral("QStandardPaths:"));
}

void handler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg && housekeeping(message)) return;
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg) std::abort();
}

}  // namespace

void quietQtMessages() { qInstallMessageHandler(handler); }

}  // namespace orve::shell
