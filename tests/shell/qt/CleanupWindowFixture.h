#pragma once

#include "shell/qt/CleanupWindow.h"
#include "shell/qt/QtAppearance.h"
#include "tests/shell/qt/CannedCleanupContent.h"
#include "tests/shell/qt/EventLoop.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QPushButton>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vantry {

/// The window without a controller. Records what its controls report.
class CleanupWindowFixture : public testing::Test {
protected:
    void TearDown() override { // answers a pending sheet while `reports` still exists
        window.close();
        settle();
    }

    CleanupWindowActions actions() {
        return {[this] { reports.emplace_back("scan"); },
                [this](CleanupWindowMode mode) {
                    reports.emplace_back(mode == CleanupWindowMode::filesFound ? "files" : "guide");
                },
                [this] { reports.emplace_back("suggested"); },
                [this] { reports.emplace_back("trash"); },
                [this] { reports.emplace_back("cancel"); },
                [this] {
                    reports.emplace_back("closed");
                    if (onClosed)
                        onClosed();
                },
                {[this](const std::string& identifier, bool isOn) {
                     reports.push_back(identifier + (isOn ? " on" : " off"));
                     if (onSelection)
                         onSelection();
                 },
                 [this](const std::string& identifier) { reports.push_back("reveal " + identifier); },
                 [this](const AvenueButtonAction& action) {
                     const auto* copy = std::get_if<CopyCommand>(&action);
                     reports.push_back(copy ? "copy " + copy->command
                                            : "open " + std::string(rawValue(std::get<CleanupAvenue::Action>(action))));
                 }}};
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
    std::vector<std::string> reports;
    std::function<void()> onSelection;
    std::function<void()> onClosed;
    CleanupWindow window{actions()};
};

} // namespace vantry
