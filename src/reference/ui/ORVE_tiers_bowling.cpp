#include "reference/ui/ORVE_tiers_bowling.h"

#include <QGroupBox>
#include <QHBoxLayout>

#include "reference/Centres.h"
#include "store/Formats.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

ORVE_tiers_bowling::ORVE_tiers_bowling(app::Session& session, app::Dialogs& dialogs,
                                       QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_tiers_bowling"),
                   QStringLiteral("Les Centres de bowling"),
                   QStringLiteral("FICHE D'UN CENTRE DE BOWLING")) {
    grid()->setColumns({{QStringLiteral("N° Centre"), "b_compte_tiers", Kind::Text},
                        {QStringLiteral("Ligue"), "b_region", Kind::Text},
                        {QStringLiteral("Dept"), "b_dept", Kind::Text},
                        {QStringLiteral("Numéro"), "b_numero", Kind::Text},
                        {QStringLiteral("Nom"), "b_nom", Kind::Text},
                        {QStringLiteral("Pistes"), "b_pistes", Kind::Number},
                        {QStringLiteral("Type"), "b_type", Kind::Text},
                        {QStringLiteral("Homologation"), "b_homologation", Kind::Text},
                        {QStringLiteral("C.postal"), "b_cp", Kind::Text},
                        {QStringLiteral("Ville"), "b_ville", Kind::Text},
                        {QStringLiteral("Nom - Facturation"), "b_fac_nom", Kind::Text},
                        {QStringLiteral("homologation-tri"), "b_homologation_tri", Kind::Text}});

    // Left half: the centre itself.
    m_number = shows(readOnlyBox("txt_numero", 80), "b_numero");
    addRow(QStringLiteral("Numéro : "), {m_number});
    addRow(QStringLiteral("Nom : "), {boundBox("txt_nom", "b_nom")});
    m_lanes = shows(textBox("txt_pistes", 60), "b_pistes");
    addRow(QStringLiteral("Nbre de pistes : "), {m_lanes});
    auto* surface = new QGroupBox(QStringLiteral("Type"), card());
    surface->setObjectName(QStringLiteral("Frame2"));
    new QHBoxLayout(surface);
    m_surface.resize(2);
    // The synthetic surface comes first on the card, as the federation lists them.
    m_surface[1] =
        optionGroup(QStringLiteral("Option1"), {QStringLiteral("Synthétique")}, surface)[0];
    m_surface[1]->setObjectName(QStringLiteral("Option1_1"));
    m_surface[0] = optionGroup(QStringLiteral("Option1"), {QStringLiteral("Bois")}, surface)[0];
    addRow({}, {surface});
    m_approval = shows(textBox("mskhomologation", 100), "b_homologation");
    m_approval->setInputMask(QStringLiteral("99/99/9999;_"));
    addRow(QStringLiteral("Date d'homologation : "), {m_approval});
    m_league = new QComboBox(card());
    m_league->setObjectName(QStringLiteral("Combo11"));
    m_department = new QComboBox(card());
    m_department->setObjectName(QStringLiteral("Combo12"));
    // Shown only: a centre's league and department come from the federation's files.
    m_league->setEnabled(false);
    m_department->setEnabled(false);
    addRow(QStringLiteral("Ligue Régionale : "), {m_league});
    addRow(QStringLiteral("Département : "), {m_department});
    addRow(QStringLiteral("Adresse du centre : "), {boundBox("txt_ad1", "b_ad1")});
    addRow({}, {boundBox("txt_ad2", "b_ad2")});
    addRow({}, {boundBox("txt_ad3", "b_ad3")});
    addRow({}, {boundBox("txt_cp", "b_cp", 80), boundBox("txt_ville", "b_ville")});

    // Right half: how to reach it and whom to invoice.
    addRow(QStringLiteral("Téléphone : "),
           {boundBox("txt_tel1", "b_tel1"), boundBox("txt_tel2", "b_tel2")}, 1);
    addRow(QStringLiteral("Fax : "), {boundBox("Text3", "b_fax")}, 1);
    addRow(QStringLiteral("2 adresses Mail : "), {boundBox("txt_mail1", "b_mail1")}, 1);
    addRow({}, {boundBox("txt_mail2", "b_mail2")}, 1);
    addRow(QStringLiteral("Web : "), {boundBox("txt_site", "b_site")}, 1);
    addRow(QStringLiteral("Nom du Propriétaire : "),
           {boundBox("txt_nom_proprietaire", "b_nom_proprietaire")}, 1);
    addRow(QStringLiteral("Responsable du centre : "),
           {boundBox("txt_nom_responsable", "b_nom_responsable")}, 1);
    addRow(QStringLiteral("Nom de Facturation"), {boundBox("txt_fac_nom", "b_fac_nom")}, 1);
    addRow(QStringLiteral("Adresse de facturation : "), {boundBox("txt_fac_ad1", "b_fac_ad1")}, 1);
    addRow({}, {boundBox("txt_fac_ad2", "b_fac_ad2")}, 1);
    addRow({}, {boundBox("txt_fac_ad3", "b_fac_ad3")}, 1);
    addRow({}, {boundBox("txt_fac_ad4", "b_fac_ad4")}, 1);
    addRow({}, {boundBox("txt_fac_cp", "b_fac_cp", 80), boundBox("txt_fac_ville", "b_fac_ville")},
           1);

    run([&] {
        app::fillItems(m_league, centres::leagueItems(store(), viewer()));
        app::fillItems(m_department, centres::departmentItems(store(), viewer()));
    });
    resize(1180, 820);
    start();
}

store::Query ORVE_tiers_bowling::listing() { return centres::listing(viewer()); }

void ORVE_tiers_bowling::showRecord(const store::Row& record) {
    const Card values = cardOf(record);
    m_surface[values.value("b_type") == centres::kSynthetic ? 1 : 0]->setChecked(true);
    app::showItem(m_league, values.value("b_region"));
    app::showItem(m_department, format::padCode(values.value("b_dept"), 3));
}

void ORVE_tiers_bowling::saveRecord() {
    centres::save(
        store(), key(),
        {readBound(), m_lanes->text(), m_surface[1]->isChecked(), m_approval->displayText()},
        session().today());
}

}  // namespace orve::reference
