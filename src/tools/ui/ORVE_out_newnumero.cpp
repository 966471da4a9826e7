#include "tools/ui/ORVE_out_newnumero.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>

#include "app/ui/ScreenSupport.h"
#include "tools/InvoiceRenumbering.h"

namespace orve::tools {

ORVE_out_newnumero::ORVE_out_newnumero(app::Session& session, app::Dialogs& dialogs,
                                       QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_out_newnumero"),
                          QStringLiteral("Changement numérotation des factures"));
    auto* layout = new QGridLayout(this);
    auto* lastLabel = new QLabel(QStringLiteral("La dernière facture porte le N° "), this);
    lastLabel->setObjectName(QStringLiteral("Label1"));
    m_last = new QLineEdit(this);
    m_last->setObjectName(QStringLiteral("txt_dernier_num"));
    m_last->setReadOnly(true);
    auto* nextLabel = new QLabel(QStringLiteral("Veuillez saisir le prochain N° Facture"), this);
    nextLabel->setObjectName(QStringLiteral("Label2"));
    m_next = new QLineEdit(this);
    m_next->setObjectName(QStringLiteral("txt_new_num"));
    // Numbers only: the year and a six-digit sequence.
    m_next->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("\\d{0,%1}").arg(kLongestInvoiceNumber)), m_next));
    m_next->setMaxLength(kLongestInvoiceNumber);
    for (QLineEdit* box : {m_last, m_next}) box->setFixedWidth(140);
    auto* ok = new QPushButton(QStringLiteral("Valider"), this);
    ok->setObjectName(QStringLiteral("cmdvalide"));
    ok->setDefault(true);
    layout->addWidget(lastLabel, 0, 0);
    layout->addWidget(m_last, 0, 1);
    layout->addWidget(nextLabel, 1, 0);
    layout->addWidget(m_next, 1, 1);
    layout->addWidget(ok, 2, 2);
    layout->setColumnStretch(2, 1);
    connect(ok, &QPushButton::clicked, this, &ORVE_out_newnumero::validate);
    connect(m_next, &QLineEdit::returnPressed, this, &ORVE_out_newnumero::validate);
    resize(520, 140);
    app::guarded(m_dialogs, [&] { showLast(); });
    m_next->setFocus();
}

void ORVE_out_newnumero::showLast() { m_last->setText(lastInvoiceNumber(m_session.store())); }

void ORVE_out_newnumero::validate() {
    const bool done = app::guarded(m_dialogs, [&] {
        const RenumberingResult r =
            renumberInvoices(m_session.store(), m_next->text(), m_session.today());
        showLast();
        m_next->clear();
        m_dialogs.inform(r.message());
    });
    if (done) return;
    // Another workstation may have made invoices since the window opened.
    app::guarded(m_dialogs, [&] { showLast(); });
    m_next->setFocus();
    m_next->selectAll();
}

}  // namespace orve::tools
