#include "reference/ui/ORVE_tiers_club.h"

#include "reference/Clubs.h"
#include "store/Formats.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

ORVE_tiers_club::ORVE_tiers_club(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_tiers_club"),
                   QStringLiteral("Les Clubs de Bowling"),
                   QStringLiteral("FICHE D'UN CLUB DE BOWLING")) {
    grid()->setColumns({{QStringLiteral("Code de Club"), "club_code", Kind::Text},
                        {QStringLiteral("Compta"), "club_compta", Kind::Text},
                        {QStringLiteral("Ligue"), "club_region", Kind::Text},
                        {QStringLiteral("District"), "club_district", Kind::Text},
                        {QStringLiteral("Dept"), "club_dept", Kind::Text},
                        {QStringLiteral("Numéro"), "club_num", Kind::Text},
                        {QStringLiteral("Nom"), "club_nom", Kind::Text},
                        {QStringLiteral("Nom du Président"), "club_president", Kind::Text}});
    auto* add = button(QStringLiteral("CmdAjout"), QStringLiteral("Ajouter un club"));
    auto* addRowLayout = new QHBoxLayout;
    addRowLayout->addWidget(add);
    addRowLayout->addStretch(1);
    mainLayout()->insertLayout(1, addRowLayout);
    connect(add, &QPushButton::clicked, this, &ORVE_tiers_club::addClub);

    addRow(QStringLiteral("Nom du Club : "), {boundBox("txt_nom", "club_nom")});
    m_number = shows(textBox("txt_num", 60), "club_num");
    m_code = shows(readOnlyBox("txt_code", 100), "club_code");
    addRow(QStringLiteral(" Numéro du club : "), {m_number, m_code});
    m_league = new QComboBox(card());
    m_league->setObjectName(QStringLiteral("Combo11"));
    m_leagueCode = shows(readOnlyBox("txt_region", 90), "club_region");
    addRow(QStringLiteral("Ligue Régionale : "), {m_league, m_leagueCode});
    m_department = new QComboBox(card());
    m_department->setObjectName(QStringLiteral("Combo12"));
    m_departmentCode = shows(readOnlyBox("txt_dept", 90), "club_dept");
    addRow(QStringLiteral("Département : "), {m_department, m_departmentCode});
    m_district = shows(textBox("txt_district", 60), "club_district");
    addRow(QStringLiteral("       N° District : "), {m_district});
    addRow(QStringLiteral("Nom du Président : "), {boundBox("txt_president", "club_president")});
    addRow(QStringLiteral("Adresse de facturation : "), {boundBox("txt_ad1", "club_ad1")}, 1);
    addRow({}, {boundBox("txt_ad2", "club_ad2")}, 1);
    addRow({}, {boundBox("txt_ad3", "club_ad3")}, 1);
    addRow({}, {boundBox("txt_ad4", "club_ad4")}, 1);
    addRow({}, {boundBox("txt_cp", "club_cp", 80), boundBox("txt_ville", "club_ville")}, 1);
    addRow(QStringLiteral("2 adresses Mail : "), {boundBox("txt_mail1", "club_mail1")}, 1);
    addRow({}, {boundBox("txt_mail2", "club_mail2")}, 1);
    m_account = shows(textBox("txt_compta", 100), "club_compta");
    addRow(QStringLiteral("Code comptable : "), {m_account}, 1);

    connect(m_league, &QComboBox::activated, this, &ORVE_tiers_club::chooseLeague);
    connect(m_department, &QComboBox::activated, this, &ORVE_tiers_club::chooseDepartment);
    connect(m_number, &QLineEdit::editingFinished, this, [this] {
        m_number->setText(formatNumber(m_number->text(), 3));
        showNewKey();
    });
    connect(m_number, &QLineEdit::textEdited, this, &ORVE_tiers_club::showNewKey);
    run([&] {
        app::fillItems(m_league, clubs::leagueItems(store(), viewer()));
        app::fillItems(m_department, clubs::departmentItems(store(), viewer()));
    });
    resize(1100, 760);
    start();
}

store::Query ORVE_tiers_club::listing() { return clubs::listing(viewer()); }

void ORVE_tiers_club::allowKeyEdit(bool allow) {
    app::setLocked(m_number, !allow);
    m_league->setEnabled(allow);
    m_department->setEnabled(allow);
}

void ORVE_tiers_club::showRecord(const store::Row& record) {
    const Card values = cardOf(record);
    app::showItem(m_league, values.value("club_region"));
    app::showItem(m_department, format::padCode(values.value("club_dept"), 3));
    allowKeyEdit(false);
}

void ORVE_tiers_club::addClub() {
    startAdding();
    clearBound();
    for (QLineEdit* box : {m_number, m_code, m_departmentCode, m_account}) box->clear();
    m_district->setText(clubs::kNewClubDistrict);
    // The league stays that of the club last shown; a user with one league gets it.
    if (m_league->count() == 2) m_league->setCurrentIndex(1);
    m_leagueCode->setText(itemCode(m_league->currentText()));
    m_department->setCurrentIndex(m_department->count() == 2 ? 1 : 0);
    m_departmentCode->setText(itemCode(m_department->currentText()));
    allowKeyEdit(true);
    card()->show();
    m_number->setFocus();
}

void ORVE_tiers_club::chooseLeague() {
    run([&] {
        if (const auto item = clubs::leagueItem(store(), itemCode(m_league->currentText()))) {
            m_league->setItemText(m_league->currentIndex(), item->text());
            m_leagueCode->setText(item->code);
        }
    });
}

void ORVE_tiers_club::chooseDepartment() {
    run([&] {
        if (const auto item =
                clubs::departmentItem(store(), itemCode(m_department->currentText()))) {
            m_department->setItemText(m_department->currentIndex(), item->text());
            m_departmentCode->setText(item->code);
        }
    });
    showNewKey();
}

void ORVE_tiers_club::showNewKey() {
    if (adding())
        m_code->setText(m_departmentCode->text().isEmpty() || m_number->text().trimmed().isEmpty()
                            ? QString()
                            : clubs::clubKey(m_departmentCode->text(), m_number->text()));
}

void ORVE_tiers_club::saveRecord() {
    chooseLeague();
    chooseDepartment();
    const clubs::ClubEdit edit{readBound(),          m_district->text(),       m_account->text(),
                               m_leagueCode->text(), m_departmentCode->text(), m_number->text()};
    if (adding())
        setSavedKey(clubs::add(store(), edit, session().today()));
    else
        clubs::save(store(), key(), edit, session().today());
}

}  // namespace orve::reference
