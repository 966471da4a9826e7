#include "reference/ui/ORVE_tiers_dept.h"

#include "reference/Committees.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

ORVE_tiers_dept::ORVE_tiers_dept(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_tiers_dept"),
                   QStringLiteral("Les Comités Départementaux"),
                   QStringLiteral("FICHE DU COMITE DEPARTEMENTAL")) {
    grid()->setColumns({{QStringLiteral("N° Dept"), "de_no", Kind::Text},
                        {QStringLiteral("Ligue"), "de_region", Kind::Text},
                        {QStringLiteral("District"), "de_district", Kind::Text},
                        {QStringLiteral("Compta"), "de_compta", Kind::Text},
                        {QStringLiteral("A Facturer"), "de_facturation", Kind::Text},
                        {QStringLiteral("Intitulé"), "de_lib", Kind::Text},
                        {QStringLiteral("Nom du président"), "de_president", Kind::Text}});

    addRow(QStringLiteral("Intitulé du Comité Départemental : "), {boundBox("txt_lib", "de_lib")});
    addRow(QStringLiteral("Nom du Président : "),
           {boundBox("txt_president_int", "de_president_int"),
            boundBox("txt_president_nom", "de_president")});
    addRow(QStringLiteral("Adresse du C.D. : "), {boundBox("txt_de_ad1", "de_ad1")});
    addRow({}, {boundBox("txt_de_ad2", "de_ad2")});
    addRow({}, {boundBox("txt_de_ad3", "de_ad3")});
    addRow({}, {boundBox("txt_de_ad4", "de_ad4")});
    addRow({}, {boundBox("txt_de_cp", "de_cp", 80), boundBox("txt_de_ville", "de_ville")});
    // Right half: whom the committee answers to and whom it is invoiced to,
    // so that the card stays short and the list keeps its rows.
    addRow(QStringLiteral("Mails du Président du C.D. : "), {boundBox("txt_de_mail1", "de_mail1")},
           1);
    addRow({}, {boundBox("txt_de_mail2", "de_mail2")}, 1);
    m_league = shows(textBox("txt_lr", 80), "de_region");
    m_leagueName = readOnlyBox("txt_lib_lr");
    addRow(QStringLiteral("Ligue régionale : "), {m_league, m_leagueName}, 1);
    auto* options = new QWidget(card());
    m_entityKind = optionGroup(QStringLiteral("Option1"),
                               {QStringLiteral("La Ligue"), QStringLiteral("au CD")}, options);
    addRow(QStringLiteral("Facturation à : "), {options}, 1);
    m_entity = textBox("txt_facturation", 80);
    m_entityName = readOnlyBox("txt_lib_fact");
    addRow(QStringLiteral("Code entité à facturer :  "), {m_entity, m_entityName}, 1);
    m_district = shows(textBox("txt_district", 80), "de_district");
    addRow(QStringLiteral("District:  "), {m_district}, 1);
    m_account = shows(textBox("txt_compta", 100), "de_compta");
    addRow(QStringLiteral("Imputation comptable :  "), {m_account}, 1);

    // The names follow every keystroke; the message waits until the operator
    // leaves the box, so that typing a code is not interrupted at each letter.
    connect(m_league, &QLineEdit::textEdited, this, [this] {
        m_league->setModified(true);
        lookUpLeague(false);
    });
    connect(m_league, &QLineEdit::editingFinished, this, [this] {
        if (m_league->isModified()) lookUpLeague(true);
        m_league->setModified(false);
    });
    connect(m_entity, &QLineEdit::textEdited, this, [this] {
        m_entity->setModified(true);
        lookUpEntity(false);
    });
    connect(m_entity, &QLineEdit::editingFinished, this, [this] {
        if (m_entity->isModified()) lookUpEntity(true);
        m_entity->setModified(false);
    });
    for (QRadioButton* option : m_entityKind)
        connect(option, &QRadioButton::clicked, this, [this] { lookUpEntity(true); });
    resize(1100, 720);
    start();
}

store::Query ORVE_tiers_dept::listing() { return committees::listing(viewer()); }

void ORVE_tiers_dept::showRecord(const store::Row& record) {
    const auto entity = committees::splitEntity(cardOf(record).value("de_facturation"));
    m_entityKind[entity.committee ? 1 : 0]->setChecked(true);
    m_entity->setText(entity.code);
    card()->setTitle(committees::cardCaption(record));
    lookUpLeague(true);
    lookUpEntity(true);
}

void ORVE_tiers_dept::lookUpLeague(bool tell) {
    run([&] {
        const auto found = committees::lookUpLeague(store(), m_league->text());
        m_leagueName->setText(found.name);
        m_leagueName->setCursorPosition(0);
        if (tell && !found.message.isEmpty()) dialogs().warn(found.message);
    });
}

void ORVE_tiers_dept::lookUpEntity(bool tell) {
    run([&] {
        const auto found = committees::lookUpEntity(store(), {committeeEntity(), m_entity->text()});
        m_entityName->setText(found.name);
        m_entityName->setCursorPosition(0);
        if (tell && !found.message.isEmpty()) dialogs().warn(found.message);
    });
}

void ORVE_tiers_dept::saveRecord() {
    committees::save(store(), key(),
                     {readBound(),
                      m_league->text(),
                      m_district->text(),
                      m_account->text(),
                      {committeeEntity(), m_entity->text()}},
                     session().today());
}

}  // namespace orve::reference
