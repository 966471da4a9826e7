#include "competitions/ui/ORVE_ges_competition.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/CompetitionCalculation.h"
#include "competitions/ui/CompetitionCard.h"
#include "competitions/ui/CompetitionTariffPanel.h"
#include "competitions/ui/GenerationOutput.h"
#include "competitions/ui/PartyRowsPanel.h"
#include "competitions/ui/PriceFrame.h"
#include "invoicing/DocumentSettings.h"
#include "reference/Natures.h"
#include "reference/ReferenceCodes.h"
#include "store/Refusal.h"
#include "store/Seasons.h"

namespace orve::competitions {

namespace {

using Kind = app::GridColumn::Kind;

QToolButton* imageButton(QWidget* parent, const QString& name, const QIcon& icon,
                         const QString& tip) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setIcon(icon);
    b->setIconSize(QSize(28, 28));
    b->setAutoRaise(true);
    b->setToolTip(tip);
    return b;
}

}  // namespace

ORVE_ges_competition::ORVE_ges_competition(app::Session& session, app::Dialogs& dialogs,
                                           QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_ges_competition"),
                          QStringLiteral("Les competitions à facturer"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);

    layout->addLayout(competitionList(), 0);
    layout->addWidget(m_competitions, 3);
    addCard(layout);
    layout->addLayout(invoicingPart(), 4);
    connectActions();

    // Rows calculated but not invoiced do not outlive a use of the window;
    // what an interrupted run left is finished.
    resumeInterruptedWork(m_session, m_dialogs);
    app::guarded(m_dialogs, [&] {
        app::ListItems natures;
        for (const auto& row : reference::natures::list(m_session.store())) {
            const auto n = reference::natures::fromRow(row);
            natures.push_back({n.code.trimmed(), n.label});
        }
        m_card->setNatures(natures);
        std::array<QStringList, 5> codes;
        for (int i = 0; i < 5; ++i)
            codes[i] = reference::codificationValues(m_session.store(), i + 1);
        m_card->setCodifications(codes);
        m_tariffs->load();
    });
    listCompetitions();
    clearCompetition();
    resize(1360, 730);
}

// The season chooser and caption above the list of competitions (DBGrid1).
QHBoxLayout* ORVE_ges_competition::competitionList() {
    auto* top = new QHBoxLayout;
    m_seasons = app::newSeasonChooser(m_session.workingSeason(), this);
    auto* caption = new QLabel(QStringLiteral("Les Compétitions à Facturer"), this);
    QFont bold = caption->font();
    bold.setBold(true);
    caption->setFont(bold);
    top->addWidget(new QLabel(QStringLiteral("Saison :"), this));
    top->addWidget(m_seasons);
    top->addSpacing(20);
    top->addWidget(caption);
    top->addStretch(1);

    m_competitions = new app::DataGrid(QStringLiteral("DBGrid1"), this);
    m_competitions->setColumns(
        {{QStringLiteral("Référence"), "c_index", Kind::Text},
         {QStringLiteral("Saison"), "c_saison", Kind::Text},
         {QStringLiteral("Type"), "c_type", Kind::Text},
         {QStringLiteral("Nature"), "c_nature", Kind::Text},
         {QStringLiteral("Intitulé"), "c_intitule", Kind::Text},
         {QStringLiteral("date finale"), "c_date_finale", Kind::Text},
         {QStringLiteral("Composition"), "c_formule", Kind::Text},
         {QStringLiteral("Engagement"), "c_fact_engagement", Kind::Text},
         {QStringLiteral("Lignage"), "c_fact_ligne", Kind::Text},
         {QStringLiteral("Eliminatoire"), "c_ligne_eliminatoire", Kind::Text},
         {QStringLiteral("Finale"), "c_ligne_finale", Kind::Text},
         {QStringLiteral("tri_finale"), "c_tri_finale", Kind::Text}});
    m_competitions->setMinimumHeight(110);

    return top;
}

// The card (Frame1) with its add, validate and cancel buttons.
void ORVE_ges_competition::addCard(QVBoxLayout* layout) {
    m_card = new CompetitionCard;
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(m_card);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setMinimumHeight(m_card->sizeHint().height() + 4);
    scroll->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    layout->addWidget(scroll);
    auto* cardButtons = new QHBoxLayout;
    m_add = new QPushButton(QStringLiteral("Ajout d'une compétition"), this);
    m_add->setObjectName(QStringLiteral("CmdAjoutCompet"));
    m_validate = new QPushButton(QStringLiteral("Valider"), this);
    m_validate->setObjectName(QStringLiteral("CmdValideCompet"));
    m_cancel = new QPushButton(QStringLiteral("Annuler"), this);
    m_cancel->setObjectName(QStringLiteral("CmdAnnulCompet"));
    cardButtons->addWidget(m_add);
    // Another level's competition is shown, not changed: this says whose it is.
    m_owner = new QLabel(this);
    m_owner->setObjectName(QStringLiteral("lbl_niveau"));
    cardButtons->addSpacing(12);
    cardButtons->addWidget(m_owner);
    cardButtons->addStretch(1);
    cardButtons->addWidget(m_validate);
    cardButtons->addWidget(m_cancel);
    layout->addLayout(cardButtons);
}

// Under the card: the parties with the calculation, the generation and its
// two price frames, and the tariffs of the competition's nature beside them.
QHBoxLayout* ORVE_ges_competition::invoicingPart() {
    auto* bottom = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    bottom->addLayout(left, 4);
    m_parties = new PartyRowsPanel(m_session, m_dialogs, this);
    left->addWidget(m_parties, 1);
    auto* actions = new QHBoxLayout;
    m_calculateImage = imageButton(this, QStringLiteral("ImgCalcul"),
                                   style()->standardIcon(QStyle::SP_BrowserReload),
                                   QStringLiteral("Calcul des factures à émettre"));
    m_calculate = new QPushButton(QStringLiteral("Calcul des factures à émettre"), this);
    m_calculate->setObjectName(QStringLiteral("Cmdcalcul"));
    m_invoiceImage = imageButton(this, QStringLiteral("ImgFacture"),
                                 style()->standardIcon(QStyle::SP_DialogSaveButton),
                                 QStringLiteral("Générer les Factures"));
    m_invoice = new QPushButton(QStringLiteral("Générer les Factures"), this);
    m_invoice->setObjectName(QStringLiteral("Cmdfacture"));
    for (QWidget* w : {static_cast<QWidget*>(m_calculateImage), static_cast<QWidget*>(m_calculate),
                       static_cast<QWidget*>(m_invoiceImage), static_cast<QWidget*>(m_invoice)})
        actions->addWidget(w);
    actions->addStretch(1);
    left->addLayout(actions);
    auto* prices = new QHBoxLayout;
    m_entryPrice = new PriceFrame(
        m_dialogs, QStringLiteral("Frame3"), QStringLiteral("Tarif engagement par joueur"),
        QStringLiteral("txt_pu_engt"), QStringLiteral("CmdValEngagt"), this);
    m_linePrice =
        new PriceFrame(m_dialogs, QStringLiteral("Frame4"), QStringLiteral("Tarif d'une ligne"),
                       QStringLiteral("txt_pu_ligne"), QStringLiteral("CmdValLigne"), this);
    prices->addWidget(m_entryPrice);
    prices->addWidget(m_linePrice);
    prices->addStretch(1);
    left->addLayout(prices);

    m_tariffs = new CompetitionTariffPanel(m_session, m_dialogs, this);
    bottom->addWidget(m_tariffs, 3);

    return bottom;
}

void ORVE_ges_competition::connectActions() {
    connect(m_seasons, &QComboBox::activated, this, &ORVE_ges_competition::chooseSeason);
    connect(m_competitions, &app::DataGrid::rowChosen, this,
            &ORVE_ges_competition::chooseCompetition);
    connect(m_competitions, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });
    connect(m_card, &CompetitionCard::edited, this, [this] {
        // A validated card changed again must be validated again.
        if (m_adding || m_modifying) m_validate->setEnabled(true);
    });
    connect(m_add, &QPushButton::clicked, this, &ORVE_ges_competition::addCompetition);
    connect(m_validate, &QPushButton::clicked, this, &ORVE_ges_competition::validateCompetition);
    connect(m_cancel, &QPushButton::clicked, this, &ORVE_ges_competition::cancelEntry);
    connect(m_calculate, &QPushButton::clicked, this, &ORVE_ges_competition::calculate);
    connect(m_calculateImage, &QToolButton::clicked, this, &ORVE_ges_competition::calculate);
    connect(m_invoice, &QPushButton::clicked, this, &ORVE_ges_competition::invoice);
    connect(m_invoiceImage, &QToolButton::clicked, this, &ORVE_ges_competition::invoice);
    connect(m_entryPrice, &PriceFrame::confirmed, this, &ORVE_ges_competition::entryPriceConfirmed);
    connect(m_linePrice, &PriceFrame::confirmed, this, &ORVE_ges_competition::linePriceConfirmed);
}

reference::Viewer ORVE_ges_competition::viewer() const { return reference::Viewer::of(m_session); }

void ORVE_ges_competition::listCompetitions() {
    app::guarded(m_dialogs, [&] {
        m_competitions->setQuery(m_session.store(), competitionsQuery(m_seasons->currentText()));
    });
}

void ORVE_ges_competition::setCardState(bool editable, bool validatable) {
    m_card->setEnabled(editable);
    m_card->setSeasonEditable(m_adding);
    m_validate->setEnabled(validatable);
    m_parties->setCountsEditable(editable && !m_adding);
    const bool shown = !m_card->index().isEmpty();
    for (QWidget* w : {static_cast<QWidget*>(m_calculate), static_cast<QWidget*>(m_calculateImage),
                       static_cast<QWidget*>(m_invoice), static_cast<QWidget*>(m_invoiceImage)})
        w->setEnabled(shown);
}

void ORVE_ges_competition::clearCompetition() {
    stopInvoicing();
    m_owner->clear();
    m_card->clear();
    m_parties->clear();
    m_tariffs->clearCompetition();
    m_tariffs->show();
    setCardState(false, false);
}

void ORVE_ges_competition::chooseSeason() {
    m_adding = m_modifying = false;
    listCompetitions();
    clearCompetition();
}

void ORVE_ges_competition::chooseCompetition(int row) {
    const QString index = m_competitions->value(row, QStringLiteral("c_index")).toString();
    if (!index.isEmpty()) showCompetition(index, true);
}

void ORVE_ges_competition::showCompetition(const QString& index, bool asking) {
    stopInvoicing();
    CompetitionRecord record;
    Openness openness = Openness::Open;
    QString owner;
    if (!app::guarded(m_dialogs, [&] {
            record = loadCompetition(m_session.store(), index);
            openness = competitionOpenness(m_session.store(), index);
            owner = competitionOwner(m_session.store(), index);
            m_parties->showRows(partyRowsQuery(index));
        }))
        return;
    m_adding = false;
    const bool owned = viewer().mayChange(owner);
    m_modifying = owned && openness == Openness::Open;
    m_owner->setText(owned ? QString()
                           : QStringLiteral("Compétition %1 : consultation seule.")
                                 .arg(reference::ofLevel(owner)));
    m_card->showRecord(record);
    m_tariffs->show();
    m_tariffs->showCompetition(record.season, record.nature);
    setCardState(m_modifying, m_modifying);
    if (!asking || !owned) return;
    if (openness == Openness::Closed) {
        m_dialogs.inform(
            QStringLiteral("Cette compétition est facturée, elle n'est plus modifiable"));
    } else if (openness == Openness::Frozen) {
        m_dialogs.inform(
            QStringLiteral("les caractéristiques de cette compétition ne sont plus modifiables"));
        if (m_dialogs.ask(QStringLiteral(
                "Voulez-vous créer des avoirs/factures complémentaires à cette compétition ? ")))
            createComplementary(record);
    }
}

void ORVE_ges_competition::createComplementary(const CompetitionRecord& record) {
    ValidationOutcome outcome;
    if (app::guarded(m_dialogs, [&] {
            outcome = createComplementaryCompetition(m_session.store(), viewer(), record);
        }))
        showBuilt(outcome);
}

void ORVE_ges_competition::showBuilt(const ValidationOutcome& outcome) {
    if (outcome.emptyListMessage) {
        m_dialogs.inform(*outcome.emptyListMessage);
        cancelEntry();
        return;
    }
    listCompetitions();
    showCompetition(outcome.index, false);
    // Validated (or made complementary): nothing left to validate until the
    // card changes, and the parties are listed by name for typing the counts.
    m_validate->setEnabled(false);
    app::guarded(m_dialogs, [&] { m_parties->showRows(partyRowsByNameQuery(outcome.index)); });
    // The competition stays chosen in the list without being read again.
    const QSignalBlocker quiet(m_competitions);
    m_competitions->storeModel()->fetchAll();
    for (int row = 0; row < m_competitions->rowCount(); ++row)
        if (m_competitions->value(row, QStringLiteral("c_index")).toString() == outcome.index)
            m_competitions->setCurrentIndex(m_competitions->storeModel()->index(row, 0));
}

void ORVE_ges_competition::addCompetition() {
    stopInvoicing();
    m_adding = true;
    m_modifying = false;
    {
        const QSignalBlocker quiet(m_competitions);
        m_competitions->setCurrentIndex({});
    }
    m_card->startNew(m_seasons->currentText());
    m_parties->clear();
    // The prices belong to a competition that exists.
    m_tariffs->hide();
    setCardState(true, true);
    m_card->findChild<QWidget*>(QStringLiteral("Combo11"))->setFocus();
}

void ORVE_ges_competition::validateCompetition() {
    if (!m_adding && !m_modifying) return;
    const CompetitionRecord record = m_card->record();
    ValidationOutcome outcome;
    if (app::guarded(m_dialogs, [&] {
            checkCompetition(record);
            outcome = saveCompetition(m_session.store(), viewer(), record);
        }))
        showBuilt(outcome);
}

void ORVE_ges_competition::cancelEntry() {
    resumeInterruptedWork(m_session, m_dialogs);
    m_adding = m_modifying = false;
    listCompetitions();
    clearCompetition();
}

bool ORVE_ges_competition::stillOpen() const {
    return m_adding || m_validate->isEnabled() || m_card->modified();
}

void ORVE_ges_competition::calculate() {
    const QString index = m_card->index();
    if (index.isEmpty()) return;
    stopInvoicing();
    app::guarded(m_dialogs, [&] {
        calculateCompetition(m_session.store(), viewer(), index, m_card->nature(), stillOpen());
        m_parties->showRows(rowsToInvoiceQuery(index));
    });
}

void ORVE_ges_competition::invoice() {
    const QString index = m_card->index();
    if (index.isEmpty()) return;
    stopInvoicing();
    InvoicingPlan plan;
    if (!app::guarded(m_dialogs, [&] {
            requireCompetitionOwner(m_session.store(), viewer(), index);
            m_parties->showRows(rowsToInvoiceQuery(index));
            plan = planInvoicing(m_session.store(), index);
        }))
        return;
    if (!m_dialogs.ask(QStringLiteral("Confirmez-vous vouloir générer les %1 factures affichées ?")
                           .arg(plan.rows)))
        return;
    m_plan = plan;
    m_prices = {};
    if (plan.asksEntryPrice)
        m_entryPrice->ask(plan.entryTariff);
    else
        askLinePrice();
}

void ORVE_ges_competition::entryPriceConfirmed(Money price) {
    if (!m_plan) return;
    m_prices.entry = price;
    askLinePrice();
}

void ORVE_ges_competition::askLinePrice() {
    if (m_plan && m_plan->asksLinePrice)
        m_linePrice->ask(m_plan->lineTariff);
    else
        generate();
}

void ORVE_ges_competition::linePriceConfirmed(Money price) {
    if (!m_plan) return;
    m_prices.line = price;
    generate();
}

void ORVE_ges_competition::generate() {
    if (!m_plan) return;
    const InvoicingPlan plan = *m_plan;
    const invoicing::DocumentSettings settings = invoicing::documentSettings(m_session);
    QProgressDialog progress(QStringLiteral("Génération des factures"), QStringLiteral("Annuler"),
                             0, plan.rows, this);
    progress.setWindowTitle(QStringLiteral("Les competitions à facturer"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    InvoicingOutcome outcome;
    const bool made = app::guarded(m_dialogs, [&] {
        checkDocumentPrinter(settings.letterhead.printer);
        outcome = invoiceCompetition(
            m_session.store(), viewer(), settings, plan.index, m_prices, m_session.today(),
            [&](int done, int total) {
                progress.setMaximum(total);
                progress.setLabelText(QStringLiteral("Facture %1 sur %2").arg(done).arg(total));
                progress.setValue(done);
                return !progress.wasCanceled();
            });
    });
    progress.reset();
    // What was made stays made, even after a failure: the rows show it.
    showCompetition(plan.index, false);
    if (!made) return;
    m_dialogs.inform(generationMessage(outcome, settings.invoiceFolder));
    printGenerated(m_session.store(), m_dialogs, settings, outcome.numbers);
}

void ORVE_ges_competition::stopInvoicing() {
    m_plan.reset();
    m_entryPrice->dismiss();
    m_linePrice->dismiss();
}

}  // namespace orve::competitions
