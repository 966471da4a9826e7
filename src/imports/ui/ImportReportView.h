#pragma once

#include <QAbstractTableModel>
#include <QGroupBox>
#include <QLabel>
#include <QProgressDialog>
#include <QTableView>

#include "imports/ImportReport.h"

namespace orve::app {
class Dialogs;
}

namespace orve::imports {

// The lines an import skipped or imported with a remark, as a table the
// operator can read through (a damaged file may name thousands of lines).
class ImportReportModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;
    void setReport(const ImportReport& report);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<ReportLine> m_lines;
};

// "Compte rendu de l'intégration": the counts (lbl_compte_rendu) and the
// table of reported lines (grd_rapport).
class ImportReportView : public QGroupBox {
    Q_OBJECT
  public:
    explicit ImportReportView(QWidget* parent = nullptr);
    void showReport(const ImportReport& report, const QString& summary);
    // The end of an import: its closing words with the counts, here and in
    // a message.
    void conclude(const ImportReport& report, app::Dialogs& dialogs);
    void clear();

  private:
    QLabel* m_summary;
    QTableView* m_table;
    ImportReportModel* m_model;
};

inline const QString kCheckingPhase = QStringLiteral("Vérification des lignes");
inline const QString kWritingPhase = QStringLiteral("Enregistrement");

// The progress of an import, "N sur M", with "Annuler": cancelling stops
// the import and nothing of it is kept.
class ImportProgressDialog {
  public:
    ImportProgressDialog(QWidget* parent, const QString& title);
    ~ImportProgressDialog();
    ImportProgressDialog(const ImportProgressDialog&) = delete;
    ImportProgressDialog& operator=(const ImportProgressDialog&) = delete;
    // What is counted next ("Vérification des lignes", "Enregistrement"):
    // the dialog starts again from 0, hidden until that takes a while.
    void setPhase(const QString& phase);
    ImportProgress callback();

  private:
    QProgressDialog* m_dialog;
    QString m_phase;
};

}  // namespace orve::imports
