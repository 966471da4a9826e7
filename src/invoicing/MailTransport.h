#pragma once

#include <QString>
#include <stdexcept>

#include "invoicing/MailMessage.h"

// Where the messages of a mailing run go: an SMTP server, or the outbox folder.
namespace orve::invoicing {

// A message that did not get through, with what the server (or the disk)
// answered. `runStops` when nothing else can get through either (the server
// cannot be reached, the login is refused, the outbox cannot be made), so the
// run ends there instead of failing every invoice the same way.
class MailFailure : public std::runtime_error {
  public:
    MailFailure(const QString& answer, bool runStops)
        : std::runtime_error(answer.toStdString()), m_answer(answer), m_runStops(runStops) {}
    const QString& answer() const { return m_answer; }
    bool runStops() const { return m_runStops; }

  private:
    QString m_answer;
    bool m_runStops;
};

class MailTransport {
  public:
    virtual ~MailTransport() = default;
    // Returns once the message is accepted (by the server, or whole on the
    // disk); throws MailFailure otherwise. `name` names an outbox file.
    virtual void deliver(const MailMessage& message, const QString& name) = 0;
    // The outbox folder, or empty for a server.
    virtual QString outboxFolder() const { return {}; }
    // The server and port, or the folder: what a failure message names.
    virtual QString destination() const = 0;
};

}  // namespace orve::invoicing
