#pragma once

#include "invoicing/MailTransport.h"

namespace orve::invoicing {

// Messages left as .eml files in a folder (the installation's envois/), for
// the clerk to send from his own mail program. A file is there whole or not
// at all; an older file of the same name is never replaced.
class MailOutbox : public MailTransport {
  public:
    explicit MailOutbox(QString folder);
    // Writes NAME.eml (NAME-2.eml… when taken); the folder is made on first use.
    void deliver(const MailMessage& message, const QString& name) override;
    QString outboxFolder() const override { return m_folder; }
    QString destination() const override;
    // The files written so far.
    const QStringList& written() const { return m_written; }

  private:
    QString m_folder;
    QStringList m_written;
};

}  // namespace orve::invoicing
