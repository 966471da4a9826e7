#include "tools/ui/ORVE_out_rapport.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"

namespace orve::tools {

ORVE_out_rapport::ORVE_out_rapport(const QString& title, const QString& summary,
                                   const QStringList& lines, QWidget* parent)
    : QWidget(parent), m_summary(summary) {
    app::makeScreenWindow(this, QStringLiteral("ORVE_out_rapport"), title);
    auto* layout = new QVBoxLayout(this);
    auto* heading = new QLabel(summary, this);
    heading->setObjectName(QStringLiteral("lbl_resume"));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txt_rapport"));
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_text->setPlainText(lines.join(QChar('\n')));
    auto* buttons = new QHBoxLayout;
    auto* copyButton = new QPushButton(QStringLiteral("Copier le rapport"), this);
    copyButton->setObjectName(QStringLiteral("cmdcopier"));
    auto* closeButton = new QPushButton(QStringLiteral("Fermer"), this);
    closeButton->setObjectName(QStringLiteral("cmdfermer"));
    buttons->addStretch(1);
    buttons->addWidget(copyButton);
    buttons->addWidget(closeButton);
    layout->addWidget(heading);
    layout->addWidget(m_text, 1);
    layout->addLayout(buttons);
    connect(copyButton, &QPushButton::clicked, this, &ORVE_out_rapport::copy);
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    resize(820, 520);
}

QString ORVE_out_rapport::reportText() const {
    const QString body = m_text->toPlainText();
    return body.isEmpty() ? m_summary + QChar('\n') : m_summary + QChar('\n') + body + QChar('\n');
}

void ORVE_out_rapport::copy() { QGuiApplication::clipboard()->setText(reportText()); }

}  // namespace orve::tools
