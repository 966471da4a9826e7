#include "imports/ui/ORVE_int_dept.h"

#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "imports/DepartmentImport.h"
#include "imports/ui/ImportFileChoice.h"
#include "imports/ui/ImportReportView.h"

namespace orve::imports {

ORVE_int_dept::ORVE_int_dept(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_int_dept"),
                          QStringLiteral("Intégration des départements"));
    auto* layout = new QVBoxLayout(this);
    m_choice = new ImportFileChoice(dialogs, session.programFolder(),
                                    QStringLiteral("Fichiers texte (*.csv *.txt);;Tous les "
                                                   "fichiers (*)"),
                                    this);
    // What "Valider" does: accept the file chosen, or apply the lines loaded.
    auto* steps = new QHBoxLayout;
    m_chooseStep = new QRadioButton(QStringLiteral("Choix du fichier"), m_choice);
    m_chooseStep->setObjectName(QStringLiteral("Option1_0"));
    m_chooseStep->setChecked(true);
    m_applyStep = new QRadioButton(QStringLiteral("Validation des ligues et districts des comités"),
                                   m_choice);
    m_applyStep->setObjectName(QStringLiteral("Option1_1"));
    auto* validate = new QPushButton(QStringLiteral("Valider"), m_choice);
    validate->setObjectName(QStringLiteral("cmdvalide_choix"));
    auto* close = new QPushButton(QStringLiteral("Fermer"), m_choice);
    close->setObjectName(QStringLiteral("cmdannule"));
    steps->addWidget(m_chooseStep);
    steps->addWidget(m_applyStep);
    steps->addStretch(1);
    steps->addWidget(validate);
    steps->addWidget(close);
    m_choice->addRow(steps);
    layout->addWidget(m_choice);

    m_loading = new QGroupBox(QStringLiteral("Intégration du fichier"), this);
    m_loading->setObjectName(QStringLiteral("Frame2"));
    auto* form = new QFormLayout(m_loading);
    m_fileName = new QLabel(m_loading);
    m_fileName->setObjectName(QStringLiteral("lbl_fic_name"));
    m_target = new QLabel(m_loading);
    m_target->setObjectName(QStringLiteral("lbl_bdd_name"));
    form->addRow(QStringLiteral("Nous allons intégrer le fichier :"), m_fileName);
    form->addRow(QStringLiteral("Nous allons regénérer la base de données "), m_target);
    auto* loadButton = new QPushButton(QStringLiteral("Intégrer le fichier"), m_loading);
    loadButton->setObjectName(QStringLiteral("cmdvalide_integration"));
    auto* loadRow = new QHBoxLayout;
    loadRow->addWidget(loadButton);
    loadRow->addStretch(1);
    form->addRow(QString(), loadRow);
    m_loading->setEnabled(false);
    layout->addWidget(m_loading);

    m_report = new ImportReportView(this);
    layout->addWidget(m_report, 1);

    connect(m_choice, &ImportFileChoice::chosen, this, [this] {
        m_accepted.clear();
        m_fileName->clear();
        m_loading->setEnabled(false);
        m_chooseStep->setChecked(true);
    });
    connect(validate, &QPushButton::clicked, this, &ORVE_int_dept::validateChoice);
    connect(loadButton, &QPushButton::clicked, this, &ORVE_int_dept::load);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    resize(980, 600);
    app::centreOnScreen(this);
}

void ORVE_int_dept::validateChoice() {
    if (m_applyStep->isChecked())
        apply();
    else
        acceptFile();
}

void ORVE_int_dept::acceptFile() {
    app::guarded(m_dialogs, [&] {
        const ImportFile file = ImportFile::read(m_choice->path());
        m_accepted = m_choice->path();
        m_fileName->setText(QStringLiteral("%1 (%2, %3 lignes)")
                                .arg(QDir::toNativeSeparators(m_accepted), file.encodingName())
                                .arg(file.lines().size()));
        m_target->setText(DepartmentImport(m_session.store(), m_session.today()).target());
        m_loading->setEnabled(true);
        m_report->clear();
    });
}

void ORVE_int_dept::load() {
    app::guarded(m_dialogs, [&] {
        DepartmentImport import(m_session.store(), m_session.today());
        const ImportReport report = import.load(ImportFile::read(m_accepted));
        m_applyStep->setChecked(true);
        m_report->clear();
        m_dialogs.inform(loadingMessage(report.read));
    });
}

void ORVE_int_dept::apply() {
    app::guarded(m_dialogs, [&] {
        DepartmentImport import(m_session.store(), m_session.today());
        ImportProgressDialog progress(this, QStringLiteral("Intégration des départements"));
        progress.setPhase(QStringLiteral("Validation"));
        const ImportReport report = import.apply(progress.callback());
        m_report->conclude(report, m_dialogs);
    });
}

}  // namespace orve::imports
