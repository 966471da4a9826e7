#include "tools/ui/ORVE_out_mail_top.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"

namespace orve::tools {

using Kind = app::GridColumn::Kind;

ORVE_out_mail_top::ORVE_out_mail_top(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_out_mail_top"),
                          QStringLiteral("Maintenance des envois mails"));
    auto* layout = new QVBoxLayout(this);
    auto* buttons = new QHBoxLayout;
    auto* unsent =
        new QPushButton(QStringLiteral("Affichage des factures non envoyées par mail"), this);
    unsent->setObjectName(QStringLiteral("cmdtop_non"));
    auto* sent = new QPushButton(QStringLiteral("Affichage des factures envoyées par mail"), this);
    sent->setObjectName(QStringLiteral("cmdtop_oui"));
    auto* apply =
        new QPushButton(QStringLiteral("Modifier les factures cochées par la lettre X ou x"), this);
    apply->setObjectName(QStringLiteral("CmdMaj"));
    buttons->addWidget(unsent);
    buttons->addWidget(sent);
    buttons->addStretch(1);
    buttons->addWidget(apply);
    layout->addLayout(buttons);

    m_grid = new app::DataGrid(QStringLiteral("DBGrid1"), this);
    m_grid->setColumns(
        {{QStringLiteral("Code Interne"), "ent_c_index", Kind::Text},
         {QStringLiteral("Intitulé de la compétiton"), "ent_fact_competition", Kind::Text},
         {QStringLiteral("Nature"), "ent_nature", Kind::Text},
         {QStringLiteral("Facturé à "), "ent_fact_lib", Kind::Text},
         {QStringLiteral("N° Facture"), "ent_fact_no", Kind::Text},
         {QStringLiteral("Date Facture"), "ent_fact_date", Kind::Text},
         {QStringLiteral("tri_facture"), "ent_fact_tri", Kind::Text},
         {QStringLiteral("Montant"), "ent_montant", Kind::Currency},
         {QStringLiteral("mail envoyé"), "ent_envoi_mail", Kind::Text},
         {QStringLiteral("à modifier"), "c_edt", Kind::Text}});
    m_grid->setEditable(true);
    layout->addWidget(m_grid, 1);

    connect(unsent, &QPushButton::clicked, this, [this] { showList(DispatchList::Unsent); });
    connect(sent, &QPushButton::clicked, this, [this] { showList(DispatchList::Sent); });
    connect(apply, &QPushButton::clicked, this, &ORVE_out_mail_top::change);
    connect(m_grid, &app::DataGrid::cellEdited, this, &ORVE_out_mail_top::tick);

    // No tick survives the window: none is there when it opens.
    app::guarded(m_dialogs, [&] {
        clearDispatchList(m_session.store());
        showList(DispatchList::Unsent);
    });
    resize(1340, 600);
}

ORVE_out_mail_top::~ORVE_out_mail_top() {
    try {
        clearDispatchList(m_session.store());
    } catch (const std::exception&) {
        // The next opening clears them as well.
    }
}

void ORVE_out_mail_top::showList(DispatchList list) {
    app::guarded(m_dialogs, [&] {
        loadDispatchList(m_session.store());
        m_shown = list;
        m_grid->setQuery(m_session.store().scratch(), dispatchQuery(list));
        m_grid->resizeColumnsToContents();
    });
}

void ORVE_out_mail_top::tick(int row, const QString& field, const QString& text) {
    app::guarded(m_dialogs, [&] {
        // Only "à modifier" is the operator's to type into.
        if (field == QStringLiteral("c_edt"))
            setDispatchTick(m_session.store(),
                            m_grid->value(row, QStringLiteral("ent_fact_no")).toString(), text);
        m_grid->reload();
    });
}

void ORVE_out_mail_top::change() {
    const bool yes = m_dialogs.ask(dispatchQuestion(m_shown));
    if (yes) app::guarded(m_dialogs, [&] { applyDispatchChange(m_session.store(), m_shown); });
    // Then the sent invoices, except after No on the unsent ones, shown again
    // with their ticks.
    showList(!yes && m_shown == DispatchList::Unsent ? DispatchList::Unsent : DispatchList::Sent);
}

}  // namespace orve::tools
