#include "competitions/ui/BatchInvoicingPanel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/CompetitionRegister.h"
#include "competitions/ui/GenerationOutput.h"
#include "competitions/ui/PriceFrame.h"
#include "invoicing/DocumentSettings.h"
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

std::vector<app::GridColumn> columnsOf(BatchKind kind) {
    std::vector<app::GridColumn> columns{
        {QStringLiteral("Référence"), "c_index", Kind::Text},
        {QStringLiteral("Saison"), "c_saison", Kind::Text},
        {QStringLiteral("Type"), "c_type", Kind::Text},
        {QStringLiteral("Nature"), "c_nature", Kind::Text},
        {QStringLiteral("Intitulé"), "c_intitule", Kind::Text},
        // Who is invoiced, and for the championship the lines of each level,
        // beside the title where the operator reads them.
        {QStringLiteral("Facturé"), "c_codification", Kind::Text}};
    if (kind == BatchKind::Championship)
        for (const auto& [caption, field] :
             {std::pair{"N1", "c_cod3"}, std::pair{"N2", "c_cod4"}, std::pair{"N3", "c_cod5"}})
            columns.push_back({QString::fromLatin1(caption), field, Kind::Text});
    const std::vector<app::GridColumn> rest{
        {QStringLiteral("date finale"), "c_date_finale", Kind::Text},
        {QStringLiteral("Composition"), "c_formule", Kind::Text},
        {QStringLiteral("Facture"), "c_facture", Kind::Text},
        {QStringLiteral("Lignage"), "c_fact_ligne", Kind::Text},
        {QStringLiteral("Partie Fixe"), "c_nb_equipe_eliminatoire", Kind::Currency},
        {QStringLiteral("Joueurs"), "c_nb_equipe_finale", Kind::Number},
        {QStringLiteral("tri_finale"), "c_tri_finale", Kind::Text}};
    columns.insert(columns.end(), rest.begin(), rest.end());
    return columns;
}

}  // namespace

BatchInvoicingPanel::BatchInvoicingPanel(app::Session& session, app::Dialogs& dialogs,
                                         BatchKind kind, const QString& windowTitle,
                                         QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs), m_kind(kind), m_title(windowTitle) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);

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
    layout->addLayout(top);

    m_rows = new app::DataGrid(QStringLiteral("DBGrid1"), this);
    m_rows->setColumns(columnsOf(kind));
    layout->addWidget(m_rows, 1);

    auto* actions = new QHBoxLayout;
    auto* calculateImage = imageButton(this, QStringLiteral("ImgCalcul"),
                                       style()->standardIcon(QStyle::SP_BrowserReload),
                                       QStringLiteral("Calcul des factures à émettre"));
    auto* calculate = new QPushButton(QStringLiteral("Calcul des factures à émettre"), this);
    calculate->setObjectName(QStringLiteral("Cmdcalcul"));
    auto* invoiceImage = imageButton(this, QStringLiteral("ImgFacture"),
                                     style()->standardIcon(QStyle::SP_DialogSaveButton),
                                     QStringLiteral("Générer les Factures"));
    auto* invoice = new QPushButton(QStringLiteral("Générer les Factures"), this);
    invoice->setObjectName(QStringLiteral("Cmdfacture"));
    for (QWidget* w : {static_cast<QWidget*>(calculateImage), static_cast<QWidget*>(calculate),
                       static_cast<QWidget*>(invoiceImage), static_cast<QWidget*>(invoice)})
        actions->addWidget(w);
    actions->addSpacing(20);
    if (kind == BatchKind::Championship) {
        m_menPrice = new PriceFrame(
            dialogs, QStringLiteral("Frame4"), QStringLiteral("Tarif d'une ligne (Hommes)"),
            QStringLiteral("txt_pu_ligne"), QStringLiteral("CmdValLigne"), this);
        m_womenPrice = new PriceFrame(
            dialogs, QStringLiteral("Frame5"), QStringLiteral("Tarif d'une ligne (Dames)"),
            QStringLiteral("txt_pu_ligne_dames"), QStringLiteral("CmdValLigneDames"), this);
        actions->addWidget(m_menPrice);
        actions->addWidget(m_womenPrice);
        connect(m_menPrice, &PriceFrame::confirmed, this, [this](Money price) {
            m_prices.menLine = price;
            askNextPrice();
        });
        connect(m_womenPrice, &PriceFrame::confirmed, this, [this](Money price) {
            m_prices.womenLine = price;
            askNextPrice();
        });
    } else {
        m_playerPrice =
            new PriceFrame(dialogs, QStringLiteral("Frame6"),
                           QStringLiteral("Tarif de la participation par joueur"),
                           QStringLiteral("txt_pu_joueur"), QStringLiteral("CmdValJoueur"), this);
        actions->addWidget(m_playerPrice);
        connect(m_playerPrice, &PriceFrame::confirmed, this, [this](Money price) {
            m_prices.player = price;
            askNextPrice();
        });
    }
    actions->addStretch(1);
    layout->addLayout(actions);

    connect(m_seasons, &QComboBox::activated, this, &BatchInvoicingPanel::chooseSeason);
    connect(m_rows, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.inform(message); });
    connect(calculate, &QPushButton::clicked, this, &BatchInvoicingPanel::calculate);
    connect(calculateImage, &QToolButton::clicked, this, &BatchInvoicingPanel::calculate);
    connect(invoice, &QPushButton::clicked, this, &BatchInvoicingPanel::invoice);
    connect(invoiceImage, &QToolButton::clicked, this, &BatchInvoicingPanel::invoice);

    // Rows calculated but not invoiced do not outlive a use of the window;
    // what an interrupted run left is finished.
    resumeInterruptedWork(m_session, m_dialogs);
    listOpenRows();
}

QString BatchInvoicingPanel::season() const { return m_seasons->currentText(); }

void BatchInvoicingPanel::listOpenRows() {
    app::guarded(m_dialogs, [&] {
        m_rows->setQuery(m_session.store(), openBatchRowsQuery(m_kind, season()));
    });
}

void BatchInvoicingPanel::listCalculatedRows() {
    app::guarded(m_dialogs, [&] {
        m_rows->setQuery(m_session.store(), calculatedBatchRowsQuery(m_kind, season()));
    });
}

void BatchInvoicingPanel::chooseSeason() {
    stopInvoicing();
    listOpenRows();
}

void BatchInvoicingPanel::calculate() {
    stopInvoicing();
    if (app::guarded(m_dialogs, [&] { calculateBatch(m_session.store(), m_kind, season()); }))
        listCalculatedRows();
}

void BatchInvoicingPanel::invoice() {
    stopInvoicing();
    listCalculatedRows();
    BatchPlan plan;
    if (!app::guarded(m_dialogs, [&] { plan = planBatch(m_session.store(), m_kind, season()); }))
        return;
    if (!m_dialogs.ask(QStringLiteral("Confirmez-vous vouloir générer les %1 factures affichées ?")
                           .arg(plan.rows)))
        return;
    m_plan = plan;
    m_prices = {};
    askNextPrice();
}

void BatchInvoicingPanel::askNextPrice() {
    if (!m_plan) return;
    if (m_plan->asksMenPrice && !m_menAsked && m_menPrice) {
        m_menAsked = true;
        m_menPrice->ask(m_plan->menTariff);
    } else if (m_plan->asksWomenPrice && !m_womenAsked && m_womenPrice) {
        m_womenAsked = true;
        m_womenPrice->ask(m_plan->womenTariff);
    } else if (m_plan->asksPlayerPrice && !m_playerAsked && m_playerPrice) {
        m_playerAsked = true;
        m_playerPrice->ask(m_plan->playerTariff);
    } else {
        generate();
    }
}

void BatchInvoicingPanel::generate() {
    const BatchPlan plan = *m_plan;
    const invoicing::DocumentSettings settings = invoicing::documentSettings(m_session);
    QProgressDialog progress(QStringLiteral("Génération des factures"), QStringLiteral("Annuler"),
                             0, plan.rows, this);
    progress.setWindowTitle(m_title);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    InvoicingOutcome outcome;
    const bool made = app::guarded(m_dialogs, [&] {
        checkDocumentPrinter(settings.letterhead.printer);
        outcome = invoiceBatch(
            m_session.store(), settings, m_kind, plan.season, m_prices, m_session.today(),
            [&](int done, int total) {
                progress.setMaximum(total);
                progress.setLabelText(QStringLiteral("Facture %1 sur %2").arg(done).arg(total));
                progress.setValue(done);
                return !progress.wasCanceled();
            },
            reference::Viewer::of(m_session).login);
    });
    progress.reset();
    stopInvoicing();
    // What was made stays made, even after a failure: the list shows what is left.
    listOpenRows();
    if (!made) return;
    m_dialogs.inform(generationMessage(outcome, settings.invoiceFolder));
    printGenerated(m_session.store(), m_dialogs, settings, outcome.numbers);
}

void BatchInvoicingPanel::stopInvoicing() {
    m_plan.reset();
    m_menAsked = m_womenAsked = m_playerAsked = false;
    for (PriceFrame* frame : {m_menPrice, m_womenPrice, m_playerPrice})
        if (frame) frame->dismiss();
}

}  // namespace orve::competitions
