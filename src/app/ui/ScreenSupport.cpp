#include "app/ui/ScreenSupport.h"

#include <QGuiApplication>
#include <QScreen>

namespace orve::app {

void centreOnScreen(QWidget* window) {
    QScreen* screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect area = screen->availableGeometry();
    const QSize size = window->frameGeometry().size();
    window->move(area.left() + (area.width() - size.width()) / 2,
                 area.top() + (area.height() - size.height()) / 2);
}

void makeScreenWindow(QWidget* screen, const QString& name, const QString& title) {
    screen->setObjectName(name);
    screen->setWindowTitle(title);
    screen->setWindowFlag(Qt::Window, true);
    screen->setAttribute(Qt::WA_DeleteOnClose, true);
}

void fillItems(QComboBox* combo, const ListItems& items) {
    combo->clear();
    combo->addItem(kChoose);
    for (const auto& item : items) combo->addItem(item.text());
}

void showItem(QComboBox* combo, const QString& code) {
    for (int i = 1; i < combo->count(); ++i) {
        if (itemCode(combo->itemText(i)).compare(code.trimmed(), Qt::CaseInsensitive) == 0) {
            combo->setCurrentIndex(i);
            return;
        }
    }
    combo->setCurrentIndex(0);
}

}  // namespace orve::app
