#include "app/ui/QtDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace orve::app {

namespace {
QWidget* owner() { return QApplication::activeWindow(); }
const QString kTitle = QStringLiteral("ORVE");
}  // namespace

void QtDialogs::inform(const QString& text) {
    QMessageBox box(QMessageBox::Information, kTitle, text, QMessageBox::NoButton, owner());
    box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box.exec();
}

bool QtDialogs::ask(const QString& text) {
    QMessageBox box(QMessageBox::Question, kTitle, text, QMessageBox::NoButton, owner());
    QPushButton* yes = box.addButton(QStringLiteral("Oui"), QMessageBox::YesRole);
    QPushButton* no = box.addButton(QStringLiteral("Non"), QMessageBox::NoRole);
    box.setDefaultButton(no);
    box.exec();
    return box.clickedButton() == yes;
}

QString QtDialogs::chooseFolder(const QString& title, const QString& start) {
    return QFileDialog::getExistingDirectory(owner(), title, start);
}

QString QtDialogs::chooseOpenFile(const QString& title, const QString& start,
                                  const QString& filter) {
    return QFileDialog::getOpenFileName(owner(), title, start, filter);
}

QString QtDialogs::chooseSaveFile(const QString& title, const QString& start,
                                  const QString& filter) {
    return QFileDialog::getSaveFileName(owner(), title, start, filter);
}

QString QtDialogs::askPassword(const QString& question) {
    bool ok = false;
    const QString typed =
        QInputDialog::getText(owner(), kTitle, question, QLineEdit::Password, QString(), &ok);
    return ok ? typed : QString();
}

}  // namespace orve::app
