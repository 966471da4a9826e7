#include "invoicing/ui/InvoiceListView.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orve::invoicing {

using Kind = app::GridColumn::Kind;

namespace {

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

}  // namespace

InvoiceListView::InvoiceListView(app::Dialogs& dialogs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* criteria = new QGroupBox(QStringLiteral("Critères de sélection d'affichage "), this);
    criteria->setObjectName(QStringLiteral("Frame1"));
    auto* cl = new QHBoxLayout(criteria);
    m_panel = new SelectionPanel(dialogs, criteria);
    cl->addWidget(m_panel, 1);
    auto* buttons = new QVBoxLayout;
    auto* back = button(QStringLiteral("cmdretour_creation_fd"),
                        QStringLiteral("Retour en création de facture"), criteria);
    auto* unsent =
        button(QStringLiteral("cmdvisu_fd_mail"),
               QStringLiteral("Visualiser les factures non envoyées par mail"), criteria);
    auto* credit =
        button(QStringLiteral("CmdAvoir"),
               QStringLiteral("Générer des avoirs pour les factures affichées"), criteria);
    auto* mail = button(QStringLiteral("CmdEnvoiMail_bis"),
                        QStringLiteral("Envoyer les Factures affichées par mail "), criteria);
    for (auto* b : {back, unsent, credit, mail}) buttons->addWidget(b);
    buttons->addStretch(1);
    cl->addLayout(buttons);
    layout->addWidget(criteria);

    m_gridBox = new QGroupBox(QStringLiteral("FACTURATION DIRECTE"), this);
    m_gridBox->setObjectName(QStringLiteral("Frame_liste"));
    auto* gl = new QVBoxLayout(m_gridBox);
    m_grid = new app::DataGrid(QStringLiteral("DBGrid1"), m_gridBox);
    m_grid->setEditable(true);
    m_all = button(QStringLiteral("cmdtoutes"), QStringLiteral("TOUTES"), m_gridBox);
    m_all->setVisible(false);
    auto* tools = new QHBoxLayout;
    tools->addWidget(m_all);
    tools->addStretch(1);
    gl->addLayout(tools);
    gl->addWidget(m_grid);
    layout->addWidget(m_gridBox, 1);
    showListing();

    auto* summary = new QGroupBox(QStringLiteral("Récapitulatif de la sélection"), this);
    auto* sl = new QHBoxLayout(summary);
    m_total = new QLabel(summary);
    m_total->setObjectName(QStringLiteral("lbltotal"));
    m_quantity = new QLabel(summary);
    m_quantity->setObjectName(QStringLiteral("lblqte"));
    sl->addWidget(m_total);
    sl->addSpacing(40);
    sl->addWidget(m_quantity);
    sl->addStretch(1);
    layout->addWidget(summary);

    connect(back, &QPushButton::clicked, this, &InvoiceListView::backRequested);
    connect(credit, &QPushButton::clicked, this, &InvoiceListView::creditNotesRequested);
    connect(unsent, &QPushButton::clicked, this, &InvoiceListView::unsentListRequested);
    connect(mail, &QPushButton::clicked, this, &InvoiceListView::mailRequested);
    connect(m_all, &QPushButton::clicked, this, &InvoiceListView::tickAllRequested);
}

void InvoiceListView::showListing() {
    m_mailing = false;
    m_all->setVisible(false);
    // The tick comes after the index: a click on it ticks the invoice, a click
    // anywhere else opens it.
    m_grid->setColumns({{QStringLiteral("Index"), "c_index", Kind::Text},
                        {QStringLiteral("Choix"), "c_edt", Kind::Text},
                        {QStringLiteral("Intitulé de la compétiton"), "c_intitule", Kind::Text},
                        {QStringLiteral("Nature"), "c_nature", Kind::Text},
                        {QStringLiteral("c_formule"), "c_formule", Kind::Text},
                        {QStringLiteral("codification"), "c_codification", Kind::Text},
                        {QStringLiteral("c_numero"), "c_numero", Kind::Text},
                        {QStringLiteral("Organisateur"), "c_nom_organisateur", Kind::Text},
                        {QStringLiteral("c_organisateur"), "c_organisateur", Kind::Text},
                        {QStringLiteral("date_tri"), "c_tri_finale", Kind::Text},
                        {QStringLiteral("Date finale"), "c_date_finale", Kind::Text},
                        {QStringLiteral("c_facture"), "c_facture", Kind::Text},
                        {QStringLiteral("N° Facture"), "c_num_facture", Kind::Text},
                        {QStringLiteral("Date Facture"), "c_date_facture", Kind::Text},
                        {QStringLiteral("tri_facture"), "c_tri_facture", Kind::Text},
                        {QStringLiteral("Produits facturés"), "f_libelle", Kind::Text},
                        {QStringLiteral("Quantité"), "f_qte", Kind::Number},
                        {QStringLiteral("f_pu"), "f_pu", Kind::Currency},
                        {QStringLiteral("Montant"), "f_montant", Kind::Currency}});
}

void InvoiceListView::showMailingList(const std::vector<app::GridColumn>& columns) {
    m_mailing = true;
    m_all->setVisible(true);
    m_grid->setColumns(columns);
}

void InvoiceListView::setCaption(const QString& caption) { m_gridBox->setTitle(caption); }

void InvoiceListView::setTotals(const QString& amount, const QString& quantity) {
    m_total->setText(amount);
    m_quantity->setText(quantity);
}

}  // namespace orve::invoicing
