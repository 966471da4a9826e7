#include "invoicing/ui/InvoiceLineEditor.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "invoicing/InvoiceEntry.h"
#include "invoicing/InvoiceParties.h"

namespace orve::invoicing {

using Kind = app::GridColumn::Kind;

InvoiceLineEditor::InvoiceLineEditor(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* box = new QGroupBox(QStringLiteral("LES LIGNES DE CETTE FACTURE"), this);
    auto* boxLayout = new QVBoxLayout(box);
    m_lines = new app::DataGrid(QStringLiteral("DBGrid2"), box);
    m_lines->setColumns({{QStringLiteral("Ligne"), "f_num_lig", Kind::Text},
                         {QStringLiteral("Libellé"), "f_libelle", Kind::Text},
                         {QStringLiteral("Quantité"), "f_qte", Kind::Number},
                         {QStringLiteral("P.Unitaire"), "f_pu", Kind::Currency},
                         {QStringLiteral("Montant"), "f_montant", Kind::Currency}});
    m_lines->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    boxLayout->addWidget(m_lines);
    layout->addWidget(box, 1);

    auto* editor = new QGroupBox(QStringLiteral("Ligne à modifier"), this);
    editor->setObjectName(QStringLiteral("Frame5"));
    auto* grid = new QGridLayout(editor);
    grid->setVerticalSpacing(2);
    m_articles = new QComboBox(editor);
    m_articles->setObjectName(QStringLiteral("Combo16"));
    m_articles->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_articles->setMinimumContentsLength(30);
    m_quantity = new QLineEdit(editor);
    m_quantity->setObjectName(QStringLiteral("txtqte"));
    m_price = new QLineEdit(editor);
    m_price->setObjectName(QStringLiteral("txtpu"));
    m_text = new QLineEdit(editor);
    m_text->setObjectName(QStringLiteral("txttexte"));
    grid->addWidget(new QLabel(QStringLiteral("Article à facturer"), editor), 0, 0);
    grid->addWidget(m_articles, 0, 1, 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("Quantité à facturer"), editor), 1, 0);
    grid->addWidget(m_quantity, 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("Prix Unitaire"), editor), 1, 2);
    grid->addWidget(m_price, 1, 3);
    grid->addWidget(m_text, 2, 0, 1, 4);
    auto* validation = new QGroupBox(QStringLiteral("Validation de cette ligne :  "), editor);
    auto* vl = new QHBoxLayout(validation);
    m_validate = new QPushButton(QStringLiteral("Valider"), validation);
    m_validate->setObjectName(QStringLiteral("cmdValideSuite"));
    m_cancel = new QPushButton(QStringLiteral("Annuler"), validation);
    m_cancel->setObjectName(QStringLiteral("cmdAnnulSuite"));
    vl->addWidget(m_validate);
    vl->addWidget(m_cancel);
    grid->addWidget(validation, 3, 0, 1, 4);
    layout->addWidget(editor);

    auto* bottom = new QHBoxLayout;
    m_deposit = new QLineEdit(QStringLiteral("0"), this);
    m_deposit->setObjectName(QStringLiteral("txt_acompte"));
    m_deposit->setMaximumWidth(100);
    m_generate = new QPushButton(QStringLiteral("Générer la Facture PDF "), this);
    m_generate->setObjectName(QStringLiteral("CmdEdition"));
    bottom->addWidget(new QLabel(QStringLiteral("Montant déjà payé"), this));
    bottom->addWidget(m_deposit);
    bottom->addStretch(1);
    bottom->addWidget(m_generate);
    layout->addLayout(bottom);

    connect(m_articles, &QComboBox::activated, this, [this] { emit articleChosen(article()); });
    connect(m_validate, &QPushButton::clicked, this, &InvoiceLineEditor::lineValidated);
    connect(m_cancel, &QPushButton::clicked, this, &InvoiceLineEditor::lineCancelled);
    connect(m_generate, &QPushButton::clicked, this, &InvoiceLineEditor::generateRequested);
    // Enter in the editor validates the line, as the button does.
    for (auto* e : {m_quantity, m_price, m_text})
        connect(e, &QLineEdit::returnPressed, m_validate, &QPushButton::click);
    setTabOrder(m_articles, m_quantity);
    setTabOrder(m_quantity, m_price);
    setTabOrder(m_price, m_text);
    setTabOrder(m_text, m_validate);
    setTabOrder(m_validate, m_cancel);
    setTabOrder(m_cancel, m_deposit);
    setTabOrder(m_deposit, m_generate);
    setEditing(false);
}

void InvoiceLineEditor::setArticles(const app::ListItems& items) {
    m_articles->clear();
    m_articles->addItem(kChooseArticle);
    for (const auto& item : items) m_articles->addItem(nameFirstText(item));
}

QString InvoiceLineEditor::article() const {
    if (m_articles->currentIndex() <= 0) return {};
    return nameFirstKey(m_articles->currentText());
}

QString InvoiceLineEditor::quantityText() const { return m_quantity->text(); }
QString InvoiceLineEditor::priceText() const { return m_price->text(); }
QString InvoiceLineEditor::freeText() const { return m_text->text(); }
QString InvoiceLineEditor::depositText() const { return m_deposit->text(); }
void InvoiceLineEditor::setDepositText(const QString& text) { m_deposit->setText(text); }
void InvoiceLineEditor::setPrice(const QString& text) { m_price->setText(text); }

void InvoiceLineEditor::showLine(const QString& lineNumber, const QString& article,
                                 const QString& text, const QString& quantity, const QString& price,
                                 const QString& presetText) {
    m_lineNumber = lineNumber;
    int index = 0;
    for (int i = 1; i < m_articles->count(); ++i)
        if (nameFirstKey(m_articles->itemText(i)) == article) index = i;
    m_articles->setCurrentIndex(index);
    m_quantity->setText(quantity);
    m_price->setText(price);
    // The free text shows the line's own text, or the preset for a new line.
    m_text->setText(article == kFreeTextArticle ? text : presetText);
    setEditing(!lineNumber.isEmpty());
    if (!lineNumber.isEmpty()) m_articles->setFocus();
}

void InvoiceLineEditor::setEditing(bool editing) {
    for (QWidget* w : std::initializer_list<QWidget*>{m_articles, m_quantity, m_price, m_text,
                                                      m_validate, m_cancel})
        w->setEnabled(editing);
}

}  // namespace orve::invoicing
