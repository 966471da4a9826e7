#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "invoicing/InvoiceEntry.h"

class QLineEdit;
class QStackedWidget;

namespace orve::invoicing {

class InvoiceHeaderBox;
class InvoiceLineEditor;
class InvoiceListView;
class InvoiceMailPanel;
class InvoiceMailingFlow;
class InvoicePartyChooser;

// "Création de factures ": invoices made by hand in one of six modes, one at
// a time, and the list of those already made, from which an invoice is
// reopened, its document made again, or credit notes issued.
class ORVE_facture_creation : public QWidget {
    Q_OBJECT
  public:
    ORVE_facture_creation(app::Session& session, app::Dialogs& dialogs, const QString& mode,
                          QWidget* parent = nullptr);

  private:
    void newInvoice();
    void validateHeader();
    void validateCompetitionData();
    void showInvoiceLines(const QString& lineToEdit = {});
    void editLine(int row);
    void chooseArticle(const QString& article);
    void validateLine();
    void cancelLine();
    void generateDocument();
    void showList();
    void relist();
    void openListedInvoice(int row);
    void tick(int row, const QString& field, const QString& text);
    void issueCreditNotes();
    QString mailingNature() const;
    void loadArticles(const QString& nature);
    EntryHeaderState headerState() const;

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    EntryMode m_mode;
    QString m_number;           // the invoice in hand, empty for a new one
    QString m_nature;           // the articles offered are of this nature
    EntryHeaderState m_loaded;  // what a reopened invoice keeps of its own
    InvoiceParty m_billed;
    InvoiceParty m_client;
    QStackedWidget* m_pages;
    QLineEdit* m_modeField;
    InvoicePartyChooser* m_chooser;
    InvoiceHeaderBox* m_header;
    InvoiceLineEditor* m_lines;
    InvoiceListView* m_list;
    InvoiceMailPanel* m_mailPanel;
    InvoiceMailingFlow* m_mailing;
};

}  // namespace orve::invoicing
