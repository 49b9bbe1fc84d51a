#include "shell/qt/StripWindow.h"

#include "tests/shell/qt/EventLoop.h"

#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace vantry {

TEST(StripWindow, FollowsAScreenThatIsAddedLater) {
    StripWindow strip([] { return false; }, [](MouseEvent) {});
    strip.setContent({.length = 60});
    strip.show();
    QScreen* const screen = QGuiApplication::primaryScreen();
    QObject::disconnect(screen, &QScreen::availableGeometryChanged, nullptr, nullptr); // the strip never saw it
    emit qGuiApp->screenAdded(screen);
    strip.move(100, 100);
    emit screen->availableGeometryChanged(screen->availableGeometry());
    const QPoint corner = screen->availableGeometry().topRight() - QPoint(59, 0);
    EXPECT_TRUE(runUntil([&] { return strip.pos() == corner; }));
}

} // namespace vantry
