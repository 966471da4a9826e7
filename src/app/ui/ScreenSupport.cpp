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

}  // namespace orve::app
