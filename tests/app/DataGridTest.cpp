#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QSqlField>
#include <QSqlRecord>

#include "app/ui/DataGrid.h"

using namespace orve;
using orve::app::DataGrid;
using orve::app::GridColumn;

namespace {
void ensureApplication() {
    if (qApp) return;
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

QSqlRecord row(const QString& code, qint64 cents) {
    QSqlRecord r;
    r.append(QSqlField("t_saison", QMetaType(QMetaType::QString)));
    r.append(QSqlField("t_tarif", QMetaType(QMetaType::LongLong)));
    r.setValue(0, code);
    r.setValue(1, cents);
    return r;
}
}  // namespace

TEST(DataGrid, ShowsFieldsByColumnAndReportsChoicesOnce) {
    ensureApplication();
    DataGrid grid("DBGrid2");
    grid.setColumns({{"Saison", "t_saison"}, {"Tarif", "t_tarif", GridColumn::Kind::Currency}});
    grid.setRows({row("2026", 123456), row("2027", -50)});
    EXPECT_EQ(grid.item(0, 1)->text(), "1 234,56 €");
    EXPECT_EQ(grid.item(1, 1)->text(), "-0,50 €");
    EXPECT_EQ(grid.value(1, "t_tarif").toLongLong(), -50);
    EXPECT_EQ(grid.columnOf("Tarif"), 1);
    EXPECT_EQ(grid.columnOf("T_SAISON"), 0);
    EXPECT_EQ(grid.columnOf("Prix"), -1);

    std::vector<int> chosen;
    QObject::connect(&grid, &DataGrid::rowChosen, [&](int r) { chosen.push_back(r); });
    QString sortedBy;
    QObject::connect(&grid, &DataGrid::headerClicked, [&](const QString& f) { sortedBy = f; });
    grid.choose(1);
    grid.choose(1);  // choosing the same row again shows it again
    grid.choose(5);  // out of range: nothing
    EXPECT_EQ(chosen, (std::vector<int>{1, 1}));
    // Refilling never counts as a choice.
    grid.setRows({row("2028", 0)});
    EXPECT_EQ(chosen.size(), 2u);
    emit grid.horizontalHeader()->sectionClicked(1);
    EXPECT_EQ(sortedBy, "t_tarif");
}
