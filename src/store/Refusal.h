#pragma once

#include <QString>
#include <stdexcept>

namespace orve {

// Anything thrown that already carries the French text the operator reads.
class OperatorMessage : public std::runtime_error {
  public:
    explicit OperatorMessage(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString& message() const { return m_message; }

  private:
    QString m_message;
};

// The system's own "no": a French message for the operator. Whoever throws it
// has written nothing (or rolled back), so showing the message is all there is to do.
class Refusal : public OperatorMessage {
  public:
    using OperatorMessage::OperatorMessage;
};

// A database or file failure, already worded in French for the operator: which
// file, which table, which operation, and what the engine said.
class StoreError : public OperatorMessage {
  public:
    explicit StoreError(const QString& message, bool busy = false)
        : OperatorMessage(message), m_busy(busy) {}
    // Another workstation held the data: the same operation may succeed if
    // made again in a moment.
    bool busy() const { return m_busy; }

  private:
    bool m_busy = false;
};

// Turns anything thrown below a screen or a batch command into the text shown.
QString describeError(const std::exception& e);

}  // namespace orve
