#include "accounting/ui/ReportWidgets.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"
#include "invoicing/InvoiceEntry.h"

namespace orve::accounting {

void compactLists(QWidget* panel) {
    for (QComboBox* combo : panel->findChildren<QComboBox*>()) {
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        combo->setMinimumContentsLength(9);
        combo->view()->setTextElideMode(Qt::ElideNone);
        combo->view()->setMinimumWidth(combo->view()->sizeHintForColumn(0) + 24);
    }
}

std::vector<app::GridColumn> gridColumns(const std::vector<ReportColumn>& columns) {
    std::vector<app::GridColumn> out;
    for (const auto& c : columns) {
        const auto kind = c.kind == ReportColumn::Kind::Amount   ? app::GridColumn::Kind::Currency
                          : c.kind == ReportColumn::Kind::Number ? app::GridColumn::Kind::Number
                                                                 : app::GridColumn::Kind::Text;
        out.push_back({c.caption, c.field, kind});
    }
    return out;
}

app::DataGrid* captionedGrid(const QString& name, const QString& caption,
                             const std::vector<ReportColumn>& columns, QWidget* parent,
                             QGroupBox** frame) {
    auto* box = new QGroupBox(caption, parent);
    box->setObjectName(QStringLiteral("Frame_") + name);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(4, 2, 4, 4);
    auto* grid = new app::DataGrid(name, box);
    grid->setColumns(gridColumns(columns));
    // A long title must not push every other column out of sight.
    grid->horizontalHeader()->setMaximumSectionSize(280);
    layout->addWidget(grid);
    if (frame) *frame = box;
    return grid;
}

void hideFillerColumns(app::DataGrid* grid) {
    static const QStringList fillers{QStringLiteral("-"), QStringLiteral("__/__/____"),
                                     QStringLiteral("00000000"), QString()};
    auto apply = [grid] {
        const int shown = grid->storeModel()->shownColumnCount();
        for (int c = 0; c < shown; ++c) {
            const QString field = grid->fieldOf(c);
            bool filler = grid->rowCount() > 0;
            for (int r = 0; filler && r < grid->rowCount(); ++r)
                filler = fillers.contains(grid->value(r, field).toString().trimmed());
            grid->setColumnHidden(c, filler);
        }
    };
    // After the grid's own handling of a refill, which shows every column.
    QObject::connect(grid->storeModel(), &QAbstractItemModel::modelReset, grid, apply);
}

SelectionSummary::SelectionSummary(QWidget* parent)
    : QGroupBox(QStringLiteral("Récapitulatif de la sélection"), parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    m_total = new QLabel(this);
    m_total->setObjectName(QStringLiteral("lbltotal"));
    m_quantity = new QLabel(this);
    m_quantity->setObjectName(QStringLiteral("lblqte"));
    QFont bold = m_total->font();
    bold.setBold(true);
    m_total->setFont(bold);
    m_quantity->setFont(bold);
    layout->addWidget(m_total);
    layout->addSpacing(40);
    layout->addWidget(m_quantity);
    layout->addStretch(1);
    setTotals(Money(), 0);
}

void SelectionSummary::setTotals(Money amount, qint64 quantity) {
    m_total->setText(invoicing::totalAmountText(amount));
    m_quantity->setText(invoicing::totalQuantityText(quantity));
}

void exportReport(app::Dialogs& dialogs, const QString& suggestedName,
                  const std::function<QByteArray()>& content) {
    const QString file = dialogs.chooseSaveFile(QStringLiteral("Exporter (CSV)"), suggestedName,
                                                QStringLiteral("Fichiers CSV (*.csv)"));
    if (file.isEmpty()) return;
    app::guarded(dialogs, [&] {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        try {
            writeReportFile(file, content());
        } catch (...) {
            QGuiApplication::restoreOverrideCursor();
            throw;
        }
        QGuiApplication::restoreOverrideCursor();
        dialogs.inform(
            QStringLiteral("Le fichier %1 est enregistré.").arg(QDir::toNativeSeparators(file)));
    });
}

}  // namespace orve::accounting
