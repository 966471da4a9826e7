#include "invoicing/ui/ORVE_facture_creation.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "invoicing/CreditNotes.h"
#include "invoicing/ui/InvoiceHeaderBox.h"
#include "invoicing/ui/InvoiceLineEditor.h"
#include "invoicing/ui/InvoiceListView.h"
#include "invoicing/ui/InvoiceMailPanel.h"
#include "invoicing/ui/InvoiceMailingFlow.h"
#include "invoicing/ui/InvoiceOutput.h"
#include "invoicing/ui/InvoicePartyChooser.h"
#include "reference/Visibility.h"
#include "store/Formats.h"

namespace orve::invoicing {

namespace {
const QString kListCaption = QStringLiteral("FACTURATION DIRECTE");
}

ORVE_facture_creation::ORVE_facture_creation(app::Session& session, app::Dialogs& dialogs,
                                             const QString& mode, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs), m_mode(entryMode(mode)) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_facture_creation"),
                          QStringLiteral("Création de factures "));
    m_nature = m_mode.nature;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);

    auto* top = new QHBoxLayout;
    auto* title = new QLabel(QStringLiteral("FACTURATION DIRECTE - ") + m_mode.code, this);
    title->setObjectName(QStringLiteral("lbl_mode"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    m_modeField = new QLineEdit(m_mode.code, this);
    m_modeField->setObjectName(QStringLiteral("txt_nature"));
    m_modeField->setVisible(false);
    auto* showListButton = new QPushButton(QStringLiteral("Visualiser les factures créées"), this);
    showListButton->setObjectName(QStringLiteral("cmdvisu_fd"));
    top->addWidget(title);
    top->addStretch(1);
    top->addWidget(showListButton);
    layout->addLayout(top);

    m_pages = new QStackedWidget(this);
    auto* creation = new QWidget(m_pages);
    auto* cl = new QHBoxLayout(creation);
    cl->setContentsMargins(0, 0, 0, 0);
    m_chooser = new InvoicePartyChooser(session, dialogs, creation);
    m_header = new InvoiceHeaderBox(m_mode.asksCompetitionData, creation);
    m_lines = new InvoiceLineEditor(creation);
    cl->addWidget(m_chooser, 3);
    cl->addWidget(m_header, 2);
    cl->addWidget(m_lines, 4);
    m_list = new InvoiceListView(dialogs, m_pages);
    m_mailPanel = new InvoiceMailPanel(dialogs, m_pages);
    m_pages->addWidget(creation);
    m_pages->addWidget(m_list);
    m_pages->addWidget(m_mailPanel);
    m_mailing = new InvoiceMailingFlow(session, dialogs, m_list, m_mailPanel, this);
    layout->addWidget(m_pages, 1);

    connect(showListButton, &QPushButton::clicked, this, &ORVE_facture_creation::showList);
    connect(m_chooser, &InvoicePartyChooser::partyChosen, this,
            [this](const InvoiceParty& party, AddressBlock block) {
                (block == AddressBlock::Billing ? m_billed : m_client) = party;
                m_header->showClient(onBehalfOf(m_billed, m_client));
            });
    connect(m_header, &InvoiceHeaderBox::blockChanged, this,
            [this] { m_chooser->setTarget(m_header->block(), m_number); });
    connect(m_header, &InvoiceHeaderBox::validateRequested, this,
            &ORVE_facture_creation::validateHeader);
    connect(m_header, &InvoiceHeaderBox::cancelRequested, this, &ORVE_facture_creation::newInvoice);
    connect(m_header, &InvoiceHeaderBox::competitionDataValidated, this,
            &ORVE_facture_creation::validateCompetitionData);
    connect(m_lines->lines(), &app::DataGrid::rowChosen, this, &ORVE_facture_creation::editLine);
    connect(m_lines, &InvoiceLineEditor::articleChosen, this,
            &ORVE_facture_creation::chooseArticle);
    connect(m_lines, &InvoiceLineEditor::lineValidated, this, &ORVE_facture_creation::validateLine);
    connect(m_lines, &InvoiceLineEditor::lineCancelled, this, &ORVE_facture_creation::cancelLine);
    connect(m_lines, &InvoiceLineEditor::generateRequested, this,
            &ORVE_facture_creation::generateDocument);
    connect(m_list, &InvoiceListView::backRequested, this, [this] { m_pages->setCurrentIndex(0); });
    connect(m_list, &InvoiceListView::creditNotesRequested, this,
            &ORVE_facture_creation::issueCreditNotes);
    connect(m_list->panel(), &SelectionPanel::filterChanged, this, &ORVE_facture_creation::relist);
    connect(m_list->grid(), &app::DataGrid::rowChosen, this,
            &ORVE_facture_creation::openListedInvoice);
    connect(m_list->grid(), &app::DataGrid::cellEdited, this, &ORVE_facture_creation::tick);
    connect(m_list, &InvoiceListView::unsentListRequested, this,
            [this] { m_mailing->showUnsent(mailingNature()); });
    connect(m_list, &InvoiceListView::tickAllRequested, m_mailing, &InvoiceMailingFlow::tickAll);
    connect(m_list, &InvoiceListView::mailRequested, m_mailing, &InvoiceMailingFlow::requestMail);
    connect(m_mailPanel, &InvoiceMailPanel::sendRequested, m_mailing, &InvoiceMailingFlow::send);
    connect(m_mailPanel, &InvoiceMailPanel::cancelRequested, this,
            [this] { m_pages->setCurrentIndex(1); });
    connect(m_mailing, &InvoiceMailingFlow::panelOpened, this,
            [this] { m_pages->setCurrentIndex(2); });
    connect(m_mailing, &InvoiceMailingFlow::panelClosed, this, [this] {
        m_pages->setCurrentIndex(1);
        if (!m_list->mailingListShown()) relist();
    });

    app::guarded(m_dialogs, [&] {
        m_chooser->load();
        m_list->panel()->load(m_session.store(), m_mode.code, m_session.workingSeason());
        loadArticles(m_nature);
        relist();
    });
    newInvoice();
    // A line or a header typed and not validated is lost if the window closes.
    app::watchTyping(m_header, [this] { app::setEditing(this, true); });
    app::watchTyping(m_lines, [this] { app::setEditing(this, true); });
    resize(1350, 720);
    // The form is filled from its top: the invoice's own data in LI and JORE,
    // else the party.
    if (m_mode.asksCompetitionData)
        m_header->findChild<QWidget*>(QStringLiteral("txt_num_competition"))->setFocus();
    else
        m_chooser->findChild<QWidget*>(QStringLiteral("Combo11"))->setFocus();
}

void ORVE_facture_creation::loadArticles(const QString& nature) {
    m_lines->setArticles(articleItems(m_session.store(), nature));
}

void ORVE_facture_creation::newInvoice() {
    m_number.clear();
    m_loaded = {};
    m_billed = {};
    m_client = {};
    m_chooser->clear();
    m_chooser->setTarget(m_header->block(), m_number);
    m_header->showClient({});
    m_header->setDateText(format::displayDate(m_session.today()));
    m_header->setNumber({}, {});
    m_header->setTotal({});
    m_header->setCompetition({}, {});
    m_lines->setDepositText(QStringLiteral("0"));
    m_lines->showLine({}, {}, {}, {}, {}, m_mode.presetText);
    m_lines->lines()->setRows({});
    app::setEditing(this, false);
}

EntryHeaderState ORVE_facture_creation::headerState() const {
    EntryHeaderState s;
    s.level = reference::Viewer::of(m_session).level();
    s.dateText = m_header->dateText();
    s.billed = m_chooser->typing() ? m_chooser->typedParty() : m_billed;
    s.client = m_client;
    s.competitionIndex = m_loaded.competitionIndex.isEmpty()
                             ? m_list->panel()->state().competitionIndex
                             : m_loaded.competitionIndex;
    s.dueDateText = m_loaded.dueDateText;
    s.competitionNumber = m_header->competitionNumber();
    s.competitionTitle = m_header->competitionTitle();
    s.depositText = m_lines->depositText();
    return s;
}

void ORVE_facture_creation::validateCompetitionData() {
    if (app::guarded(m_dialogs,
                     [&] { checkCompetitionData(m_mode, m_header->competitionTitle()); }))
        m_chooser->findChild<QWidget*>(QStringLiteral("Combo11"))->setFocus();
}

void ORVE_facture_creation::validateHeader() {
    app::guarded(m_dialogs, [&] {
        const bool created = m_number.isEmpty();
        const EntryHeaderState state = headerState();
        m_number = saveEntryHeader(m_session.store(), m_mode, state, m_number, m_session.today());
        m_billed = state.billed;
        m_header->showClient(onBehalfOf(m_billed, m_client));
        m_chooser->setTarget(m_header->block(), m_number);
        if (m_nature.isEmpty()) {
            m_nature = loadEntryInvoice(m_session.store(), m_number).nature;
            loadArticles(m_nature);
        }
        // A new invoice goes straight to its first line.
        showInvoiceLines(created ? QStringLiteral("01") : QString());
    });
}

void ORVE_facture_creation::showInvoiceLines(const QString& lineToEdit) {
    // Everything typed so far is written.
    app::setEditing(this, false);
    app::DataGrid* grid = m_lines->lines();
    grid->setQuery(m_session.store(), linesQuery(m_number));
    const InvoiceTotal total = readTotal(m_session.store(), m_number);
    m_header->setNumber(m_number, m_header->documentName());
    m_header->setTotal(QStringLiteral("Total : ") + format::amountEuro(total.total) +
                       (total.type == kCreditNoteType ? QStringLiteral(" (avoir)") : QString()));
    if (lineToEdit.isEmpty()) {
        m_lines->showLine({}, {}, {}, {}, {}, m_mode.presetText);
        return;
    }
    for (int row = 0; row < grid->rowCount(); ++row)
        if (grid->value(row, QStringLiteral("f_num_lig")).toString() == lineToEdit) {
            editLine(row);
            return;
        }
}

void ORVE_facture_creation::editLine(int row) {
    app::DataGrid* grid = m_lines->lines();
    if (row < 0 || row >= grid->rowCount()) return;
    const QString article = grid->value(row, QStringLiteral("f_article")).toString();
    const bool undefined = article == kFirstLineArticle || article == kAddedLineArticle;
    m_lines->showLine(
        grid->value(row, QStringLiteral("f_num_lig")).toString(), article,
        grid->value(row, QStringLiteral("f_libelle")).toString(),
        QString::number(grid->value(row, QStringLiteral("f_qte")).toLongLong()),
        format::fileAmount(Money::fromVariant(grid->value(row, QStringLiteral("f_pu")))),
        undefined ? m_mode.presetText : QString());
}

void ORVE_facture_creation::chooseArticle(const QString& article) {
    if (article.isEmpty()) return;
    app::guarded(m_dialogs, [&] {
        const auto price =
            articleTariff(m_session.store(), article, m_list->panel()->state().season, m_nature);
        if (price) m_lines->setPrice(format::fileAmount(*price));
    });
}

void ORVE_facture_creation::validateLine() {
    if (m_number.isEmpty() || m_lines->lineNumber().isEmpty()) return;
    const bool written = app::guarded(m_dialogs, [&] {
        const InvoiceLine line =
            editedLine(m_session.store(), m_lines->article(), m_lines->quantityText(),
                       m_lines->priceText(), m_lines->freeText());
        writeEditedLine(m_session.store(), m_number, m_lines->lineNumber(), line);
        showInvoiceLines();
    });
    if (!written || !m_mode.manual) return;
    if (!m_dialogs.ask(QStringLiteral("Voulez-vous ajouter une ligne ?"))) return;
    app::guarded(m_dialogs, [&] { showInvoiceLines(addLine(m_session.store(), m_number)); });
}

void ORVE_facture_creation::cancelLine() {
    if (m_number.isEmpty()) return;
    app::guarded(m_dialogs, [&] { showInvoiceLines(); });
}

void ORVE_facture_creation::generateDocument() {
    if (m_number.isEmpty()) {
        m_dialogs.warn(QStringLiteral("Validez d'abord l'entête de la facture."));
        return;
    }
    app::guarded(m_dialogs, [&] {
        // The deposit may have been typed after the header: it is saved first.
        saveEntryHeader(m_session.store(), m_mode, headerState(), m_number, m_session.today());
        const QString file = produceInvoiceDocument(m_session, m_number);
        m_header->setNumber(m_number, QFileInfo(file).fileName());
        m_dialogs.inform(QStringLiteral("La facture N° %1 est générée : %2")
                             .arg(m_number, QFileInfo(file).fileName()));
    });
}

void ORVE_facture_creation::showList() {
    m_pages->setCurrentIndex(1);
    app::guarded(m_dialogs, [&] { relist(); });
}

void ORVE_facture_creation::relist() {
    app::guarded(m_dialogs, [&] {
        m_list->showListing();
        const ListingTotals totals =
            refreshInvoiceListing(m_session.store(), m_mode, m_list->panel()->condition());
        m_list->setCaption(kListCaption);
        m_list->grid()->setQuery(m_session.store().scratch(), invoiceListingQuery());
        m_list->setTotals(totalAmountText(totals.amount), totalQuantityText(totals.quantity));
    });
}

// The nature chosen in the panel, else the mode's own (every mode but COMPET has one).
QString ORVE_facture_creation::mailingNature() const {
    const QString chosen = comboKey(m_list->panel()->state().nature);
    return chosen.isEmpty() ? m_mode.nature : chosen;
}

void ORVE_facture_creation::openListedInvoice(int row) {
    if (m_list->mailingListShown()) return m_mailing->rowChosen(row);
    app::DataGrid* grid = m_list->grid();
    const QString number = grid->value(row, QStringLiteral("c_num_facture")).toString().trimmed();
    if (number.isEmpty()) return;
    if (grid->currentIndex().column() == grid->columnOf(QStringLiteral("c_edt"))) {
        app::guarded(m_dialogs, [&] {
            setListingTick(
                m_session.store(), number,
                grid->value(row, QStringLiteral("c_edt")).toString().trimmed().isEmpty());
            grid->reload();
        });
        return;
    }
    app::guarded(m_dialogs, [&] {
        const EntryInvoice inv = loadEntryInvoice(m_session.store(), number);
        newInvoice();
        m_number = inv.number;
        m_loaded = inv.state;
        m_billed = inv.state.billed;
        m_client = inv.state.client;
        m_chooser->showParty(m_billed);
        m_chooser->setTarget(m_header->block(), m_number);
        m_header->showClient(onBehalfOf(m_billed, m_client));
        m_header->setDateText(inv.state.dateText);
        m_header->setCompetition(inv.state.competitionNumber, inv.state.competitionTitle);
        m_header->setNumber(
            m_number, existingDocumentName(m_session.store(), m_session.invoiceFolder(), m_number));
        m_lines->setDepositText(inv.state.depositText);
        if (m_mode.nature.isEmpty() && inv.nature != m_nature) {
            m_nature = inv.nature;
            loadArticles(m_nature);
        }
        showInvoiceLines();
        m_pages->setCurrentIndex(0);
    });
}

void ORVE_facture_creation::tick(int row, const QString& field, const QString& text) {
    if (m_list->mailingListShown()) return m_mailing->cellEdited(row, field, text);
    app::guarded(m_dialogs, [&] {
        // Only the tick column is the operator's to type into.
        if (field == QStringLiteral("c_edt"))
            setListingTick(m_session.store(),
                           m_list->grid()->value(row, QStringLiteral("c_num_facture")).toString(),
                           !text.trimmed().isEmpty());
        m_list->grid()->reload();
    });
}

void ORVE_facture_creation::issueCreditNotes() {
    app::guarded(m_dialogs, [&] {
        m_list->showListing();
        const std::vector<QString> ticked = tickedInvoices(m_session.store());
        const QString level = reference::Viewer::of(m_session).level();
        const CreditNoteCheck check = checkCreditNotes(m_session.store(), ticked, level);
        m_list->grid()->setQuery(m_session.store().scratch(), invoiceListingQuery(true));
        m_list->setCaption(QStringLiteral(" LISTE DES %1 FACTURES POUR LSQUELLES ONT VA GENERER "
                                          "DES AVOIRS EN AUTOMATIQUE")
                               .arg(ticked.size()));
        const auto restore = [&] {
            m_list->setCaption(kListCaption);
            m_list->grid()->setQuery(m_session.store().scratch(), invoiceListingQuery());
        };
        if (!check.refused.empty()) m_dialogs.warn(check.refusalText());
        if (check.accepted.empty() ||
            !m_dialogs.ask(QStringLiteral("Confirmez-vous la génération des avoirs "
                                          "correspondants à ces factures  ?"))) {
            restore();
            return;
        }
        // Each credit note is committed with its document before the next;
        // cancelling stops between two of them and keeps those made.
        const DocumentSettings settings = documentSettings(m_session);
        checkInvoicePrinter(settings);
        const int total = static_cast<int>(check.accepted.size());
        QProgressDialog progress(QStringLiteral("Génération des avoirs"), QStringLiteral("Annuler"),
                                 0, total, this);
        progress.setWindowModality(Qt::WindowModal);
        QStringList done;
        issueCreditNotesWithDocuments(
            m_session.store(), settings, check.accepted, m_session.today(),
            [&](const IssuedCreditNote& issued, const QString& file, int count, int) {
                deliverInvoiceDocument(m_session.store(), settings, issued.creditNote, file);
                done << QStringLiteral("avoir N° %1 sur la facture N° %2")
                            .arg(issued.creditNote, issued.invoice);
                progress.setLabelText(QStringLiteral("%1 sur %2").arg(count).arg(total));
                progress.setValue(count);
                return !progress.wasCanceled();
            },
            level);
        relist();
        m_dialogs.inform(QStringLiteral("Avoirs générés : ") + done.join(QStringLiteral(" ; ")));
    });
}

}  // namespace orve::invoicing
