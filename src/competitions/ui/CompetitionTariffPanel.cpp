#include "competitions/ui/CompetitionTariffPanel.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "competitions/CompetitionInvoicing.h"
#include "reference/Articles.h"
#include "store/Formats.h"

namespace orve::competitions {

namespace articles = reference::articles;
using Kind = app::GridColumn::Kind;

CompetitionTariffPanel::CompetitionTariffPanel(app::Session& session, app::Dialogs& dialogs,
                                               QWidget* parent)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    setObjectName(QStringLiteral("FrameTarifs"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    auto* articlesBox = new QGroupBox(QStringLiteral("Les Articles à Facturer"), this);
    auto* articlesLayout = new QVBoxLayout(articlesBox);
    articlesLayout->setContentsMargins(4, 2, 4, 4);
    m_articles = new app::DataGrid(QStringLiteral("DBGrid3"), articlesBox);
    m_articles->setColumns({{QStringLiteral("Référence"), "a_index", Kind::Text},
                            {QStringLiteral("Compta"), "a_cpta", Kind::Text},
                            {QStringLiteral("analytique"), "a_analytique", Kind::Text},
                            {QStringLiteral("Nature"), "a_nature", Kind::Text},
                            {QStringLiteral("Libellé"), "a_libelle", Kind::Text}});
    m_articles->horizontalHeader()->setStretchLastSection(true);
    articlesLayout->addWidget(m_articles);
    layout->addWidget(articlesBox, 3);

    auto* tariffsBox =
        new QGroupBox(QStringLiteral("Les articles à facturer sur cette compétition"), this);
    auto* tariffsLayout = new QHBoxLayout(tariffsBox);
    tariffsLayout->setContentsMargins(4, 2, 4, 4);
    m_tariffs = new app::DataGrid(QStringLiteral("DBGrid2"), tariffsBox);
    m_tariffs->setColumns({{QStringLiteral("Saison"), "t_saison", Kind::Text},
                           {QStringLiteral("Tarif en vigueur"), "t_tarif", Kind::Currency}});
    m_tariffs->horizontalHeader()->setStretchLastSection(true);
    tariffsLayout->addWidget(m_tariffs, 1);
    auto* card = new QGridLayout;
    tariffsLayout->addLayout(card);
    m_season = new QLineEdit(tariffsBox);
    m_season->setObjectName(QStringLiteral("txt_saison_tarif"));
    m_season->setMaximumWidth(60);
    m_price = new QLineEdit(tariffsBox);
    m_price->setObjectName(QStringLiteral("txt_tarif"));
    m_price->setMaximumWidth(90);
    m_price->setAlignment(Qt::AlignRight);
    card->addWidget(new QLabel(QStringLiteral("Saison : "), tariffsBox), 0, 0, Qt::AlignRight);
    card->addWidget(m_season, 0, 1);
    card->addWidget(new QLabel(QStringLiteral("Tarif (€) : "), tariffsBox), 1, 0, Qt::AlignRight);
    card->addWidget(m_price, 1, 1);
    m_add = new QPushButton(QStringLiteral("Ajout d'un tarif"), tariffsBox);
    m_add->setObjectName(QStringLiteral("cmdAjoutTarif"));
    auto* save = new QPushButton(QStringLiteral("Valider"), tariffsBox);
    save->setObjectName(QStringLiteral("CmdValideTarif"));
    auto* cancel = new QPushButton(QStringLiteral("Annuler"), tariffsBox);
    cancel->setObjectName(QStringLiteral("CmdAnnuleTarif"));
    card->addWidget(m_add, 2, 0, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    card->addLayout(buttons, 3, 0, 1, 2);
    card->setRowStretch(4, 1);
    layout->addWidget(tariffsBox, 2);

    connect(m_articles, &app::DataGrid::rowChosen, this, &CompetitionTariffPanel::chooseArticle);
    connect(m_tariffs, &app::DataGrid::rowChosen, this, &CompetitionTariffPanel::chooseTariff);
    connect(m_add, &QPushButton::clicked, this, &CompetitionTariffPanel::addTariff);
    connect(save, &QPushButton::clicked, this, &CompetitionTariffPanel::saveTariff);
    connect(cancel, &QPushButton::clicked, this, &CompetitionTariffPanel::cancelTariff);
    for (app::DataGrid* grid : {m_articles, m_tariffs})
        connect(grid, &app::DataGrid::loadFailed, this,
                [this](const QString& message) { m_dialogs.inform(message); });
}

void CompetitionTariffPanel::load() {
    m_articles->setQuery(m_session.store(), articles::listing());
    cancelTariff();
}

void CompetitionTariffPanel::showCompetition(const QString& season, const QString& nature) {
    m_competitionSeason = season;
    m_competitionNature = nature;
    // The entry fee is the price a competition's invoices read first.
    m_articles->storeModel()->fetchAll();
    for (int row = 0; row < m_articles->rowCount(); ++row)
        if (m_articles->value(row, QStringLiteral("a_index")).toString() == kEntryFeeArticle) {
            m_articles->choose(row);
            return;
        }
    cancelTariff();
}

void CompetitionTariffPanel::clearCompetition() {
    m_competitionSeason.clear();
    m_competitionNature.clear();
    cancelTariff();
}

QString CompetitionTariffPanel::article() const {
    const int row = m_articles->currentRow();
    return row < 0 ? QString() : m_articles->value(row, QStringLiteral("a_index")).toString();
}

QString CompetitionTariffPanel::tariffNature() const {
    if (!m_competitionNature.isEmpty()) return m_competitionNature;
    const int row = m_articles->currentRow();
    return row < 0 ? QString() : m_articles->value(row, QStringLiteral("a_nature")).toString();
}

void CompetitionTariffPanel::chooseArticle(int) { cancelTariff(); }

void CompetitionTariffPanel::chooseTariff(int row) {
    m_adding = false;
    m_season->setText(m_tariffs->value(row, QStringLiteral("t_saison")).toString());
    m_season->setReadOnly(true);
    m_price->setText(format::fileAmount(Money::fromVariant(m_tariffs->value(row, "t_tarif"))));
    m_price->setFocus();
}

void CompetitionTariffPanel::addTariff() {
    if (article().isEmpty()) return;
    m_adding = true;
    m_season->setText(m_competitionSeason);
    m_season->setReadOnly(false);
    m_price->clear();
    m_season->setFocus();
}

void CompetitionTariffPanel::saveTariff() {
    if (article().isEmpty()) return;
    if (app::guarded(m_dialogs, [&] {
            articles::saveTariff(m_session.store(),
                                 {article(), tariffNature(), m_season->text(), m_price->text()},
                                 m_adding);
        }))
        cancelTariff();
}

void CompetitionTariffPanel::cancelTariff() {
    m_adding = false;
    m_season->clear();
    m_season->setReadOnly(true);
    m_price->clear();
    if (article().isEmpty()) {
        m_tariffs->setRows({});
        return;
    }
    app::guarded(m_dialogs, [&] {
        m_tariffs->setQuery(m_session.store(), articles::tariffListing(article(), tariffNature()));
    });
}

}  // namespace orve::competitions
