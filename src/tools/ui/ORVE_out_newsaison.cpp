#include "tools/ui/ORVE_out_newsaison.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>

#include "app/ui/ScreenSupport.h"
#include "tools/NewSeason.h"

namespace orve::tools {

ORVE_out_newsaison::ORVE_out_newsaison(app::Session& session, app::Dialogs& dialogs,
                                       QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_out_newsaison"),
                          QStringLiteral("Mise en place d'une saison"));
    auto* layout = new QGridLayout(this);
    auto* label = new QLabel(QStringLiteral("veuillez saisir l'année à mettre en place"), this);
    label->setObjectName(QStringLiteral("Label1"));
    m_year = new QLineEdit(this);
    m_year->setObjectName(QStringLiteral("txt_annee"));
    // A season is named by its four-digit year.
    m_year->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,4}")), m_year));
    m_year->setMaxLength(4);
    m_year->setFixedWidth(80);
    m_year->setText(QString::number(proposedSeason(m_session.workingSeason())));
    auto* note = new QLabel(
        QStringLiteral("Les pseudo-compétitions (licences, divers, ligues, journées) sont "
                       "copiées dans cette saison ; celles qu'elle a déjà restent telles quelles."),
        this);
    note->setObjectName(QStringLiteral("Label2"));
    note->setWordWrap(true);
    auto* ok = new QPushButton(QStringLiteral("Valider"), this);
    ok->setObjectName(QStringLiteral("cmdvalide"));
    ok->setDefault(true);
    layout->addWidget(label, 0, 0);
    layout->addWidget(m_year, 0, 1);
    layout->addWidget(note, 1, 0, 1, 3);
    layout->addWidget(ok, 2, 2);
    layout->setColumnStretch(2, 1);
    connect(ok, &QPushButton::clicked, this, &ORVE_out_newsaison::validate);
    connect(m_year, &QLineEdit::returnPressed, this, &ORVE_out_newsaison::validate);
    resize(520, 150);
    m_year->setFocus();
    m_year->selectAll();
}

void ORVE_out_newsaison::validate() {
    app::guarded(m_dialogs, [&] {
        m_dialogs.inform(
            setUpSeason(m_session.store(), m_year->text(), m_session.today()).message());
    });
}

}  // namespace orve::tools
