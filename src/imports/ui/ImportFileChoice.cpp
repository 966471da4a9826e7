#include "imports/ui/ImportFileChoice.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace orve::imports {

ImportFileChoice::ImportFileChoice(app::Dialogs& dialogs, QString startFolder, QString filter,
                                   QWidget* parent)
    : QGroupBox(QStringLiteral("Sélection du chemin d'acces à vos données"), parent),
      m_dialogs(dialogs),
      m_folder(std::move(startFolder)),
      m_filter(std::move(filter)) {
    setObjectName(QStringLiteral("Frame1"));
    m_layout = new QVBoxLayout(this);
    auto* layout = new QHBoxLayout;
    m_layout->addLayout(layout);
    m_path = new QLineEdit(this);
    m_path->setObjectName(QStringLiteral("File1"));
    m_path->setReadOnly(true);
    m_path->setFocusPolicy(Qt::ClickFocus);
    m_path->setPlaceholderText(QStringLiteral("Aucun fichier choisi"));
    m_browse = new QPushButton(QStringLiteral("Parcourir…"), this);
    m_browse->setObjectName(QStringLiteral("cmdparcourir"));
    layout->addWidget(m_path, 1);
    layout->addWidget(m_browse);
    connect(m_browse, &QPushButton::clicked, this, &ImportFileChoice::browse);
}

void ImportFileChoice::addRow(QLayout* row) { m_layout->addLayout(row); }

void ImportFileChoice::browse() {
    const QString path =
        m_dialogs.chooseOpenFile(QStringLiteral("Choix du fichier à intégrer"), m_folder, m_filter);
    if (path.isEmpty()) return;  // cancelled: the previous choice stands
    m_path->setText(path);
    // The next choice starts where this one was found.
    m_folder = QFileInfo(path).absolutePath();
    emit chosen(path);
}

}  // namespace orve::imports
