#pragma once

#include "shell/qt/CleanupWindow.h"
#include "shell/qt/QtAppearance.h"
#include "tests/shell/qt/CannedCleanupContent.h"
#include "tests/shell/qt/CleanupWindowReports.h"
#include "tests/shell/qt/EventLoop.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QPushButton>

namespace vantry {

/// The window without a controller.
class CleanupWindowFixture : public testing::Test, protected CleanupWindowReports {
protected:
    void TearDown() override { // answers a pending sheet while `reports` still exists
        window.close();
        settle();
    }

    void show(const CleanupWindowContent& content) {
        window.renderCleanupWindow(content);
        window.showCleanupWindow();
        settle();
    }
    void buildAll() {
        ASSERT_TRUE(runUntil([&] { return window.results().builtRowCount() == window.results().rowCount(); }));
    }
    QPushButton* button(const QString& title) {
        for (auto* each : window.findChildren<QPushButton*>())
            if (each->text() == title)
                return each;
        return nullptr;
    }
    QWidget* control(int row, std::size_t column) { return window.results().row(row)->controls().at(column); }
    static void press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers);
        QCoreApplication::sendEvent(widget, &up);
    }

    QtAppearance appearance;
    CleanupWindow window{actions()};
};

} // namespace vantry
