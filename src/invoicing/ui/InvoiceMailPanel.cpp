#include "invoicing/ui/InvoiceMailPanel.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "invoicing/MailTexts.h"

namespace orve::invoicing {

namespace {

template <typename T>
T* named(T* w, const char* name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

QGroupBox* frame(const char* name, const QString& title, QWidget* parent) {
    return named(new QGroupBox(title, parent), name);
}

}  // namespace

InvoiceMailPanel::InvoiceMailPanel(app::Dialogs& dialogs, QWidget* parent)
    : QGroupBox(QStringLiteral("Paramétrage des envois mail"), parent), m_dialogs(dialogs) {
    setObjectName(QStringLiteral("Frame9"));
    auto* layout = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    layout->addLayout(left, 1);
    layout->addLayout(right, 1);

    auto* procedure = frame("Frame10", QStringLiteral("Procédure "), this);
    auto* pl = new QVBoxLayout(procedure);
    m_real = named(new QRadioButton(QStringLiteral("Réel"), procedure), "Option2_0");
    m_test =
        named(new QRadioButton(QStringLiteral("Test (pas de pointage d'envoi mail)"), procedure),
              "Option2_1");
    pl->addWidget(m_real);
    pl->addWidget(m_test);
    left->addWidget(procedure);

    auto* addresses = frame("Frame11", QStringLiteral("Adresses mails"), this);
    auto* al = new QGridLayout(addresses);
    m_partyAddresses =
        named(new QRadioButton(QStringLiteral("Adresses réelles en fonction de la base de données"),
                               addresses),
              "Option3_0");
    m_testAddresses =
        named(new QRadioButton(QStringLiteral("Adresses de Test"), addresses), "Option3_1");
    m_testTo = named(new QLineEdit(addresses), "txt_test_mail1");
    m_testCopy = named(new QLineEdit(addresses), "txt_test_mail2");
    al->addWidget(m_partyAddresses, 0, 0, 1, 2);
    al->addWidget(m_testAddresses, 1, 0, 1, 2);
    al->addWidget(new QLabel(QStringLiteral("Adresse de test"), addresses), 2, 0);
    al->addWidget(m_testTo, 2, 1);
    al->addWidget(new QLabel(QStringLiteral("Copie"), addresses), 3, 0);
    al->addWidget(m_testCopy, 3, 1);
    left->addWidget(addresses);

    auto* subjectRow = new QHBoxLayout;
    subjectRow->addWidget(new QLabel(QStringLiteral("Objet du mail : "), this));
    m_subject = named(new QLineEdit(this), "txt_titre_mail");
    subjectRow->addWidget(m_subject, 1);
    left->addLayout(subjectRow);
    m_competition = named(
        new QCheckBox(QStringLiteral("Ajout du libellé de la compé&tition"), this), "Option4");
    left->addWidget(m_competition);

    auto* document = frame("Frame12", QStringLiteral("Facture en PDF jointe  : "), this);
    auto* dl = new QVBoxLayout(document);
    m_attach = named(new QRadioButton(QStringLiteral("Oui, le fichier PDF est joint"), document),
                     "Option5_0");
    m_link = named(new QRadioButton(
                       QStringLiteral("Non, une adresse http est donnée dans le texte"), document),
                   "Option5_1");
    m_web = named(new QLineEdit(document), "txt_chemin_http");
    dl->addWidget(m_attach);
    dl->addWidget(m_link);
    dl->addWidget(new QLabel(
        QStringLiteral("Adresse http (elle sera complétée par le nom du fichier facture.pdf)"),
        document));
    dl->addWidget(m_web);
    left->addWidget(document);

    m_route = named(new QLabel(this), "Label35");
    m_route->setWordWrap(true);
    QFont bold = m_route->font();
    bold.setBold(true);
    m_route->setFont(bold);
    left->addWidget(m_route);
    left->addStretch(1);

    auto* textsBox = frame("Frame_textes", QStringLiteral("Textes de mails"), this);
    auto* tl = new QVBoxLayout(textsBox);
    m_texts = new app::DataGrid(QStringLiteral("DBGrid12"), textsBox);
    m_texts->setColumns({{QStringLiteral("Descriptif"), "mail_nom", app::GridColumn::Kind::Text},
                         {QStringLiteral("Texte"), "mail_memo", app::GridColumn::Kind::Text}});
    tl->addWidget(m_texts);
    auto* choose =
        named(new QPushButton(QStringLiteral("Choisir texte mail"), textsBox), "cmdchoisir");
    tl->addWidget(choose, 0, Qt::AlignLeft);
    right->addWidget(textsBox, 1);
    right->addWidget(new QLabel(QStringLiteral("Texte du mail"), this));
    m_body = named(new QPlainTextEdit(this), "txt_message_mail");
    right->addWidget(m_body, 2);
    auto* buttons = new QHBoxLayout;
    auto* send = named(new QPushButton(QStringLiteral("Envoyer les mails"), this), "cmdValideMail");
    auto* cancel = named(new QPushButton(QStringLiteral("Annuler"), this), "cmdAnnulMail");
    buttons->addStretch(1);
    buttons->addWidget(send);
    buttons->addWidget(cancel);
    right->addLayout(buttons);

    connect(choose, &QPushButton::clicked, this, &InvoiceMailPanel::chooseText);
    connect(send, &QPushButton::clicked, this, &InvoiceMailPanel::sendRequested);
    connect(cancel, &QPushButton::clicked, this, &InvoiceMailPanel::cancelRequested);
    for (QAbstractButton* b :
         {static_cast<QAbstractButton*>(m_partyAddresses),
          static_cast<QAbstractButton*>(m_testAddresses), static_cast<QAbstractButton*>(m_attach),
          static_cast<QAbstractButton*>(m_link)})
        connect(b, &QAbstractButton::toggled, this, &InvoiceMailPanel::followChoices);
}

void InvoiceMailPanel::prepare(store::Store& store, const QString& body, const QString& testTo,
                               const QString& route) {
    m_real->setChecked(true);
    m_partyAddresses->setChecked(true);
    m_testTo->setText(testTo);
    m_testCopy->clear();
    m_subject->setText(kDefaultMailSubject);
    m_competition->setChecked(false);
    m_attach->setChecked(true);
    m_web->clear();
    m_body->setPlainText(body);
    m_route->setText(route);
    m_texts->setQuery(store, mailTextsQuery());
    followChoices();
}

void InvoiceMailPanel::followChoices() {
    m_testTo->setEnabled(m_testAddresses->isChecked());
    m_testCopy->setEnabled(m_testAddresses->isChecked());
    m_web->setEnabled(m_link->isChecked());
}

MailRunOptions InvoiceMailPanel::options() const {
    MailRunOptions o;
    o.realProcedure = m_real->isChecked();
    o.testAddresses = m_testAddresses->isChecked();
    o.testTo = m_testTo->text();
    o.testCopy = m_testCopy->text();
    o.subject = m_subject->text();
    o.addCompetition = m_competition->isChecked();
    o.attachPdf = m_attach->isChecked();
    o.webAddress = m_web->text();
    o.body = m_body->toPlainText();
    return o;
}

void InvoiceMailPanel::chooseText() {
    const int row = m_texts->currentRow();
    if (row < 0) {
        m_dialogs.inform(QStringLiteral("Choisissez d'abord un texte dans la liste."));
        return;
    }
    m_body->setPlainText(m_texts->value(row, QStringLiteral("mail_memo")).toString());
}

}  // namespace orve::invoicing
