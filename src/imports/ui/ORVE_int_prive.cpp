#include "imports/ui/ORVE_int_prive.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "imports/PrivateImport.h"
#include "imports/ui/ImportFileChoice.h"
#include "imports/ui/ImportReportView.h"

namespace orve::imports {

ORVE_int_prive::ORVE_int_prive(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_int_prive"),
                          QStringLiteral("Intégration des compétitions privées"));
    auto* layout = new QVBoxLayout(this);
    m_choice = new ImportFileChoice(
        dialogs, session.programFolder(),
        QStringLiteral("Fichiers texte (*.csv *.txt);;Tous les fichiers (*)"), this);
    auto* buttons = new QHBoxLayout;
    auto* validate = new QPushButton(QStringLiteral("Intégrer le fichier"), m_choice);
    validate->setObjectName(QStringLiteral("cmdvalide"));
    auto* close = new QPushButton(QStringLiteral("Fermer"), m_choice);
    close->setObjectName(QStringLiteral("cmdannule"));
    buttons->addStretch(1);
    buttons->addWidget(validate);
    buttons->addWidget(close);
    m_choice->addRow(buttons);
    layout->addWidget(m_choice);

    m_report = new ImportReportView(this);
    layout->addWidget(m_report, 1);

    connect(m_choice, &ImportFileChoice::chosen, m_report, &ImportReportView::clear);
    connect(validate, &QPushButton::clicked, this, &ORVE_int_prive::integrate);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    resize(980, 560);
    app::centreOnScreen(this);
}

void ORVE_int_prive::integrate() {
    app::guarded(m_dialogs, [&] {
        PrivateImport import(m_session.store());
        ImportProgressDialog progress(this, QStringLiteral("Intégration des compétitions privées"));
        progress.setPhase(kCheckingPhase);
        const ImportReport report = importCompetitions(
            import, ImportFile::read(m_choice->path()),
            {[&](int existing) { return m_dialogs.ask(duplicateQuestion(existing)); },
             progress.callback(), [&] { progress.setPhase(kWritingPhase); }, progress.callback()});
        m_report->conclude(report, m_dialogs);
    });
}

}  // namespace orve::imports
