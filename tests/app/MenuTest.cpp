#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>

#include "app/Dialogs.h"
#include "app/ui/ORVE_menu.h"
#include "app/ui/ScreenCatalog.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::app;

TEST(Menu, AWindowIsOpenedOncePerNameAndMode) {
    test::application();
    test::TestInstall inst;
    auto session = inst.start();
    ScriptedDialogs dialogs;
    ScreenCatalog catalog;
    std::vector<QString> made;
    catalog.add("ORVE_essai", [&](Session&, Dialogs&, const QString& mode, QWidget* parent) {
        made.push_back(mode);
        auto* w = new QWidget(parent);
        w->setObjectName("ORVE_essai");
        return w;
    });
    ORVE_menu menu(*session, dialogs, catalog);
    // Each mode gets its own window and keeps the mode it was made with.
    menu.openScreen("ORVE_essai", "LIC");
    menu.openScreen("ORVE_essai", "DIV");
    EXPECT_EQ(made, (std::vector<QString>{"LIC", "DIV"}));
    // Asking again for an open one brings it back rather than making another.
    menu.openScreen("ORVE_essai", "LIC");
    EXPECT_EQ(made.size(), 2u);
    // Once closed, it is made again.
    for (QWidget* w : menu.findChildren<QWidget*>("ORVE_essai"))
        if (made.size() == 2u) {
            w->close();
            break;
        }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    menu.openScreen("ORVE_essai", "LIC");
    menu.openScreen("ORVE_essai", "DIV");
    EXPECT_EQ(made.size(), 3u);
    EXPECT_TRUE(dialogs.shown().empty());
}
