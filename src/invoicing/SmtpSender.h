#pragma once

#include <memory>

#include "invoicing/MailSettings.h"
#include "invoicing/MailTransport.h"

namespace orve::invoicing {

// Messages sent to the SMTP server of orve.ini through libcurl. One handle
// serves the whole run, so consecutive messages travel on one connection
// (MAIL FROM, RCPT TO, DATA again for each); a connection the server closes
// is opened again for the next message.
class SmtpSender : public MailTransport {
  public:
    // The password must be in `settings` when a login is set.
    explicit SmtpSender(MailSettings settings);
    ~SmtpSender() override;
    SmtpSender(const SmtpSender&) = delete;
    SmtpSender& operator=(const SmtpSender&) = delete;

    void deliver(const MailMessage& message, const QString& name) override;
    QString destination() const override;

  private:
    struct Handle;
    MailSettings m_settings;
    std::unique_ptr<Handle> m_handle;
};

}  // namespace orve::invoicing
