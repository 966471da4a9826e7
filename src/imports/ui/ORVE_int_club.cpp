#include "imports/ui/ORVE_int_club.h"

#include <QDir>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "imports/ClubImport.h"
#include "imports/ui/ImportFileChoice.h"
#include "imports/ui/ImportReportView.h"

namespace orve::imports {

ORVE_int_club::ORVE_int_club(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_int_club"),
                          QStringLiteral("Intégration des clubs"));
    auto* layout = new QVBoxLayout(this);
    m_choice = new ImportFileChoice(dialogs, session.programFolder(),
                                    QStringLiteral("Fichiers texte (*.csv *.txt);;Tous les "
                                                   "fichiers (*)"),
                                    this);
    m_fileName = new QLabel(m_choice);
    m_fileName->setObjectName(QStringLiteral("lbl_fic_name"));
    m_fileName->setWordWrap(true);
    auto* name = new QHBoxLayout;
    name->addWidget(m_fileName);
    m_choice->addRow(name);
    auto* buttons = new QHBoxLayout;
    auto* accept = new QPushButton(QStringLiteral("Valider le choix du fichier"), m_choice);
    accept->setObjectName(QStringLiteral("cmdvalide_choix"));
    m_integrate = new QPushButton(QStringLiteral("Intégrer les clubs"), m_choice);
    m_integrate->setObjectName(QStringLiteral("cmdvalide_integration"));
    m_integrate->setEnabled(false);
    auto* close = new QPushButton(QStringLiteral("Fermer"), m_choice);
    close->setObjectName(QStringLiteral("cmdannule"));
    buttons->addWidget(accept);
    buttons->addWidget(m_integrate);
    buttons->addStretch(1);
    buttons->addWidget(close);
    m_choice->addRow(buttons);
    layout->addWidget(m_choice);

    m_report = new ImportReportView(this);
    layout->addWidget(m_report, 1);

    connect(m_choice, &ImportFileChoice::chosen, this, [this] {
        // A new choice must be accepted before it is integrated.
        m_accepted.clear();
        m_fileName->clear();
        m_integrate->setEnabled(false);
    });
    connect(accept, &QPushButton::clicked, this, &ORVE_int_club::acceptFile);
    connect(m_integrate, &QPushButton::clicked, this, &ORVE_int_club::integrate);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    resize(980, 560);
    app::centreOnScreen(this);
}

void ORVE_int_club::acceptFile() {
    app::guarded(m_dialogs, [&] {
        const ImportFile file = ImportFile::read(m_choice->path());
        m_accepted = m_choice->path();
        m_fileName->setText(QStringLiteral("Nous allons intégrer le fichier : %1 (%2, %3 lignes "
                                           "dont l'en-tête)")
                                .arg(QDir::toNativeSeparators(m_accepted), file.encodingName())
                                .arg(file.lines().size()));
        m_integrate->setEnabled(true);
        m_report->clear();
    });
}

void ORVE_int_club::integrate() {
    app::guarded(m_dialogs, [&] {
        ClubImport import(m_session.store(), m_session.today());
        ImportProgressDialog progress(this, QStringLiteral("Intégration des clubs"));
        progress.setPhase(kCheckingPhase);
        import.check(ImportFile::read(m_accepted), progress.callback());
        progress.setPhase(kWritingPhase);
        const ImportReport report = import.write(progress.callback());
        m_report->conclude(report, m_dialogs);
    });
}

}  // namespace orve::imports
