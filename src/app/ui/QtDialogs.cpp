#include "app/ui/QtDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QPushButton>

namespace orve::app {

namespace {
QWidget* owner() { return QApplication::activeWindow(); }
const QString kTitle = QStringLiteral("ORVE");

QMessageBox::Icon iconOf(Dialogs::Kind kind) {
    switch (kind) {
        case Dialogs::Kind::Warning:
            return QMessageBox::Warning;
        case Dialogs::Kind::Error:
            return QMessageBox::Critical;
        case Dialogs::Kind::Question:
            return QMessageBox::Question;
        case Dialogs::Kind::Information:
            break;
    }
    return QMessageBox::Information;
}

void show(Dialogs::Kind kind, const QString& text) {
    QMessageBox box(owner());
    QtDialogs::prepare(box, kind, text);
    box.exec();
}
}  // namespace

void QtDialogs::prepare(QMessageBox& box, Kind kind, const QString& text) {
    box.setIcon(iconOf(kind));
    box.setWindowTitle(kTitle);
    box.setText(text);
    if (kind == Kind::Question) {
        // "Non" is the answer Enter gives: a question never does harm by default.
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.button(QMessageBox::Yes)->setText(QStringLiteral("Oui"));
        box.button(QMessageBox::No)->setText(QStringLiteral("Non"));
        box.setDefaultButton(QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
    } else {
        box.setStandardButtons(QMessageBox::Ok);
    }
}

void QtDialogs::inform(const QString& text) { show(Kind::Information, text); }
void QtDialogs::warn(const QString& text) { show(Kind::Warning, text); }
void QtDialogs::fail(const QString& text) { show(Kind::Error, text); }

bool QtDialogs::ask(const QString& text) {
    QMessageBox box(owner());
    prepare(box, Kind::Question, text);
    return box.exec() == QMessageBox::Yes;
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
