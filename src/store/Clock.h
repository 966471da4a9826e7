#pragma once

#include <QDate>
#include <optional>

namespace orve {

// Today's date, injectable: ORVE_TODAY=dd/mm/yyyy fixes it for tests and
// scenarios so nothing depends on the machine's calendar.
class Clock {
  public:
    static Clock fromEnvironment();
    static Clock fixed(const QDate& d) {
        Clock c;
        c.m_fixed = d;
        return c;
    }
    QDate today() const { return m_fixed ? *m_fixed : QDate::currentDate(); }
    void setToday(const QDate& d) { m_fixed = d; }

  private:
    std::optional<QDate> m_fixed;
};

}  // namespace orve
