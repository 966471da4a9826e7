#pragma once

#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/Dialogs.h"

namespace orve::imports {

// The file to integrate: "Parcourir…" (cmdparcourir) asks for it through the
// program's file choice, and the read-only box File1 shows the path chosen.
class ImportFileChoice : public QGroupBox {
    Q_OBJECT
  public:
    ImportFileChoice(app::Dialogs& dialogs, QString startFolder, QString filter,
                     QWidget* parent = nullptr);
    QString path() const { return m_path->text(); }
    // Puts a row of the window's own controls inside the frame, below the path.
    void addRow(QLayout* row);

  signals:
    void chosen(const QString& path);

  private:
    void browse();
    app::Dialogs& m_dialogs;
    QString m_folder;
    QString m_filter;
    QVBoxLayout* m_layout;
    QPushButton* m_browse;
    QLineEdit* m_path;
};

}  // namespace orve::imports
