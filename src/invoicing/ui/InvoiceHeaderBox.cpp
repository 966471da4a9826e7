#include "invoicing/ui/InvoiceHeaderBox.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace orve::invoicing {

namespace {

QLineEdit* lineEdit(const QString& name, QWidget* parent) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    return e;
}

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

}  // namespace

InvoiceHeaderBox::InvoiceHeaderBox(bool asksCompetitionData, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Frame2"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    // Frame13 comes first: in LI and JORE its title is the invoice's.
    m_competition =
        new QGroupBox(QStringLiteral("saisie des données spécifiques à cette facture"), this);
    m_competition->setObjectName(QStringLiteral("Frame13"));
    auto* comp = new QGridLayout(m_competition);
    m_competitionNumber = lineEdit(QStringLiteral("txt_num_competition"), m_competition);
    m_competitionTitle = lineEdit(QStringLiteral("txt_nom_competition"), m_competition);
    auto* validateComp =
        button(QStringLiteral("CmdvalLIJORE"), QStringLiteral("Valider"), m_competition);
    comp->addWidget(new QLabel(QStringLiteral("N° Fiche de compétition KVARN"), m_competition), 0,
                    0);
    comp->addWidget(m_competitionNumber, 0, 1);
    comp->addWidget(new QLabel(QStringLiteral("Nom et date de la ligue"), m_competition), 1, 0);
    comp->addWidget(m_competitionTitle, 1, 1);
    comp->addWidget(validateComp, 1, 2);
    // The title is the long one: it takes the width the labels leave.
    comp->setColumnStretch(1, 1);
    m_competitionTitle->setMinimumWidth(120);
    layout->addWidget(m_competition);
    m_competition->setVisible(asksCompetitionData);
    connect(validateComp, &QPushButton::clicked, this, &InvoiceHeaderBox::competitionDataValidated);

    auto* client = new QGroupBox(QStringLiteral("pour le compte de :  "), this);
    client->setObjectName(QStringLiteral("Frame3"));
    auto* clientLayout = new QVBoxLayout(client);
    clientLayout->setSpacing(2);
    for (int i = 0; i < 7; ++i) {
        m_client[i] = lineEdit(QStringLiteral("tiers_e%1").arg(i + 1), client);
        m_client[i]->setReadOnly(true);
        m_client[i]->setFocusPolicy(Qt::NoFocus);
        clientLayout->addWidget(m_client[i]);
    }
    layout->addWidget(client);

    auto* form = new QGridLayout;
    m_onBehalf = new QRadioButton(QStringLiteral("Pour le compte de "), this);
    m_onBehalf->setObjectName(QStringLiteral("Option1_0"));
    m_billing = new QRadioButton(QStringLiteral("Adresse de facturation"), this);
    m_billing->setObjectName(QStringLiteral("Option1_1"));
    auto* group = new QButtonGroup(this);
    group->addButton(m_onBehalf);
    group->addButton(m_billing);
    m_billing->setChecked(true);
    form->addWidget(m_onBehalf, 0, 0);
    form->addWidget(m_billing, 0, 1);

    m_date = lineEdit(QStringLiteral("mskdate"), this);
    m_date->setPlaceholderText(QStringLiteral("__/__/____"));
    m_date->setMaxLength(10);
    m_number = lineEdit(QStringLiteral("tiers_num"), this);
    m_document = lineEdit(QStringLiteral("tiers_name_fact"), this);
    for (auto* e : {m_number, m_document}) {
        e->setReadOnly(true);
        e->setFocusPolicy(Qt::NoFocus);
    }
    m_total = new QLabel(this);
    m_total->setObjectName(QStringLiteral("lbl_total_facture"));
    form->addWidget(new QLabel(QStringLiteral("date de la facture : "), this), 1, 0);
    form->addWidget(m_date, 1, 1);
    form->addWidget(new QLabel(QStringLiteral("Facture  N° : "), this), 2, 0);
    form->addWidget(m_number, 2, 1);
    form->addWidget(new QLabel(QStringLiteral("Edition :  "), this), 3, 0);
    form->addWidget(m_document, 3, 1);
    form->addWidget(m_total, 4, 0, 1, 2);
    layout->addLayout(form);

    auto* validation =
        new QGroupBox(QStringLiteral("Validation de l'entête de la facture : "), this);
    auto* vl = new QHBoxLayout(validation);
    auto* ok = button(QStringLiteral("cmdValideFact_tiers"), QStringLiteral("Valider"), validation);
    auto* cancel =
        button(QStringLiteral("cmdAnnulFact_tiers"), QStringLiteral("Annuler"), validation);
    vl->addWidget(ok);
    vl->addWidget(cancel);
    layout->addWidget(validation);
    layout->addStretch(1);
    connect(ok, &QPushButton::clicked, this, &InvoiceHeaderBox::validateRequested);
    connect(cancel, &QPushButton::clicked, this, &InvoiceHeaderBox::cancelRequested);
    connect(m_onBehalf, &QRadioButton::toggled, this, &InvoiceHeaderBox::blockChanged);
    connect(m_date, &QLineEdit::returnPressed, ok, &QPushButton::click);
}

AddressBlock InvoiceHeaderBox::block() const {
    return m_onBehalf->isChecked() ? AddressBlock::OnBehalfOf : AddressBlock::Billing;
}

QString InvoiceHeaderBox::dateText() const { return m_date->text(); }
void InvoiceHeaderBox::setDateText(const QString& text) { m_date->setText(text); }

void InvoiceHeaderBox::setNumber(const QString& number, const QString& documentName) {
    m_number->setText(number);
    m_document->setText(documentName);
}

QString InvoiceHeaderBox::documentName() const { return m_document->text(); }

void InvoiceHeaderBox::setTotal(const QString& text) { m_total->setText(text); }

void InvoiceHeaderBox::showClient(const InvoiceParty& p) {
    const QString texts[7] = {p.name,     p.president, p.address1,    p.address2,
                              p.address3, p.address4,  p.postcodeTown};
    for (int i = 0; i < 7; ++i) {
        m_client[i]->setText(texts[i]);
        m_client[i]->setCursorPosition(0);
    }
}

QString InvoiceHeaderBox::competitionNumber() const { return m_competitionNumber->text(); }
QString InvoiceHeaderBox::competitionTitle() const { return m_competitionTitle->text(); }

void InvoiceHeaderBox::setCompetition(const QString& number, const QString& title) {
    m_competitionNumber->setText(number);
    m_competitionTitle->setText(title);
    m_competitionTitle->setCursorPosition(0);
}

}  // namespace orve::invoicing
