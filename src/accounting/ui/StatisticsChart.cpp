#include "accounting/ui/StatisticsChart.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QValueAxis>

#include "store/Formats.h"

namespace orve::accounting {

StatisticsChart::StatisticsChart(QWidget* parent) : QChartView(new QChart, parent) {
    setObjectName(QStringLiteral("ChartCA"));
    setRenderHint(QPainter::Antialiasing);
    chart()->legend()->hide();
    chart()->setMargins(QMargins(4, 4, 4, 4));
    setMinimumWidth(360);
}

void StatisticsChart::draw(const QString& title, const std::vector<ChartBar>& bars) {
    m_bars = bars;
    QChart* c = chart();
    c->removeAllSeries();
    for (QAbstractAxis* axis : c->axes()) {
        c->removeAxis(axis);
        delete axis;
    }
    c->setTitle(title);
    if (bars.empty()) return;
    auto* set = new QBarSet(QStringLiteral("Montant facturé"));
    QStringList labels;
    double highest = 0;
    double lowest = 0;
    for (const ChartBar& bar : bars) {
        const double euros = static_cast<double>(bar.amount.cents()) / 100.0;
        *set << euros;
        labels << bar.label;
        highest = std::max(highest, euros);
        lowest = std::min(lowest, euros);
    }
    auto* series = new QBarSeries;
    series->append(set);
    c->addSeries(series);
    auto* categories = new QBarCategoryAxis;
    categories->append(labels);
    QFont small = categories->labelsFont();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    categories->setLabelsFont(small);
    // Many organisers or natures: their codes slanted, so each stays readable.
    if (bars.size() > 8) categories->setLabelsAngle(-60);
    c->addAxis(categories, Qt::AlignBottom);
    series->attachAxis(categories);
    auto* values = new QValueAxis;
    values->setRange(lowest * 1.05, highest > 0 ? highest * 1.05 : 1.0);
    values->setLabelFormat(QStringLiteral("%.0f"));
    values->setLabelsFont(small);
    values->setTitleText(QStringLiteral("€"));
    values->setTickCount(5);
    values->applyNiceNumbers();
    c->addAxis(values, Qt::AlignLeft);
    series->attachAxis(values);
}

}  // namespace orve::accounting
