#include "reference/ui/ORVE_tiers_lr.h"

#include "reference/Leagues.h"

namespace orve::reference {

using Kind = app::GridColumn::Kind;

ORVE_tiers_lr::ORVE_tiers_lr(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : RecordScreen(session, dialogs, parent, QStringLiteral("ORVE_tiers_lr"),
                   QStringLiteral("Les Ligues Régionales"),
                   QStringLiteral("FICHE DE LA LIGUE REGIONALE")) {
    setGridCaption(QStringLiteral("Les Ligues Régionales"));
    grid()->setColumns({{QStringLiteral("N° Ligue"), "re_code", Kind::Text},
                        {QStringLiteral("A Facturer"), "re_fact", Kind::Text},
                        {QStringLiteral("Intitulé"), "re_lib", Kind::Text},
                        {QStringLiteral("Nom du président"), "re_president", Kind::Text},
                        {QStringLiteral("Nom du Président du CSR"), "re_csr_nom", Kind::Text}});

    addRow(QStringLiteral("Intitulé de la Ligue Régionale : "), {boundBox("txt_lib", "re_lib")});
    addRow(QStringLiteral("Nom du Président : "),
           {boundBox("txt_president_int", "re_president_int"),
            boundBox("txt_president_nom", "re_president")});
    addRow(QStringLiteral("Président du CSR : "),
           {boundBox("txt_csr_int", "re_csr_int"), boundBox("txt_csr_nom", "re_csr_nom")});
    addRow(QStringLiteral("Adresse de la Ligue : "), {boundBox("txt_re_ad1", "re_ad1")});
    addRow({}, {boundBox("txt_re_ad2", "re_ad2")});
    addRow({}, {boundBox("txt_re_ad3", "re_ad3")});
    addRow({}, {boundBox("txt_re_ad4", "re_ad4")});
    addRow({}, {boundBox("txt_re_cp", "re_cp", 80), boundBox("txt_re_ville", "re_ville")});
    addRow(QStringLiteral("Mail du Président de la Ligue : "),
           {boundBox("txt_re_mail1", "re_mail1")});
    addRow(QStringLiteral("Mail du Président du CSR : "), {boundBox("txt_re_mail2", "re_mail2")});
    auto* options = new QWidget(card());
    m_invoicing = optionGroup(QStringLiteral("Option1"),
                              {QStringLiteral("La Ligue"), QStringLiteral("au CSR")}, options);
    addRow(QStringLiteral("Facturation à : "), {options});
    resize(900, 720);
    start();
}

store::Query ORVE_tiers_lr::listing() { return leagues::listing(); }

void ORVE_tiers_lr::showRecord(const store::Row& record) {
    const bool league =
        leagues::invoicingOf(record.value("re_fact").toString()) == leagues::Invoicing::League;
    m_invoicing[league ? 0 : 1]->setChecked(true);
}

void ORVE_tiers_lr::saveRecord() {
    leagues::save(
        store(), key(), readBound(),
        m_invoicing[0]->isChecked() ? leagues::Invoicing::League : leagues::Invoicing::Csr,
        session().today());
}

}  // namespace orve::reference
