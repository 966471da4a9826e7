#include "reference/ui/ORVE_ges_naturec.h"

#include <QHBoxLayout>

#include "reference/Natures.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

namespace {
const QStringList kYesNo{QStringLiteral("Oui"), QStringLiteral("Non")};
}

ORVE_ges_naturec::ORVE_ges_naturec(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_ges_naturec"),
                   QStringLiteral("Gestion des natures de compétition"),
                   QStringLiteral("Codification d'une Nature de Compétition"),
                   QStringLiteral("cmdvalide"), QStringLiteral("cmdannule")) {
    auto* note =
        new QLabel(QStringLiteral("NATURE DE COMPETITION = CODE ANALYTIQUE 1 DE LA COMPTA"), this);
    note->setObjectName(QStringLiteral("Label1"));
    note->setAlignment(Qt::AlignCenter);
    setGridCaption(QStringLiteral("NATURE DES COMPETITION"));
    mainLayout()->insertWidget(0, note);
    grid()->setColumns({{QStringLiteral("Code"), "n_code", Kind::Text},
                        {QStringLiteral("Libelle"), "n_libelle", Kind::Text},
                        {QStringLiteral("Engt/Réel"), "n_fact", Kind::Text},
                        {QStringLiteral("Fact/Lignes"), "n_fact_ligne", Kind::Text},
                        {QStringLiteral("Fact/Engt"), "n_fact_engagement", Kind::Text}});

    auto* choice = new QGroupBox(QStringLiteral("votre Choix"), this);
    choice->setObjectName(QStringLiteral("Frame2"));
    auto* choiceLayout = new QHBoxLayout(choice);
    auto* add = button(QStringLiteral("cmdajout"), QStringLiteral("Ajouter"));
    auto* remove = button(QStringLiteral("cmdsup"), QStringLiteral("Supprimer"));
    choiceLayout->addWidget(add);
    choiceLayout->addWidget(remove);
    choiceLayout->addStretch(1);
    mainLayout()->insertWidget(3, choice);
    connect(add, &QPushButton::clicked, this, &ORVE_ges_naturec::addNature);
    connect(remove, &QPushButton::clicked, this, &ORVE_ges_naturec::deleteNature);

    m_code = shows(textBox("txt_code", 100), "n_code");
    addRow(QStringLiteral("Code"), {m_code});
    m_label = shows(textBox("txt_libelle"), "n_libelle");
    addRow(QStringLiteral("Libellé"), {m_label});
    const auto group = [&](const char* frame, const QString& title, const char* option,
                           const QStringList& captions) {
        auto* box = new QGroupBox(title, card());
        box->setObjectName(QString::fromUtf8(frame));
        addRow({}, {box});
        return optionGroup(QString::fromUtf8(option), captions, box);
    };
    m_fact = group("Frame3", QStringLiteral("Facturation : "), "Option1",
                   {QStringLiteral("sur engagements"), QStringLiteral("sur résultats")});
    m_lines = group("Frame4", QStringLiteral("Facturation des lignes : "), "Option2", kYesNo);
    m_entryFees =
        group("Frame5", QStringLiteral("Facturation des engagements : "), "Option3", kYesNo);
    resize(760, 700);
    start();
}

store::Query ORVE_ges_naturec::listing() { return natures::listing(); }

void ORVE_ges_naturec::showRecord(const store::Row& record) {
    const auto nature = natures::fromRow(record);
    app::setLocked(m_code, true);
    m_fact[nature.onEntries ? 0 : 1]->setChecked(true);
    m_lines[nature.invoiceLines ? 0 : 1]->setChecked(true);
    m_entryFees[nature.invoiceEntryFees ? 0 : 1]->setChecked(true);
}

void ORVE_ges_naturec::addNature() {
    startAdding();
    m_code->clear();
    app::setLocked(m_code, false);
    m_label->clear();
    m_fact[1]->setChecked(true);
    m_lines[0]->setChecked(true);
    m_entryFees[0]->setChecked(true);
    card()->show();
    m_code->setFocus();
}

void ORVE_ges_naturec::saveRecord() {
    natures::save(store(),
                  {m_code->text(), m_label->text(), m_fact[0]->isChecked(), m_lines[0]->isChecked(),
                   m_entryFees[0]->isChecked()},
                  adding());
    if (adding()) setSavedKey(m_code->text().toUpper());
}

void ORVE_ges_naturec::deleteNature() {
    const int row = grid()->currentRow();
    if (row < 0) {
        dialogs().warn(QStringLiteral("Choisissez d'abord dans la liste la nature à supprimer."));
        return;
    }
    const QString code = grid()->value(row, "n_code").toString();
    if (!dialogs().ask(QStringLiteral("Etes-vous sûr de vouloir supprimer cette nature ? ")))
        return;
    if (run([&] { natures::remove(store(), code); })) cancel();
}

}  // namespace orve::reference
