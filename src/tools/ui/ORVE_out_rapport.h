#pragma once

#include <QStringList>
#include <QWidget>

class QPlainTextEdit;

namespace orve::tools {

// A checking tool's findings, however many: one scrollable text the operator
// can read through and copy, rather than one message box per finding.
class ORVE_out_rapport : public QWidget {
    Q_OBJECT
  public:
    ORVE_out_rapport(const QString& title, const QString& summary, const QStringList& lines,
                     QWidget* parent = nullptr);

    // The summary and the findings, as copied.
    QString reportText() const;
    void copy();

  private:
    QString m_summary;
    QPlainTextEdit* m_text;
};

}  // namespace orve::tools
