#pragma once

#include <QString>
#include <QVariant>
#include <compare>
#include <cstdint>
#include <optional>

namespace orve {

// An exact amount in cents. Amounts are stored as integer cents, so no
// rounding ever creeps into a total.
class Money {
  public:
    constexpr Money() = default;
    static constexpr Money fromCents(std::int64_t cents) { return Money(cents); }
    static Money fromVariant(const QVariant& v) { return Money(v.isNull() ? 0 : v.toLongLong()); }
    // Reads what an operator or a file writes: "12,50", "12.5", "-3", "1 234,00", "12,50 €".
    // Returns nothing for text that is not an amount or has more than two decimals.
    static std::optional<Money> parse(const QString& text);

    constexpr std::int64_t cents() const { return m_cents; }
    constexpr Money operator+(Money o) const { return Money(m_cents + o.m_cents); }
    constexpr Money operator-(Money o) const { return Money(m_cents - o.m_cents); }
    constexpr Money operator-() const { return Money(-m_cents); }
    constexpr Money operator*(std::int64_t n) const { return Money(m_cents * n); }
    Money& operator+=(Money o) {
        m_cents += o.m_cents;
        return *this;
    }
    Money& operator-=(Money o) {
        m_cents -= o.m_cents;
        return *this;
    }
    constexpr auto operator<=>(const Money&) const = default;
    constexpr bool isNegative() const { return m_cents < 0; }

  private:
    constexpr explicit Money(std::int64_t cents) : m_cents(cents) {}
    std::int64_t m_cents = 0;
};

}  // namespace orve
