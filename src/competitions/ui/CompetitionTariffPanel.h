#pragma once

#include <QWidget>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/ui/DataGrid.h"

class QLineEdit;
class QPushButton;

namespace orve::competitions {

// The articles and their season tariffs beside the competition, kept as the
// article window keeps them. With a competition on the card, the tariffs
// listed and added are those of its nature (the fee articles are priced by
// nature of competition) and a new tariff starts with its season; with none,
// those of the article's own nature.
class CompetitionTariffPanel : public QWidget {
    Q_OBJECT
  public:
    CompetitionTariffPanel(app::Session& session, app::Dialogs& dialogs, QWidget* parent = nullptr);

    // Reads the articles; throws when the store cannot answer.
    void load();
    // The competition whose prices are shown; chooses the entry-fee article.
    void showCompetition(const QString& season, const QString& nature);
    void clearCompetition();

    void addTariff();
    void saveTariff();
    void cancelTariff();

  private:
    void chooseArticle(int row);
    void chooseTariff(int row);
    QString article() const;
    QString tariffNature() const;

    app::Session& m_session;
    app::Dialogs& m_dialogs;
    app::DataGrid* m_articles;
    app::DataGrid* m_tariffs;
    QLineEdit* m_season;
    QLineEdit* m_price;
    QPushButton* m_add;
    QString m_competitionSeason;
    QString m_competitionNature;
    bool m_adding = false;
};

}  // namespace orve::competitions
