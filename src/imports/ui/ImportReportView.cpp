#include "imports/ui/ImportReportView.h"

#include <QHeaderView>
#include <QProgressDialog>
#include <QVBoxLayout>

#include "app/Dialogs.h"

namespace orve::imports {

namespace {
const QStringList kHeads{QStringLiteral("Ligne"), QStringLiteral("Résultat"),
                         QStringLiteral("Motif"), QStringLiteral("Texte de la ligne")};
}

void ImportReportModel::setReport(const ImportReport& report) {
    beginResetModel();
    m_lines = report.lines();
    endResetModel();
}

int ImportReportModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int ImportReportModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kHeads.size());
}

QVariant ImportReportModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= static_cast<int>(m_lines.size())) return {};
    const ReportLine& l = m_lines[index.row()];
    if (role == Qt::TextAlignmentRole && index.column() == 0)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    switch (index.column()) {
        case 0:
            return QString::number(l.number);
        case 1:
            return l.skipped ? QStringLiteral("ignorée") : QStringLiteral("importée");
        case 2:
            return l.reason;
        default:
            return l.text;
    }
}

QVariant ImportReportModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) return kHeads.value(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

ImportReportView::ImportReportView(QWidget* parent)
    : QGroupBox(QStringLiteral("Compte rendu de l'intégration"), parent) {
    setObjectName(QStringLiteral("Frame_rapport"));
    auto* layout = new QVBoxLayout(this);
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("lbl_compte_rendu"));
    m_summary->setWordWrap(true);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("grd_rapport"));
    m_model = new ImportReportModel(m_table);
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->setVisible(false);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setColumnWidth(0, 60);
    m_table->setColumnWidth(1, 80);
    m_table->setColumnWidth(2, 340);
    m_summary->setVisible(false);
    layout->addWidget(m_summary);
    layout->addWidget(m_table, 1);
}

void ImportReportView::showReport(const ImportReport& report, const QString& summary) {
    // The encoding the file was read in: lines not valid in it are listed below.
    m_summary->setText(report.encoding.isEmpty()
                           ? summary
                           : summary + QStringLiteral("\nFichier lu en %1.").arg(report.encoding));
    m_summary->setVisible(true);
    m_model->setReport(report);
}

void ImportReportView::conclude(const ImportReport& report, app::Dialogs& dialogs) {
    const QString closing = report.closing(kProcessingDone);
    showReport(report, closing);
    dialogs.inform(closing);
}

void ImportReportView::clear() {
    m_summary->clear();
    m_summary->setVisible(false);
    m_model->setReport(ImportReport());
}

ImportProgressDialog::ImportProgressDialog(QWidget* parent, const QString& title)
    : m_dialog(new QProgressDialog(title, QStringLiteral("Annuler"), 0, 0, parent)) {
    m_dialog->setObjectName(QStringLiteral("progression"));
    m_dialog->setWindowTitle(QStringLiteral("ORVE"));
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setMinimumDuration(500);
}

ImportProgressDialog::~ImportProgressDialog() { delete m_dialog; }

void ImportProgressDialog::setPhase(const QString& phase) {
    m_phase = phase;
    m_dialog->reset();
}

ImportProgress ImportProgressDialog::callback() {
    return [this](int done, int total) {
        if (m_dialog->maximum() != total) m_dialog->setMaximum(total);
        m_dialog->setLabelText(QStringLiteral("%1 : %2 sur %3").arg(m_phase).arg(done).arg(total));
        m_dialog->setValue(done);
        return !m_dialog->wasCanceled();
    };
}

}  // namespace orve::imports
