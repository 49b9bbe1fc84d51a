// The exploration of tests/cleanup/window, with the user acting in the macOS window.

#include "tests/cleanup/window/MoveExplorer.h"

#include "app/AppDelegate.h"
#include "shell/appkit/AppKitShell.h"
#include "tests/apple/AppKitFixture.h"
#include "tests/apple/shell/SpokenCleanupContent.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>

namespace vantry::apple {

namespace {

using MoveExplorer::Event;

class AppKitWindow : public MoveExplorer::ExploredWindow {
public:
    CleanupWindowShell& shell() override { return shell_.cleanupWindowShell(); }
    void setDelegate(const std::shared_ptr<AppDelegate>& delegate) override { shell_.setDelegate(delegate); }
    void settle() override {
        @autoreleasepool {
            runPosted();
        }
    }
    bool act(Event event, const std::string& row) override {
        @autoreleasepool {
            NSWindow* const window = windowTitled("Ombrel · Free Up Space");
            layOutWindows();
            switch (event) {
            case Event::tick: return clickOn(buttonOf(window, row, true));
            case Event::reveal: return clickOn(buttonOf(window, row, false));
            case Event::selectAll: return clickOn(viewTitled(window.contentView, "Select Low-Risk Files"));
            case Event::rescan: return clickOn(viewTitled(window.contentView, "Scan Again"));
            case Event::trash: return clickOn(viewTitled(window.contentView, "Move to Trash…"));
            case Event::changeMode: return changeMode(window.contentView);
            case Event::answerFirst: return press(returnKey), true;
            case Event::escape:
            case Event::answerLast: return pressLast(window);
            case Event::closeWindow: return window.visible && ([window close], true);
            default: return false;
            }
        }
    }
    std::string difference(const CleanupWindowContent& content, const std::optional<AlertContent>& alert) override {
        @autoreleasepool {
            NSWindow* const window = windowTitled("Ombrel · Free Up Space");
            if (!window.visible)
                return "the window is not shown";
            const std::vector<std::string> shown = spokenContents(window.contentView);
            const std::vector<std::string> expected = spokenContents(content);
            for (std::size_t index = 0; index < std::max(shown.size(), expected.size()); ++index)
                if (index >= shown.size() || index >= expected.size() || shown[index] != expected[index])
                    return "the window shows \"" + (index < shown.size() ? shown[index] : "nothing") + "\" and not \"" +
                           (index < expected.size() ? expected[index] : "nothing") + '"';
            std::vector<std::string> buttons;
            for (NSView* view : viewsBelow(window.attachedSheet.contentView))
                if ([view isKindOfClass:[NSButton class]])
                    buttons.push_back(textOf(static_cast<NSButton*>(view).title));
            return buttons == (alert ? alert->buttons : std::vector<std::string>()) ? ""
                                                                                    : "the sheet has other buttons";
        }
    }

private:
    static std::string textOf(NSString* text) { return text.UTF8String; }

    static bool clickOn(NSView* control) {
        if (control)
            click(control);
        return control != nil;
    }
    static NSView* buttonOf(NSWindow* window, const std::string& row, bool isCheckBox) {
        for (NSView* view : viewsBelow(window.contentView))
            if ([view isKindOfClass:[NSButton class]] && view.identifier && textOf(view.identifier) == row &&
                static_cast<NSButton*>(view).bordered == isCheckBox)
                return view;
        return nil;
    }
    static bool changeMode(NSView* root) {
        for (NSView* view : viewsBelow(root))
            if ([view isKindOfClass:[NSSegmentedControl class]]) {
                auto* const control = static_cast<NSSegmentedControl*>(view);
                choose(control, 1 - control.selectedSegment);
                return true;
            }
        return false;
    }
    // A sheet with one button has no button for Escape.
    static bool pressLast(NSWindow* window) {
        NSAlert* const sheet = alertOf(window);
        if (sheet && sheet.buttons.count == 1)
            click(sheet.buttons.firstObject);
        else
            press(escapeKey);
        return true;
    }

    AppKitShell shell_;
};

class AppKitMoveExplorer : public AppKitFixture {};

} // namespace

// Set OMBREL_WINDOW_SEQUENCES=1000 for a thorough run and OMBREL_EXPLORER_SEED to repeat a failure.
TEST_F(AppKitMoveExplorer, InNoOrderOfEventsIsAFileMovedOrLeftOtherwiseThanTheWindowSays) {
    const char* const wantedSeed = std::getenv("OMBREL_EXPLORER_SEED");
    const char* const wanted = std::getenv("OMBREL_WINDOW_SEQUENCES");
    const auto seed = wantedSeed ? static_cast<unsigned>(std::atol(wantedSeed)) : std::random_device()();
    const ScopedEnvironment locale("LC_ALL", "C");
    const auto makeWindow = [] { return std::make_unique<AppKitWindow>(); };
    std::mt19937 random(seed);
    MoveExplorer::Meetings meetings{};
    for (int number = 1; number <= (wanted ? std::atoi(wanted) : 40); ++number) {
        @autoreleasepool {
            const auto outcome = MoveExplorer::explore(random, meetings, makeWindow);
            ASSERT_EQ(outcome.brokenRule, "") << "OMBREL_EXPLORER_SEED=" << seed << ", sequence " << number << ": "
                                              << MoveExplorer::storyOf(outcome, makeWindow);
        }
        expectNoComplaints();
    }
    EXPECT_GT(
        meetings[static_cast<std::size_t>(Event::answerFirst)][static_cast<std::size_t>(MoveExplorer::State::asking)],
        0)
        << "OMBREL_EXPLORER_SEED=" << seed;
}

} // namespace vantry::apple
