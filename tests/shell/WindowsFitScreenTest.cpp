#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <set>

#include "app/Dialogs.h"
#include "app/MenuTree.h"
#include "app/ui/ORVE_menu.h"
#include "app/ui/ScreenCatalog.h"
#include "shell/ui/Screens.h"
#include "support/TestInstall.h"

using namespace orve;

namespace {

// Every window of the catalog with each mode a menu entry opens it in; the
// maintenance tools run rather than open, and are left out.
std::vector<std::pair<QString, QString>> windowsToOpen(const app::ScreenCatalog& catalog) {
    std::vector<std::pair<QString, QString>> out;
    std::set<QString> reached;
    for (const app::MenuEntry& e : app::menuTree()) {
        // An entry named as its target is a tool that runs and shows messages, not a window.
        if (e.screen == e.name) reached.insert(e.screen);
        if (e.screen.isEmpty() || e.screen == e.name || !catalog.has(e.screen)) continue;
        if (std::find(out.begin(), out.end(), std::make_pair(e.screen, e.mode)) == out.end())
            out.emplace_back(e.screen, e.mode);
        reached.insert(e.screen);
    }
    for (const QString& name : catalog.names())
        if (!reached.count(name)) out.emplace_back(name, QString());
    return out;
}

QWidget* openWindow(const QString& name) {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == name && w->isVisible()) return w;
    return nullptr;
}

// A button the operator cannot reach: outside its window, or cut by the window's edge.
QString buttonsOutOfReach(QWidget* window) {
    QStringList out;
    for (QAbstractButton* b : window->findChildren<QAbstractButton*>()) {
        if (!b->isVisible() || !qobject_cast<QPushButton*>(b)) continue;
        // Inside a scroll area a button is reached by scrolling.
        bool scrolled = false;
        for (QWidget* p = b->parentWidget(); p && p != window; p = p->parentWidget())
            scrolled |= qobject_cast<QScrollArea*>(p) != nullptr;
        if (scrolled) continue;
        const QRect r(b->mapTo(window, QPoint(0, 0)), b->size());
        if (!window->rect().contains(r))
            out << QStringLiteral("%1 at %2,%3 %4x%5")
                       .arg(b->objectName())
                       .arg(r.x())
                       .arg(r.y())
                       .arg(r.width())
                       .arg(r.height());
    }
    return out.join(", ");
}

QString describe(const QRect& r) {
    return QStringLiteral("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

}  // namespace

TEST(Windows, EveryWindowOpensInsideALaptopScreenWithItsButtonsInView) {
    test::application();
    QScreen* screen = QGuiApplication::primaryScreen();
    ASSERT_TRUE(screen);
    // The check means something only on the small screen.
    ASSERT_EQ(screen->geometry().size(), QSize(test::kScreenWidth, test::kScreenHeight));
    const QRect area = screen->availableGeometry();

    test::TestInstall inst;
    auto session = inst.start();
    app::ScriptedDialogs dialogs;
    app::ScreenCatalog catalog;
    shell::registerScreens(catalog);
    app::ORVE_menu menu(*session, dialogs, catalog);
    menu.show();
    EXPECT_TRUE(area.contains(menu.frameGeometry()))
        << describe(menu.frameGeometry()).toStdString();
    menu.findChild<QLineEdit*>("txt_login")->setText("gestu");
    menu.findChild<QLineEdit*>("txt_pwd")->setText("kvarn-2026");
    menu.findChild<QPushButton*>("Cmdok_login")->click();
    ASSERT_TRUE(session->signedIn());

    const auto windows = windowsToOpen(catalog);
    ASSERT_GE(windows.size(), 7u);
    for (const auto& [name, mode] : windows) {
        SCOPED_TRACE((name + " " + mode).toStdString());
        menu.openScreen(name, mode);
        QCoreApplication::processEvents();
        QWidget* window = openWindow(name);
        ASSERT_TRUE(window);
        const QRect frame = window->frameGeometry();
        EXPECT_TRUE(area.contains(frame)) << "frame " << describe(frame).toStdString()
                                          << " outside " << describe(area).toStdString();
        // Not squeezed below what its controls need.
        EXPECT_GE(window->width(), window->minimumSizeHint().width());
        EXPECT_GE(window->height(), window->minimumSizeHint().height());
        EXPECT_EQ(buttonsOutOfReach(window), QString());
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        dialogs.shown().clear();
        dialogs.clearFailure();
    }
}
