#include "shell/appkit/PopoverWindow.h"

#include "shell/appkit/CleanupWindow.h"
#include "shell/appkit/StatusItem.h"
#include "tests/apple/AppKitFixture.h"

#include <gmock/gmock.h>

#include <memory>

namespace vantry::apple {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Records what the controls report.
class Recorder : public StoragePopoverDelegate {
public:
    std::vector<std::string> reports;

    void storagePopoverRequestedRefresh() override { reports.emplace_back("refresh"); }
    void storagePopoverRequestedSettings() override { reports.emplace_back("settings"); }
    void storagePopoverRequestedCleanup() override { reports.emplace_back("cleanup"); }
    void storagePopoverRequestedQuit() override { reports.emplace_back("quit"); }
    void storagePopoverRequestedLoginItemChange(bool enabled) override {
        reports.emplace_back(enabled ? "login on" : "login off");
    }
    void storagePopoverRequestedPercentageChange(bool enabled) override {
        reports.emplace_back(enabled ? "percentage on" : "percentage off");
    }
    void storagePopoverRequestedBarStyleChange(BarStyle style) override {
        reports.push_back("style " + std::string(rawValue(style)));
    }
    void storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) override {
        reports.push_back("sizing " + std::string(rawValue(sizing)));
    }
};

class AppKitPopover : public AppKitFixture {
protected:
    void SetUp() override {
        AppKitFixture::SetUp();
        recorder = std::make_shared<Recorder>();
        controller = std::make_shared<StoragePopoverViewController>(HostSystem::macOS);
        controller->delegate = recorder;
        controller->update(StorageSnapshot{.volumeName = "Macintosh HD",
                                           .totalBytes = 494'384'795'648,
                                           .availableBytes = 160'000'000'000,
                                           .updatedAt = SystemTime(std::chrono::seconds(1'700'000'000))});
        controller->updateBarStyleStatus(BarStyle::macOSSegments);
        controller->updateSegmentSizingStatus(SegmentSizing::verifiedSnapshot);
        controller->updateLoginItemStatus(false);
    }

    [[nodiscard]] PopoverContent controllersContent() const {
        PopoverContent content = controller->content();
        content.updateLabel.text = "Updated 14:03"; // whatever the time zone
        return content;
    }

    /// Shows `content` at the status item while `block` runs.
    void withOpenPopover(const std::function<void(PopoverWindow&, StatusItem&)>& block,
                         const std::optional<PopoverContent>& content = {}) {
        @autoreleasepool {
            StatusItem item([](std::optional<MouseEvent>) {});
            PopoverWindow popover;
            popover.setController(controller);
            popover.render(content.value_or(controllersContent()));
            popover.openAt(item.button());
            settle();
            ASSERT_TRUE(popover.isVisible());
            block(popover, item);
            settle();
            popover.close();
            EXPECT_FALSE(popover.isVisible());
        }
    }
    void withPopover(const PopoverContent& content, const std::function<void(NSView* root)>& block) {
        withOpenPopover([&](PopoverWindow&, StatusItem&) { block(keyWindow().contentView); }, content);
    }

    std::shared_ptr<Recorder> recorder;
    std::shared_ptr<StoragePopoverViewController> controller;
};

NSView* barIn(NSView* root) {
    for (NSView* view : viewsBelow(root))
        if (NSHeight(view.frame) == 16 && view.accessibilityElement)
            return view;
    return nil;
}

std::string words(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "word ";
    return text;
}

} // namespace

TEST_F(AppKitPopover, HasTheStoredFrames) {
    withPopover(controllersContent(), [&](NSView* root) {
        EXPECT_EQ(NSWidth(root.bounds), 380);
        EXPECT_EQ(NSHeight(root.bounds), 452);
        expectFrames("popover", root);
    });
}

TEST_F(AppKitPopover, HoldsThreeLinesOfTheDetailAndTwoOfAnErrorAndShowsAllOfThemInTheToolTip) {
    PopoverContent content = controllersContent();
    content.detailLabel.text = words(80);
    content.titleLabel.text = content.summaryLabel.text = words(40);
    content.errorLabel = {"Could not change Login Items: " + words(60), SystemColor::red, false};
    withPopover(content, [&](NSView* root) {
        expectFrames("popover-overlong", root);
        EXPECT_EQ(textOf(viewTitled(root, content.errorLabel.text).toolTip), content.errorLabel.text);
        EXPECT_EQ(textOf(viewTitled(root, content.detailLabel.text).toolTip), content.detailLabel.text);
        EXPECT_TRUE(static_cast<NSTextField*>(viewTitled(root, content.titleLabel.text)).allowsExpansionToolTips);
    });
}

TEST_F(AppKitPopover, EveryControlReportsToItsController) {
    withPopover(controller->content(), [&](NSView* root) {
        for (const char* title : {"Refresh", "Storage Settings…", "Free Up Space…", "Quit", "Launch at Login",
                                  "Show % Used in Menu Bar", "Show % Used in Menu Bar"})
            click(viewTitled(root, title));
        choose(first<NSPopUpButton>(root, 0), 3);
        choose(first<NSPopUpButton>(root, 1), 0);
        EXPECT_THAT(recorder->reports,
                    ElementsAre("refresh", "settings", "cleanup", "quit", "login on", "percentage on", "percentage off",
                                "style currentTheme", "sizing equal"));
    });
}

TEST_F(AppKitPopover, TheSegmentPopUpFollowsTheStyle) {
    controller->updateBarStyleStatus(BarStyle::vividTheme);
    withPopover(controller->content(), [&](NSView* root) {
        NSPopUpButton* const sizing = first<NSPopUpButton>(root, 1);
        EXPECT_FALSE(sizing.enabled);
        choose(sizing, 0);
        EXPECT_TRUE(recorder->reports.empty());
        EXPECT_EQ(first<NSPopUpButton>(root, 0).indexOfSelectedItem, 2);
    });
}

TEST_F(AppKitPopover, ControlsThatAreLeftOverDoNothing) {
    withPopover(controller->content(), [&](NSView* root) {
        controller.reset();
        for (const char* title : {"Refresh", "Launch at Login"})
            click(viewTitled(root, title));
        choose(first<NSPopUpButton>(root, 0), 3);
    });
    EXPECT_TRUE(recorder->reports.empty());
}

TEST_F(AppKitPopover, APressOutsideOfItClosesIt) {
    const NSPoint elsewhere{500, 500};
    for (const NSEventType button : {NSEventTypeLeftMouseUp, NSEventTypeRightMouseUp, NSEventTypeOtherMouseUp})
        withOpenPopover([&](PopoverWindow& popover, StatusItem&) {
            clickElsewhere(elsewhere, button); // in another application, or on another item of the menu bar
            EXPECT_FALSE(popover.isVisible());
            settle();
            EXPECT_FALSE(popover.isVisible());
        });
    withOpenPopover([&](PopoverWindow& popover, StatusItem&) {
        CleanupWindow window({});
        window.showCleanupWindow();
        settle();
        click(first<NSSegmentedControl>(windowTitled("Ombrel · Free Up Space").contentView));
        EXPECT_FALSE(popover.isVisible());
    });
    withOpenPopover([&](PopoverWindow& popover, StatusItem&) {
        click(viewTitled(keyWindow().contentView, "Refresh"));
        EXPECT_TRUE(popover.isVisible()) << "that was inside";
    });
}

TEST_F(AppKitPopover, TellsAPressThatFoundItShownByTheRelease) {
    std::vector<bool> wasShown;
    PopoverWindow* shown = nullptr;
    @autoreleasepool {
        PopoverWindow popover;
        shown = &popover;
        StatusItem item([&](std::optional<MouseEvent>) {
            wasShown.push_back(shown->wasShownAtPress([NSApplication sharedApplication].currentEvent));
        });
        popover.setController(controller);
        popover.openAt(item.button());
        settle();
        click(item.button(), NSEventTypeRightMouseUp);
        settle();
        EXPECT_FALSE(popover.isVisible());
        popover.openAt(item.button());
        click(item.button());
        settle();
        click(item.button());
        EXPECT_THAT(wasShown, ElementsAre(false, true, false)) << "a right click, and left ones with and without it";
    }
}

TEST_F(AppKitPopover, OpenedAgainWhileItClosesItStillFollowsTheMouse) {
    withOpenPopover([&](PopoverWindow& popover, StatusItem& item) {
        popover.close();
        popover.openAt(item.button()); // the system has not reported the closing yet
        settle();
        EXPECT_TRUE(popover.isVisible());
        clickElsewhere(NSMakePoint(500, 500));
        EXPECT_FALSE(popover.isVisible());
    });
}

TEST_F(AppKitPopover, WithoutAnItemInTheMenuBarItOpensBelowThePointer) {
    @autoreleasepool {
        clickElsewhere(NSMakePoint(700, 300));
        const std::size_t before = windowsOnScreen().size();
        {
            NSView* const nowhere = [[NSView alloc] initWithFrame:NSZeroRect];
            PopoverWindow popover;
            popover.setController(controller);
            popover.openAt(nowhere);
            settle();
            EXPECT_TRUE(popover.isVisible());
            ASSERT_EQ(windowsOnScreen().size(), before + 2);
            NSWindow* const place = windowsOnScreen()[before];
            EXPECT_EQ(place.level, NSStatusWindowLevel);
            EXPECT_EQ(NSMinX(place.frame), 700);
            EXPECT_EQ(NSMaxY(place.frame), 876) << "below the menu bar";
            popover.close();
            settle();
            EXPECT_EQ(windowsOnScreen().size(), before);
            popover.openAt(nowhere);
            popover.close();
            popover.openAt(nowhere);
            EXPECT_EQ(windowsOnScreen().size(), before + 2) << "not one place for each opening";
        }
        EXPECT_EQ(windowsOnScreen().size(), before);
    }
}

TEST_F(AppKitPopover, EscapeAndCommandWCloseItAndReturnPressesTheFocusedButton) {
    for (const auto& [key, modifiers] :
         {std::pair(escapeKey, 0UL), {letterW, static_cast<unsigned long>(NSEventModifierFlagCommand)}})
        withOpenPopover([&](PopoverWindow& popover, StatusItem&) {
            press(letterW);
            EXPECT_TRUE(popover.isVisible());
            press(key, false, modifiers);
            EXPECT_FALSE(popover.isVisible());
        });
    withOpenPopover([&](PopoverWindow&, StatusItem&) {
        press(returnKey);
        EXPECT_THAT(recorder->reports, IsEmpty());
        [keyWindow() makeFirstResponder:viewTitled(keyWindow().contentView, "Refresh")];
        press(returnKey);
        EXPECT_THAT(recorder->reports, ElementsAre("refresh"));
    });
}

TEST_F(AppKitPopover, EverythingHasANameForScreenReaders) {
    withPopover(controller->content(), [&](NSView* root) {
        expectNamesForScreenReaders(root);
        NSPopUpButton* const styles = first<NSPopUpButton>(root, 0);
        EXPECT_EQ(styles.accessibilityTitleUIElement, viewTitled(root, "Bar Style"));
        NSView* const bar = barIn(root);
        EXPECT_TRUE(bar.accessibilityElement);
        EXPECT_EQ(textOf(bar.accessibilityRole), "AXProgressIndicator");
        EXPECT_EQ(textOf(bar.accessibilityLabel), "Storage used");
        EXPECT_EQ(textOf(bar.accessibilityValue), "68 percent");
        EXPECT_THAT(Desktop::get().changedValues, ElementsAre("68 percent"));
    });
}

TEST_F(AppKitPopover, IsRedrawnWhenTheAppearanceChanges) {
    withPopover(controller->content(), [&](NSView* root) {
        NSView* const bar = barIn(root);
        const auto colorBehindTheBar = [&] {
            CGContextRef picture = drawWindow(keyWindow());
            const Rgba color = colorAt(picture, NSMaxX(bar.frame) + 10, 452 - NSMidY(bar.frame) - 16);
            CGContextRelease(picture);
            return color;
        };
        const Rgba light = colorBehindTheBar();
        EXPECT_FALSE(bar.needsDisplay);
        setAppearance(keyWindow(), Appearance::dark);
        EXPECT_TRUE(bar.needsDisplay);
        EXPECT_LT(colorBehindTheBar().red, light.red - 0.3);
    });
}

} // namespace vantry::apple
