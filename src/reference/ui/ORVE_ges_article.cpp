#include "reference/ui/ORVE_ges_article.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "reference/Articles.h"
#include "store/Formats.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

ORVE_ges_article::ORVE_ges_article(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_ges_article"),
                   QStringLiteral("Articles à facturer"), QStringLiteral("FICHE D'UN ARTICLE"),
                   QStringLiteral("cmdvalide"), QStringLiteral("cmdannule")) {
    setGridCaption(QStringLiteral("Les articles à facturer"));
    grid()->setColumns({{QStringLiteral("Code"), "a_index", Kind::Text},
                        {QStringLiteral("Libellé"), "a_libelle", Kind::Text},
                        {QStringLiteral("Nature"), "a_nature", Kind::Text},
                        {QStringLiteral("Compte"), "a_cpta", Kind::Text},
                        {QStringLiteral("Analytique"), "a_analytique", Kind::Text}});
    auto* add = button(QStringLiteral("cmdajout"), QStringLiteral("Ajouter un article"));
    auto* addLine = new QHBoxLayout;
    addLine->addWidget(add);
    addLine->addStretch(1);
    mainLayout()->insertLayout(2, addLine);
    connect(add, &QPushButton::clicked, this, &ORVE_ges_article::addArticle);

    m_code = shows(readOnlyBox("txt_code", 100), "a_index");
    addRow(QStringLiteral("Code article : "), {m_code});
    m_label = shows(textBox("txt_libelle"), "a_libelle");
    addRow(QStringLiteral("Libellé : "), {m_label});
    m_nature = new QComboBox(card());
    m_nature->setObjectName(QStringLiteral("Combo11"));
    // Editable only so that a stored nature can be shown by its own wording.
    m_nature->setEditable(true);
    m_nature->lineEdit()->setReadOnly(true);
    m_nature->setMinimumWidth(280);
    m_natureCode = shows(readOnlyBox("txt_naturec", 70), "a_nature");
    addRow(QStringLiteral("Nature de facturation : "), {m_nature, m_natureCode});
    m_account = shows(textBox("txt_cpta", 120), "a_cpta");
    addRow(QStringLiteral("Compte comptable : "), {m_account});
    m_analytic = shows(textBox("txt_analytique", 120), "a_analytique");
    addRow(QStringLiteral("Code analytique : "), {m_analytic});
    connect(m_nature, &QComboBox::activated, this, &ORVE_ges_article::chooseNature);
    connect(m_account, &QLineEdit::textEdited, this, [this] { m_account->setModified(true); });
    connect(m_account, &QLineEdit::editingFinished, this, &ORVE_ges_article::checkAccount);

    m_tariffs = new QGroupBox(QStringLiteral("Tarifs de l'article par saison"), this);
    m_tariffs->setObjectName(QStringLiteral("Frame2"));
    auto* tariffLayout = new QHBoxLayout(m_tariffs);
    m_tariffGrid = new app::DataGrid(QStringLiteral("DBGrid2"), m_tariffs);
    m_tariffGrid->setColumns({{QStringLiteral("Saison"), "t_saison", Kind::Text},
                              {QStringLiteral("Tarif"), "t_tarif", Kind::Currency}});
    // A few seasons at a time: the articles' list keeps the height.
    m_tariffGrid->setMinimumHeight(120);
    m_tariffGrid->setMaximumHeight(150);
    tariffLayout->addWidget(m_tariffGrid, 1);
    auto* tariffCard = new QGridLayout;
    tariffLayout->addLayout(tariffCard);
    m_season = new QLineEdit(m_tariffs);
    m_season->setObjectName(QStringLiteral("txt_saison"));
    m_season->setMaximumWidth(70);
    m_price = new QLineEdit(m_tariffs);
    m_price->setObjectName(QStringLiteral("txt_tarif"));
    m_price->setMaximumWidth(110);
    m_price->setAlignment(Qt::AlignRight);
    tariffCard->addWidget(new QLabel(QStringLiteral("Saison : "), m_tariffs), 0, 0, Qt::AlignRight);
    tariffCard->addWidget(m_season, 0, 1);
    tariffCard->addWidget(new QLabel(QStringLiteral("Tarif (€) : "), m_tariffs), 1, 0,
                          Qt::AlignRight);
    tariffCard->addWidget(m_price, 1, 1);
    auto* tariffButtons = new QHBoxLayout;
    const std::pair<const char*, const char*> buttons[] = {{"cmdAjoutTarif", "Ajouter un tarif"},
                                                           {"CmdValideTarif", "Valider le tarif"},
                                                           {"CmdAnnuleTarif", "Annuler"}};
    std::vector<QPushButton*> made;
    for (const auto& [name, caption] : buttons) {
        auto* b = new QPushButton(QString::fromUtf8(caption), m_tariffs);
        b->setObjectName(QString::fromUtf8(name));
        tariffButtons->addWidget(b);
        made.push_back(b);
    }
    tariffCard->addLayout(tariffButtons, 2, 0, 1, 2);
    tariffCard->setRowStretch(3, 1);
    connect(made[0], &QPushButton::clicked, this, &ORVE_ges_article::addTariff);
    connect(made[1], &QPushButton::clicked, this, &ORVE_ges_article::saveTariff);
    connect(made[2], &QPushButton::clicked, this, &ORVE_ges_article::cancelTariff);
    connect(m_tariffGrid, &app::DataGrid::rowChosen, this, &ORVE_ges_article::chooseTariff);
    mainLayout()->addWidget(m_tariffs);

    app::fillItems(m_nature, articles::natureItems(viewer()));
    resize(900, 820);
    start();
}

store::Query ORVE_ges_article::listing() { return articles::listing(); }

void ORVE_ges_article::afterCancel() { m_tariffs->hide(); }

void ORVE_ges_article::showRecord(const store::Row& record) {
    const Card values = cardOf(record);
    m_nature->setEditText(articles::natureDisplay(values.value("a_nature")));
    m_tariffNature = values.value("a_nature");
    cancelTariff();
    m_tariffs->show();
}

void ORVE_ges_article::addArticle() {
    startAdding();
    for (QLineEdit* box : {m_code, m_label, m_account, m_analytic, m_natureCode}) box->clear();
    m_nature->setCurrentIndex(0);
    m_tariffs->hide();
    card()->show();
    m_label->setFocus();
}

void ORVE_ges_article::chooseNature() { m_natureCode->setText(itemCode(m_nature->currentText())); }

void ORVE_ges_article::checkAccount() {
    if (!m_account->isModified()) return;
    m_account->setModified(false);
    const auto checked = articles::checkAccount(m_account->text());
    m_account->setText(checked.text);
    if (!checked.message.isEmpty()) dialogs().warn(checked.message);
}

void ORVE_ges_article::saveRecord() {
    const articles::ArticleEdit edit{m_label->text(), m_natureCode->text(), m_account->text(),
                                     m_analytic->text()};
    if (adding())
        setSavedKey(articles::add(store(), edit));
    else
        articles::save(store(), key(), edit);
}

void ORVE_ges_article::chooseTariff(int row) {
    m_addingTariff = false;
    m_season->setText(m_tariffGrid->value(row, "t_saison").toString());
    app::setLocked(m_season, true);
    m_price->setText(format::fileAmount(Money::fromVariant(m_tariffGrid->value(row, "t_tarif"))));
    m_price->setFocus();
}

void ORVE_ges_article::addTariff() {
    m_addingTariff = true;
    m_season->clear();
    app::setLocked(m_season, false);
    m_tariffGrid->clearChoice();
    m_price->clear();
    m_season->setFocus();
}

void ORVE_ges_article::saveTariff() {
    if (run([&] {
            articles::saveTariff(store(),
                                 {key(), m_tariffNature, m_season->text(), m_price->text()},
                                 m_addingTariff);
        }))
        cancelTariff();
}

void ORVE_ges_article::cancelTariff() {
    m_addingTariff = false;
    m_season->clear();
    app::setLocked(m_season, true);
    m_price->clear();
    run([&] { m_tariffGrid->setQuery(store(), articles::tariffListing(key(), m_tariffNature)); });
}

}  // namespace orve::reference
