#include "imports/ui/ORVE_int_cdc.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "imports/ChampionshipImport.h"
#include "imports/ui/ImportFileChoice.h"
#include "imports/ui/ImportReportView.h"
#include "store/Seasons.h"

namespace orve::imports {

ORVE_int_cdc::ORVE_int_cdc(app::Session& session, app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_int_cdc"),
                          QStringLiteral("Intégration du CDC National"));
    auto* layout = new QVBoxLayout(this);
    m_choice =
        new ImportFileChoice(dialogs, session.programFolder(),
                             QStringLiteral("Fichiers CSV (*.csv);;Tous les fichiers (*)"), this);

    auto* settings = new QHBoxLayout;
    const int working = session.workingSeason();
    m_season = app::newSeasonChooser(working, m_choice);
    m_finalDate = new QLineEdit(defaultFinalDate(working), m_choice);
    m_finalDate->setObjectName(QStringLiteral("Mskdate"));
    m_finalDate->setInputMask(QStringLiteral("99/99/9999;_"));
    m_finalDate->setFixedWidth(100);
    auto* validate = new QPushButton(QStringLiteral("Intégrer le fichier"), m_choice);
    validate->setObjectName(QStringLiteral("cmdvalide"));
    auto* close = new QPushButton(QStringLiteral("Fermer"), m_choice);
    close->setObjectName(QStringLiteral("cmdannule"));
    settings->addWidget(new QLabel(QStringLiteral("Saison :"), m_choice));
    settings->addWidget(m_season);
    settings->addSpacing(16);
    settings->addWidget(new QLabel(QStringLiteral("Date de la finale :"), m_choice));
    settings->addWidget(m_finalDate);
    settings->addStretch(1);
    settings->addWidget(validate);
    settings->addWidget(close);
    m_choice->addRow(settings);
    layout->addWidget(m_choice);

    m_report = new ImportReportView(this);
    layout->addWidget(m_report, 1);

    // The final of another season is on its own 27 May.
    connect(m_season, &QComboBox::currentTextChanged, this, [this](const QString& season) {
        m_finalDate->setText(defaultFinalDate(season.toInt()));
    });
    connect(m_choice, &ImportFileChoice::chosen, m_report, &ImportReportView::clear);
    connect(validate, &QPushButton::clicked, this, &ORVE_int_cdc::integrate);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    resize(980, 560);
    app::centreOnScreen(this);
}

void ORVE_int_cdc::integrate() {
    app::guarded(m_dialogs, [&] {
        ChampionshipImport import(m_session.store(), ChampionshipSettings::fromTexts(
                                                         m_season->currentText(),
                                                         m_finalDate->text(), m_session.today()));
        ImportProgressDialog progress(this, QStringLiteral("Intégration du CDC National"));
        progress.setPhase(kCheckingPhase);
        const ImportReport report = importCompetitions(
            import, ImportFile::read(m_choice->path()),
            {[&](int existing) { return m_dialogs.ask(duplicateQuestion(existing)); },
             progress.callback(), [&] { progress.setPhase(kWritingPhase); }, progress.callback()});
        m_report->conclude(report, m_dialogs);
    });
}

}  // namespace orve::imports
