#include "store/Clock.h"

#include "store/Formats.h"

namespace orve {

Clock Clock::fromEnvironment() {
    Clock c;
    const QString v = qEnvironmentVariable("ORVE_TODAY");
    if (auto d = format::parseDisplayDate(v)) c.m_fixed = *d;
    return c;
}

}  // namespace orve
