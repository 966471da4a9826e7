#pragma once

#include <QChartView>
#include <vector>

#include "accounting/TurnoverStatistics.h"

namespace orve::accounting {

// The summary's amounts as horizontal bars, one per nature or organiser,
// drawn again each time the summary is.
class StatisticsChart : public QChartView {
    Q_OBJECT
  public:
    explicit StatisticsChart(QWidget* parent = nullptr);
    void draw(const QString& title, const std::vector<ChartBar>& bars);
    // What is drawn: the labels and amounts, for the tests.
    const std::vector<ChartBar>& bars() const { return m_bars; }

  private:
    std::vector<ChartBar> m_bars;
};

}  // namespace orve::accounting
