#include "shell/QtMessages.h"

#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace orve::shell {

namespace {

// Qt's and the database client's own warnings ("Unable to free statement",
// "terminating connection", …) are English words for developers: every
// failure the operator must know of reaches them as a French message. They
// are shown only when ORVE_DEBUG is set, for support.
bool forDevelopers() { return qEnvironmentVariableIsSet("ORVE_DEBUG"); }

void handler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
        std::abort();
    }
    if (forDevelopers()) std::fprintf(stderr, "%s\n", qPrintable(message));
}

}  // namespace

void quietQtMessages() { qInstallMessageHandler(handler); }

}  // namespace orve::shell
