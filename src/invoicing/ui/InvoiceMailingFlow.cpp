#include "invoicing/ui/InvoiceMailingFlow.h"

#include <QProgressDialog>
#include <memory>

#include "app/ui/ScreenSupport.h"
#include "invoicing/InvoiceEntry.h"
#include "invoicing/InvoiceMailing.h"
#include "invoicing/MailOutbox.h"
#include "invoicing/MailSettings.h"
#include "invoicing/MailTexts.h"
#include "invoicing/SmtpSender.h"
#include "invoicing/ui/InvoiceListView.h"
#include "invoicing/ui/InvoiceMailPanel.h"

namespace orve::invoicing {

using Kind = app::GridColumn::Kind;

namespace {

std::vector<app::GridColumn> mailingColumns() {
    return {{QStringLiteral("Choix"), "c_edt", Kind::Text},
            {QStringLiteral("N° Facture"), "ent_fact_no", Kind::Text},
            {QStringLiteral("Type"), "ent_fact_type", Kind::Text},
            {QStringLiteral("Date Facture"), "ent_fact_date", Kind::Text},
            {QStringLiteral("Nature"), "ent_nature", Kind::Text},
            {QStringLiteral("Facturé à "), "ent_fact_lib", Kind::Text},
            {QStringLiteral("Président"), "ent_fact_president", Kind::Text},
            {QStringLiteral("mail 1"), "ent_fact_mail1", Kind::Text},
            {QStringLiteral("mail 2"), "ent_fact_mail2", Kind::Text},
            {QStringLiteral("Intitulé de la compétiton"), "ent_fact_competition", Kind::Text},
            {QStringLiteral("Montant"), "ent_montant", Kind::Currency}};
}

}  // namespace

InvoiceMailingFlow::InvoiceMailingFlow(app::Session& session, app::Dialogs& dialogs,
                                       InvoiceListView* list, InvoiceMailPanel* panel,
                                       QWidget* window)
    : QObject(window),
      m_session(session),
      m_dialogs(dialogs),
      m_list(list),
      m_panel(panel),
      m_window(window) {}

void InvoiceMailingFlow::showUnsent(const QString& nature) {
    app::guarded(m_dialogs, [&] {
        fillMailingList(m_session.store(), nature);
        m_nature = nature;
        relist();
    });
}

void InvoiceMailingFlow::relist() {
    m_list->showMailingList(mailingColumns());
    m_list->setCaption(kMailingListCaption);
    m_list->grid()->setQuery(m_session.store().scratch(), mailingListQuery());
    m_list->grid()->resizeColumnsToContents();
    m_list->setTotals(QString(), QString());
}

void InvoiceMailingFlow::rowChosen(int row) {
    app::DataGrid* grid = m_list->grid();
    if (row < 0 || grid->currentIndex().column() != grid->columnOf(QStringLiteral("c_edt"))) return;
    app::guarded(m_dialogs, [&] {
        setMailingTick(m_session.store(),
                       grid->value(row, QStringLiteral("ent_fact_no")).toString(),
                       grid->value(row, QStringLiteral("c_edt")).toString().trimmed().isEmpty());
        grid->reload();
    });
}

void InvoiceMailingFlow::cellEdited(int row, const QString& field, const QString& text) {
    app::guarded(m_dialogs, [&] {
        // Only the tick is the operator's to type into.
        if (field == QStringLiteral("c_edt"))
            setMailingTick(m_session.store(),
                           m_list->grid()->value(row, QStringLiteral("ent_fact_no")).toString(),
                           !text.trimmed().isEmpty());
        m_list->grid()->reload();
    });
}

void InvoiceMailingFlow::tickAll() {
    app::guarded(m_dialogs, [&] {
        tickWholeMailingList(m_session.store());
        m_list->grid()->reload();
    });
}

void InvoiceMailingFlow::requestMail() {
    app::guarded(m_dialogs, [&] {
        // The invoices ticked in the list on screen: the mailing list, or the
        // invoice list (credit notes just made, say).
        m_invoices = m_list->mailingListShown() ? tickedForMailing(m_session.store())
                                                : tickedInvoices(m_session.store());
        if (m_invoices.empty()) throw Refusal(kNothingTicked);
        if (!m_dialogs.ask(kMailConfirmation)) return;
        const MailSettings settings = MailSettings::fromIni(m_session.settingsPath());
        m_panel->prepare(m_session.store(),
                         defaultMailText(m_session.store(), m_session.user().league),
                         m_session.user().mail,
                         mailRouteText(settings, outboxFolder(m_session.programFolder())));
        emit panelOpened();
    });
}

void InvoiceMailingFlow::send() {
    app::guarded(m_dialogs, [&] {
        MailRunOptions options = m_panel->options();
        checkMailRun(options, m_invoices);
        MailSettings settings = MailSettings::fromIni(m_session.settingsPath());
        settings.checkSendable();
        // Credit notes mailed for real: their competitions may be invoiced again.
        if (options.realProcedure && includesCreditNotes(m_session.store(), m_invoices))
            options.invoiceAgain = m_dialogs.ask(kInvoiceAgainQuestion);
        std::unique_ptr<MailTransport> transport;
        if (settings.usesServer()) {
            if (settings.needsPassword()) {
                if (m_session.mailPassword().isEmpty())
                    m_session.setMailPassword(m_dialogs.askPassword(
                        QStringLiteral("Mot de passe du compte %1 sur le serveur de mail %2 :")
                            .arg(settings.user, settings.serverText())));
                if (m_session.mailPassword().isEmpty()) return;
                settings.password = m_session.mailPassword();
            }
            transport = std::make_unique<SmtpSender>(settings);
        } else {
            transport = std::make_unique<MailOutbox>(outboxFolder(m_session.programFolder()));
        }
        const MailRunContext context{
            m_session.invoiceFolder(), m_session.user().mail,
            settings.sender.isEmpty() ? m_session.user().mail : settings.sender};

        const int total = static_cast<int>(m_invoices.size());
        QProgressDialog progress(QStringLiteral("Envoi 1 sur %1").arg(total),
                                 QStringLiteral("Annuler"), 0, total, m_window);
        progress.setWindowTitle(QStringLiteral("Envoi des factures par mail"));
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(0);
        MailRunListener listener;
        listener.before = [&](int index, int count, const QString&) {
            if (progress.wasCanceled()) return false;
            progress.setLabelText(QStringLiteral("Envoi %1 sur %2").arg(index).arg(count));
            progress.setValue(index - 1);
            return !progress.wasCanceled();
        };
        const MailRunReport report =
            sendInvoiceMails(m_session.store(), *transport, context, options, m_invoices, listener);
        progress.setValue(total);
        progress.close();
        // A login refused: the password typed is asked again next time.
        if (!report.stopped.isEmpty()) m_session.setMailPassword(QString());
        m_dialogs.inform(report.summary());
        m_invoices.clear();
        emit panelClosed();
        if (m_list->mailingListShown() && !m_nature.isEmpty()) showUnsent(m_nature);
    });
}

}  // namespace orve::invoicing
