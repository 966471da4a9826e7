#pragma once

#include <QWidget>

#include "app/ListItems.h"
#include "app/ui/DataGrid.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace orve::invoicing {

// "LES LIGNES DE CETTE FACTURE" with the editor of the line in hand
// ("Ligne à modifier", Frame5), the deposit and the document button.
class InvoiceLineEditor : public QWidget {
    Q_OBJECT
  public:
    explicit InvoiceLineEditor(QWidget* parent = nullptr);

    app::DataGrid* lines() const { return m_lines; }
    void setArticles(const app::ListItems& items);
    // The article chosen ("" for none).
    QString article() const;
    QString quantityText() const;
    QString priceText() const;
    QString freeText() const;
    QString depositText() const;
    void setDepositText(const QString& text);
    void setPrice(const QString& text);
    // Puts a stored line into the editor; `presetText` stays in the free text
    // for a line that is still to be defined.
    void showLine(const QString& lineNumber, const QString& article, const QString& text,
                  const QString& quantity, const QString& price, const QString& presetText);
    QString lineNumber() const { return m_lineNumber; }
    void setEditing(bool editing);

  signals:
    void articleChosen(const QString& article);
    void lineValidated();
    void lineCancelled();
    void generateRequested();

  private:
    app::DataGrid* m_lines;
    QComboBox* m_articles;
    QLineEdit* m_quantity;
    QLineEdit* m_price;
    QLineEdit* m_text;
    QLineEdit* m_deposit;
    QPushButton* m_validate;
    QPushButton* m_cancel;
    QPushButton* m_generate;
    QString m_lineNumber;
};

}  // namespace orve::invoicing
