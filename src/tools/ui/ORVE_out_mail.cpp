#include "tools/ui/ORVE_out_mail.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/DataGrid.h"
#include "app/ui/ScreenSupport.h"
#include "invoicing/MailTexts.h"

namespace orve::tools {

ORVE_out_mail::ORVE_out_mail(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(
        this, QStringLiteral("ORVE_out_mail"),
        QStringLiteral("Enregistrement des textes pour mail d'envoi de factures"));
    auto* layout = new QHBoxLayout(this);

    auto* list = new QGroupBox(QStringLiteral("Textes de mails"), this);
    list->setObjectName(QStringLiteral("Frame_textes"));
    auto* ll = new QVBoxLayout(list);
    m_grid = new app::DataGrid(QStringLiteral("DBGrid1"), list);
    m_grid->setColumns({{QStringLiteral("Descriptif"), "mail_nom", app::GridColumn::Kind::Text},
                        {QStringLiteral("Texte"), "mail_memo", app::GridColumn::Kind::Text}});
    ll->addWidget(m_grid);
    layout->addWidget(list, 1);

    auto* card = new QGroupBox(QStringLiteral("Sélection du texte"), this);
    card->setObjectName(QStringLiteral("Frame1"));
    auto* cl = new QVBoxLayout(card);
    cl->addWidget(new QLabel(QStringLiteral("Désignation du mail"), card));
    m_name = new QLineEdit(card);
    m_name->setObjectName(QStringLiteral("txtnom"));
    cl->addWidget(m_name);
    m_body = new QPlainTextEdit(card);
    m_body->setObjectName(QStringLiteral("Txtmemo"));
    cl->addWidget(m_body, 1);
    auto* buttons = new QHBoxLayout;
    auto* add = new QPushButton(QStringLiteral("Ajout un texte"), card);
    add->setObjectName(QStringLiteral("cmdajout"));
    auto* save = new QPushButton(QStringLiteral("&Enregistrer ce texte"), card);
    save->setObjectName(QStringLiteral("Cmdnewtxt"));
    buttons->addWidget(add);
    buttons->addStretch(1);
    buttons->addWidget(save);
    cl->addLayout(buttons);
    layout->addWidget(card, 1);

    connect(m_grid, &app::DataGrid::rowChosen, this, &ORVE_out_mail::showText);
    connect(add, &QPushButton::clicked, this, &ORVE_out_mail::newText);
    connect(save, &QPushButton::clicked, this, &ORVE_out_mail::saveText);

    app::guarded(m_dialogs,
                 [&] { m_grid->setQuery(m_session.store(), invoicing::mailTextsQuery()); });
    resize(900, 520);
}

void ORVE_out_mail::showText(int row) {
    if (row < 0 || row >= m_grid->rowCount()) return;
    app::guarded(m_dialogs, [&] {
        // Read again: another workstation may have changed it since the list.
        const auto text = invoicing::findMailText(
            m_session.store(), m_grid->value(row, QStringLiteral("mail_nom")).toString());
        m_name->setText(text ? text->name : QString());
        m_body->setPlainText(text ? text->body : QString());
    });
}

void ORVE_out_mail::newText() {
    m_name->clear();
    m_body->clear();
    m_name->setFocus();
}

void ORVE_out_mail::saveText() {
    app::guarded(m_dialogs, [&] {
        invoicing::saveMailText(m_session.store(), m_name->text(), m_body->toPlainText());
        m_grid->setQuery(m_session.store(), invoicing::mailTextsQuery());
    });
}

}  // namespace orve::tools
