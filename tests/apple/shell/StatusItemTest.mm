#include "shell/appkit/StatusItem.h"

#include "app/ContextMenu.h"
#include "shell/appkit/ContextMenuRenderer.h"
#include "tests/apple/AppKitFixture.h"

#include <gmock/gmock.h>

namespace vantry::apple {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppKitStatusItem : public AppKitFixture {
protected:
    std::vector<std::string> clicks;
    std::function<void(std::optional<MouseEvent>)> pressed = [this](std::optional<MouseEvent> event) {
        clicks.emplace_back(!event ? "none" : *event == MouseEvent::leftMouseUp ? "left" : "right");
    };
};

using AppKitMenu = AppKitFixture;

void collect(NSMenu* menu, const std::string& indentation, std::vector<std::string>& lines) {
    for (NSMenuItem* item in menu.itemArray) {
        lines.push_back(indentation + item.title.UTF8String + (item.state == NSControlStateValueOn ? " ✓" : "") +
                        (item.enabled ? "" : " (disabled)") +
                        (item.keyEquivalent.length > 0 ? std::string(" ⌘") + item.keyEquivalent.UTF8String : ""));
        if (item.submenu)
            collect(item.submenu, indentation + "  ", lines);
    }
}

} // namespace

TEST_F(AppKitStatusItem, TheBarFillsTheButtonWhateverItsLength) {
    @autoreleasepool {
        StatusItem item(pressed);
        StatusItemContent content;
        content.view.barHeight = 7;
        for (const double length : {60.0, 94.0}) {
            content.length = length;
            item.setContent(content);
            settle();
            NSView* const bar = item.button().subviews.firstObject;
            EXPECT_EQ(NSWidth(bar.frame), length);
            EXPECT_EQ(NSHeight(bar.frame), NSHeight(item.button().frame));
        }
    }
    EXPECT_EQ(statusButton(), nil);
}

TEST_F(AppKitStatusItem, BothMouseButtonsReachTheItemThroughTheBar) {
    @autoreleasepool {
        StatusItem item(pressed);
        settle();
        [static_cast<NSControl*>(item.button()) performClick:nil]; // by a screen reader
        click(item.button());
        click(item.button(), NSEventTypeRightMouseUp);
        click(item.button(), NSEventTypeLeftMouseDown);
        EXPECT_THAT(clicks, ElementsAre("none", "left", "right"));
    }
}

TEST_F(AppKitStatusItem, ARightClickThatTheSystemDoesNotSendIsStillReported) {
    @autoreleasepool {
        StatusItem item(pressed);
        settle();
        Desktop::get().statusItemsActOnRightClicks = false;
        click(item.button(), NSEventTypeRightMouseUp);
        Desktop::get().statusItemsActOnRightClicks = true;
        EXPECT_THAT(clicks, IsEmpty()) << "the action might still come";
        settle();
        EXPECT_THAT(clicks, ElementsAre("right"));
        click(item.button(), NSEventTypeRightMouseUp);
        settle();
        EXPECT_THAT(clicks, ElementsAre("right", "right")) << "once for each click";
        clickElsewhere(NSMakePoint(10, 10), NSEventTypeRightMouseUp);
        settle();
        EXPECT_EQ(clicks.size(), 2U);
    }
}

TEST_F(AppKitStatusItem, ClicksOnARemovedItemAreNotReported) {
    @autoreleasepool {
        std::optional<StatusItem> item;
        const auto removed = [&](std::optional<MouseEvent>) {
            clicks.emplace_back("removed");
            item.reset();
        };
        item.emplace(removed);
        settle();
        click(item->button());
        EXPECT_THAT(clicks, ElementsAre("removed"));
        item.emplace(pressed);
        settle();
        Desktop::get().statusItemsActOnRightClicks = false;
        click(item->button(), NSEventTypeRightMouseUp);
        Desktop::get().statusItemsActOnRightClicks = true;
        item.reset();
        settle();
        EXPECT_THAT(clicks, ElementsAre("removed"));
    }
}

TEST_F(AppKitStatusItem, ScreenReadersSeeTheButtonAndNotTheBar) {
    @autoreleasepool {
        StatusItem item(pressed);
        StatusItemContent content;
        content.view.exposesAccessibility = false;
        content.tooltip = "Storage unavailable: no";
        item.setContent(content);
        EXPECT_EQ(item.button().accessibilityLabel, nil);
        content.accessibilityLabel = content.tooltip = "Data: 1 GB used, 2 GB available";
        item.setContent(content);
        content.accessibilityLabel = "";
        item.setContent(content);
        EXPECT_EQ(textOf(item.button().toolTip), "Data: 1 GB used, 2 GB available");
        EXPECT_EQ(textOf(item.button().accessibilityLabel), "Data: 1 GB used, 2 GB available") << "the last good one";
        NSView* const bar = item.button().subviews.firstObject;
        EXPECT_FALSE(bar.accessibilityElement);
        EXPECT_EQ(bar.accessibilityLabel, nil);
    }
}

TEST_F(AppKitMenu, ShowsItsContent) {
    @autoreleasepool {
        NSMenu* menu = makeContextMenu(
            contextMenuContent(
                {.showsUsedPercentage = true, .barStyle = BarStyle::vividTheme, .launchesAtLogin = true}),
            nil);
        std::vector<std::string> lines;
        collect(menu, "", lines);
        EXPECT_THAT(lines, ElementsAre("Refresh", "Open Storage Settings…", "Free Up Space…", "Show % Used ✓",
                                       "Bar Style", "  Rainbow", "  macOS Storage Colors", "  Vivid Theme ✓",
                                       "  Current Theme", "Segment Widths (disabled)", "  Equal Colors",
                                       "  Verified Storage Snapshot ✓", "Launch at Login ✓", "", "Quit Ombrel ⌘q"));
    }
}

TEST_F(AppKitMenu, AChosenItemIsReported) {
    @autoreleasepool {
        std::vector<std::pair<MenuCommand, std::string>> chosen;
        OmbrelMenuTarget* target = makeMenuTarget(
            [&](const MenuItemContent& item) { chosen.emplace_back(item.command, item.representedObject); });
        NSMenu* menu = makeContextMenu(contextMenuContent({.barStyle = BarStyle::macOSSegments}), target);
        std::vector<MenuCommand> commands;
        for (const char* title : {"Refresh", "Open Storage Settings…", "Free Up Space…", "Show % Used", "Current Theme",
                                  "Equal Colors", "Launch at Login", "Quit Ombrel"})
            EXPECT_TRUE(choose(menu, title)) << title;
        using enum MenuCommand;
        EXPECT_THAT(chosen,
                    ElementsAre(std::pair(refresh, ""), std::pair(openStorageSettings, ""), std::pair(freeUpSpace, ""),
                                std::pair(showPercentage, ""), std::pair(barStyle, "currentTheme"),
                                std::pair(segmentSizing, "equal"), std::pair(launchAtLogin, ""), std::pair(quit, "")));
    }
}

} // namespace vantry::apple
