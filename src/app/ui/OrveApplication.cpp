#include "app/ui/OrveApplication.h"

#include <cstdio>

#include "store/Refusal.h"

namespace orve::app {

bool OrveApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& e) {
        if (m_dialogs) {
            if (dynamic_cast<const Refusal*>(&e))
                m_dialogs->warn(describeError(e));
            else
                m_dialogs->fail(describeError(e));
        } else {
            std::fprintf(stderr, "%s\n", qPrintable(describeError(e)));
        }
    }
    return false;
}

}  // namespace orve::app
