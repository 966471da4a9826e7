#include <gtest/gtest.h>

#include <QApplication>
#include <QDataWidgetMapper>
#include <QHeaderView>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSqlField>
#include <QSqlRecord>

#include "app/ui/DataGrid.h"
#include "store/Money.h"
#include "support/TestInstall.h"

using namespace orve;
using orve::app::DataGrid;
using orve::app::GridColumn;
using orve::app::StoreTableModel;

namespace {

QSqlRecord tariffRow(const QString& season, const QVariant& cents) {
    QSqlRecord r;
    r.append(QSqlField("t_saison", QMetaType(QMetaType::QString)));
    r.append(QSqlField("t_tarif", QMetaType(QMetaType::LongLong)));
    r.setValue(0, season);
    r.setValue(1, cents);
    return r;
}

QString code(int n) { return QString::number(n).rightJustified(8, '0'); }

// Articles 00000001 to 00000450: the odd ones invoice licences, the even ones
// miscellaneous; their labels are shuffled so that the two orders differ.
void addArticles(store::Store& s) {
    store::Transaction tx(s);
    for (int n = 1; n <= 450; ++n)
        s.insert(
            "strarticle",
            {{"a_index", code(n)},
             {"a_libelle", QStringLiteral("Article %1").arg((n * 37) % 451, 3, 10, QChar('0'))},
             {"a_nature", n % 2 ? "LIC" : "DIV"},
             {"a_cpta", "706000000"}});
    tx.commit();
}

store::Query articles(const store::Condition& condition = {}) {
    return {"select * from strarticle", condition, "a_index"};
}

const std::vector<GridColumn> kArticleColumns{{"Code", "a_index"}, {"Compte", "a_cpta"}};

void mouse(QWidget* target, QEvent::Type type, const QPoint& at) {
    QMouseEvent event(type, QPointF(at), QPointF(target->mapToGlobal(at)), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

void click(QWidget* target, const QPoint& at) {
    mouse(target, QEvent::MouseButtonPress, at);
    mouse(target, QEvent::MouseButtonRelease, at);
}

void clickHead(DataGrid& grid, int column) {
    QHeaderView* head = grid.horizontalHeader();
    click(head->viewport(),
          QPoint(head->sectionViewportPosition(column) + head->sectionSize(column) / 2,
                 head->height() / 2));
}

void clickRow(DataGrid& grid, int row) {
    click(grid.viewport(), grid.visualRect(grid.storeModel()->index(row, 0)).center());
}

QStringList codes(const DataGrid& grid) {
    QStringList values;
    for (const auto& r : grid.rows()) values << r.value("a_index").toString();
    return values;
}

}  // namespace

TEST(DataGrid, ReadsALongListingAPageAtATime) {
    test::application();
    test::TestInstall install(test::TestInstall::Kind::Empty);
    auto session = install.start();
    addArticles(session->store());

    DataGrid grid("DBGrid1");
    grid.storeModel()->setPageSize(200);
    grid.setColumns(kArticleColumns);
    grid.setQuery(session->store(), articles());
    auto* model = grid.storeModel();
    EXPECT_EQ(grid.rowCount(), 200);
    EXPECT_TRUE(model->canFetchMore({}));
    EXPECT_EQ(grid.value(199, "a_index").toString(), code(200));
    // A row past the first page is not there until the view scrolls to it.
    EXPECT_FALSE(grid.value(200, "a_index").isValid());

    model->fetchMore({});
    EXPECT_EQ(grid.rowCount(), 400);
    EXPECT_EQ(grid.value(199, "a_index").toString(), code(200));
    EXPECT_EQ(grid.value(200, "a_index").toString(), code(201));
    EXPECT_EQ(grid.value(399, "a_libelle").toString(), "Article 368");
    model->fetchMore({});
    EXPECT_EQ(grid.rowCount(), 450);
    EXPECT_FALSE(model->canFetchMore({}));
    EXPECT_EQ(codes(grid).last(), code(450));
    EXPECT_EQ(codes(grid).removeDuplicates(), 0);

    // Reading again after a change keeps what had been read and shows the change.
    session->store().exec("update strarticle set a_cpta = ? where a_index = ?",
                          {"411000000", code(300)});
    grid.reload();
    EXPECT_EQ(grid.rowCount(), 450);
    EXPECT_EQ(model->index(299, 1).data().toString(), "411000000");

    // Choosing a row further down reads as far as it.
    grid.setQuery(session->store(), articles());
    std::vector<int> chosen;
    QObject::connect(&grid, &DataGrid::rowChosen, [&](int r) { chosen.push_back(r); });
    grid.choose(420);
    EXPECT_EQ(chosen, std::vector<int>{420});
    EXPECT_EQ(grid.currentRow(), 420);
    EXPECT_EQ(grid.value(420, "a_index").toString(), code(421));

    // A page that cannot be read ends the listing with a message, never a crash.
    grid.setQuery(session->store(), articles());
    QString failure;
    QObject::connect(&grid, &DataGrid::loadFailed, [&](const QString& m) { failure = m; });
    session->store().exec("drop table strarticle");
    model->fetchMore({});
    EXPECT_FALSE(failure.isEmpty());
    EXPECT_FALSE(model->canFetchMore({}));
    EXPECT_EQ(grid.rowCount(), 200);
}

TEST(DataGrid, ColumnHeadSortsTheListingAgainKeepingItsFilter) {
    test::application();
    test::TestInstall install(test::TestInstall::Kind::Empty);
    auto session = install.start();
    addArticles(session->store());

    DataGrid grid("DBGrid1");
    grid.resize(500, 300);
    grid.show();
    grid.storeModel()->setPageSize(100);
    grid.setColumns({{"Code", "a_index"}, {"Libellé", "a_libelle"}});
    grid.setQuery(session->store(), articles({"a_nature = ?", {"LIC"}}));
    QApplication::processEvents();
    QStringList heads;
    QObject::connect(&grid, &DataGrid::headerClicked, [&](const QString& f) { heads << f; });
    auto* model = grid.storeModel();

    // First click: ascending labels.
    clickHead(grid, 1);
    EXPECT_EQ(heads, QStringList{"a_libelle"});
    EXPECT_EQ(model->sortColumn(), 1);
    EXPECT_EQ(grid.rowCount(), 100);
    EXPECT_EQ(grid.value(0, "a_libelle").toString(), "Article 002");
    EXPECT_EQ(grid.value(1, "a_index").toString(), code(317));

    // Second click on the same head: descending codes, from the first page,
    // still licences only, and the pages that follow in the same order.
    clickHead(grid, 0);
    clickHead(grid, 0);
    EXPECT_EQ(model->sortOrder(), Qt::DescendingOrder);
    EXPECT_EQ(grid.horizontalHeader()->sortIndicatorSection(), 0);
    EXPECT_EQ(grid.rowCount(), 100);
    EXPECT_EQ(grid.value(0, "a_index").toString(), code(449));
    EXPECT_EQ(grid.value(99, "a_index").toString(), code(251));
    model->fetchAll();
    EXPECT_EQ(grid.rowCount(), 225);
    EXPECT_EQ(grid.value(100, "a_index").toString(), code(249));
    EXPECT_EQ(grid.value(224, "a_index").toString(), code(1));
    for (const auto& r : grid.rows()) EXPECT_EQ(r.value("a_nature").toString(), "LIC");

    // Back to ascending codes; a reload keeps the order chosen.
    clickHead(grid, 0);
    EXPECT_EQ(model->sortOrder(), Qt::AscendingOrder);
    EXPECT_EQ(grid.value(0, "a_index").toString(), code(1));
    clickHead(grid, 0);
    grid.reload();
    EXPECT_EQ(grid.value(0, "a_index").toString(), code(449));

    // New columns forget the sort: the listing's own order again.
    grid.setColumns(kArticleColumns);
    EXPECT_EQ(model->sortColumn(), -1);
    EXPECT_EQ(grid.value(0, "a_index").toString(), code(1));

    // Fixed rows are sorted in place: amounts as numbers, empty ones first.
    grid.setColumns({{"Saison", "t_saison"}, {"Tarif", "t_tarif", GridColumn::Kind::Currency}});
    grid.setRows({tariffRow("2026", 900), tariffRow("2027", -50), tariffRow("2028", QVariant()),
                  tariffRow("2029", 123456)});
    grid.sortByColumn(1, Qt::AscendingOrder);
    QStringList seasons;
    for (const auto& r : grid.rows()) seasons << r.value("t_saison").toString();
    EXPECT_EQ(seasons, (QStringList{"2028", "2027", "2026", "2029"}));
    grid.sortByColumn(-1, Qt::AscendingOrder);
    EXPECT_EQ(grid.value(0, "t_saison").toString(), "2026");
}

TEST(DataGrid, ShowsAmountsAndReportsChoicesAndEdits) {
    test::application();
    DataGrid grid("DBGrid2");
    grid.resize(400, 300);
    grid.show();
    grid.setColumns({{"Saison", "t_saison"}, {"Tarif", "t_tarif", GridColumn::Kind::Currency}});
    grid.setRows({tariffRow("2026", 123456), tariffRow("2027", -50), tariffRow("2028", 0)});
    QApplication::processEvents();
    auto* model = grid.storeModel();
    EXPECT_EQ(model->index(0, 1).data().toString(), "1 234,56 €");
    EXPECT_EQ(model->index(1, 1).data().toString(), "-0,50 €");
    EXPECT_EQ(model->index(0, 1).data(Qt::EditRole).toString(), "1234,56");
    EXPECT_EQ(model->index(0, 1).data(StoreTableModel::ValueRole).toLongLong(), 123456);
    EXPECT_EQ(model->index(0, 1).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
              Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(grid.value(1, "t_tarif").toLongLong(), -50);
    EXPECT_EQ(model->headerData(1, Qt::Horizontal).toString(), "Tarif");
    EXPECT_EQ(grid.columnOf("Tarif"), 1);
    EXPECT_EQ(grid.columnOf("T_SAISON"), 0);
    EXPECT_EQ(grid.columnOf("Prix"), -1);
    // Nothing is typed into a grid unless its screen allows it.
    EXPECT_FALSE(model->flags(model->index(0, 1)) & Qt::ItemIsEditable);
    grid.setEditable(true);
    EXPECT_TRUE(model->flags(model->index(0, 1)) & Qt::ItemIsEditable);

    std::vector<int> chosen;
    QObject::connect(&grid, &DataGrid::rowChosen, [&](int r) { chosen.push_back(r); });
    grid.choose(1);
    grid.choose(1);  // choosing the same row again shows it again
    grid.choose(5);  // out of range: nothing
    EXPECT_EQ(chosen, (std::vector<int>{1, 1}));
    // A click on another row is one choice; on the same row, one more.
    clickRow(grid, 2);
    EXPECT_EQ(chosen, (std::vector<int>{1, 1, 2}));
    clickRow(grid, 2);
    EXPECT_EQ(chosen, (std::vector<int>{1, 1, 2, 2}));

    std::vector<std::tuple<int, QString, QString>> edits;
    QObject::connect(&grid, &DataGrid::cellEdited, [&](int r, const QString& f, const QString& t) {
        edits.emplace_back(r, f, t);
    });
    grid.editCell(1, 1, "12,5");
    grid.editCell(0, 0, "2030");
    grid.editCell(9, 0, "2031");  // no such row: nothing
    ASSERT_EQ(edits.size(), 2u);
    EXPECT_EQ(edits[0], std::make_tuple(1, QString("t_tarif"), QString("12,5")));
    EXPECT_EQ(edits[1], std::make_tuple(0, QString("t_saison"), QString("2030")));
    EXPECT_EQ(model->index(1, 1).data().toString(), "12,50 €");
    EXPECT_EQ(grid.value(1, "t_tarif").toLongLong(), 1250);
    EXPECT_EQ(model->index(0, 0).data().toString(), "2030");

    // Refilling or sorting is never a choice and forgets the current row; nor
    // does the grid choose a row on its own when it gets the focus.
    grid.setRows({tariffRow("2028", 0), tariffRow("2029", 0)});
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&grid, &focus);
    EXPECT_EQ(grid.currentRow(), -1);
    grid.choose(1);
    grid.sortByColumn(0, Qt::DescendingOrder);
    QApplication::sendEvent(&grid, &focus);
    EXPECT_EQ(grid.currentRow(), -1);
    EXPECT_EQ(chosen, (std::vector<int>{1, 1, 2, 2, 1}));
}

TEST(DataGrid, CardShowsTheChosenRowFromTheSameModel) {
    test::application();
    test::TestInstall install(test::TestInstall::Kind::Empty);
    auto session = install.start();
    addArticles(session->store());

    DataGrid grid("DBGrid1");
    grid.setColumns(kArticleColumns);
    QLineEdit label;
    QLineEdit code;
    QDataWidgetMapper mapper;
    mapper.setModel(grid.storeModel());
    // a_libelle is no column of the grid: the model gives it a section of its own.
    const int labelSection = grid.storeModel()->section("a_libelle");
    EXPECT_EQ(labelSection, 2);
    EXPECT_EQ(grid.storeModel()->section("A_LIBELLE"), labelSection);
    EXPECT_EQ(grid.storeModel()->section("a_index"), 0);
    mapper.addMapping(&label, labelSection);
    mapper.addMapping(&code, 0);
    QObject::connect(&grid, &DataGrid::rowChosen, &mapper, &QDataWidgetMapper::setCurrentIndex);
    grid.setQuery(session->store(), articles({"a_nature = ?", {"DIV"}}));
    EXPECT_TRUE(grid.isColumnHidden(labelSection));
    EXPECT_FALSE(grid.isColumnHidden(1));
    EXPECT_EQ(grid.columnOf("a_libelle"), -1);

    grid.choose(2);
    EXPECT_EQ(code.text(), ::code(6));
    EXPECT_EQ(label.text(), "Article 222");
    // After a sort the card's section is still the model's, still hidden.
    grid.sortByColumn(0, Qt::DescendingOrder);
    EXPECT_TRUE(grid.isColumnHidden(labelSection));
    grid.choose(0);
    EXPECT_EQ(code.text(), ::code(450));
    EXPECT_EQ(label.text(), "Article 414");

    // A third grid column takes the place the card's field had; the field moves on.
    grid.setColumns({{"Code", "a_index"}, {"Compte", "a_cpta"}, {"Nature", "a_nature"}});
    EXPECT_EQ(grid.storeModel()->section("a_libelle"), 3);
    EXPECT_FALSE(grid.isColumnHidden(2));
    EXPECT_TRUE(grid.isColumnHidden(3));
    // New columns forget the sort: the first row is the first article again.
    EXPECT_EQ(grid.storeModel()->index(0, 3).data().toString(), "Article 074");
}

TEST(DataGrid, ColumnsFitTheirContentAndTheGridLastOneStretchesAfterEveryFill) {
    test::application();
    test::TestInstall inst(test::TestInstall::Kind::Empty);
    auto session = inst.start();
    store::Store& s = session->store();
    addArticles(s);
    // One label far longer than the grid is wide.
    s.exec("UPDATE strarticle SET a_libelle = ? WHERE a_index = ?",
           {QString("Libellé très long ").repeated(20), code(3)});
    DataGrid grid("DBGrid1");
    grid.resize(700, 300);
    grid.horizontalHeader()->setStretchLastSection(true);
    grid.setColumns({{"Code", "a_index"}, {"Libellé", "a_libelle"}, {"Compte", "a_cpta"}});
    grid.setQuery(s, articles());
    grid.show();
    QCoreApplication::processEvents();
    QHeaderView* head = grid.horizontalHeader();
    const auto rightEdge = [&] { return head->sectionViewportPosition(2) + head->sectionSize(2); };
    // The long label gives way so that every column stays in sight; the code
    // keeps its whole width.
    EXPECT_EQ(rightEdge(), grid.viewport()->width());
    const QAbstractItemView& view = grid;
    EXPECT_GE(head->sectionSize(0), view.sizeHintForColumn(0));
    EXPECT_LT(head->sectionSize(1), view.sizeHintForColumn(1));
    EXPECT_GE(head->sectionSize(1), 80);

    // Read again after a rule wrote (a card saved): still the whole width.
    s.exec("UPDATE strarticle SET a_libelle = 'Court' WHERE a_index = ?", {code(3)});
    grid.reload();
    QCoreApplication::processEvents();
    EXPECT_EQ(rightEdge(), grid.viewport()->width());
    grid.setRows({});
    grid.setQuery(s, articles(store::Condition("a_nature = ?", {"LIC"})));
    QCoreApplication::processEvents();
    EXPECT_EQ(rightEdge(), grid.viewport()->width());

    // No row stays chosen for a new record, and nobody is told a row was chosen.
    int chosen = 0;
    QObject::connect(&grid, &DataGrid::rowChosen, [&](int) { ++chosen; });
    grid.choose(2);
    EXPECT_EQ(chosen, 1);
    grid.clearChoice();
    EXPECT_EQ(grid.currentRow(), -1);
    EXPECT_TRUE(grid.selectionModel()->selectedRows().isEmpty());
    EXPECT_EQ(chosen, 1);
}
