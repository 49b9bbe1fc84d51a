// Whether the doubles notice what they are there to notice.

#include "tests/apple/AppKitFixture.h"

#include <gmock/gmock.h>

#include <thread>

namespace vantry::apple {

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AppKitDoubles : public AppKitFixture {
protected:
    /// What is wrong with a window of 200 by 100 after `fill` put something into it.
    std::vector<std::string> complaintsAbout(const std::function<void(NSView* root)>& fill) {
        @autoreleasepool {
            NSWindow* window = makeWindow();
            fill(window.contentView);
            layOutWindows();
            [window close];
            return takeComplaints();
        }
    }
    static NSWindow* makeWindow() {
        NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                       styleMask:NSWindowStyleMaskTitled
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
        window.releasedWhenClosed = NO;
        [window makeKeyAndOrderFront:nil];
        return window;
    }
    /// A button with its top left at (10, 10).
    static NSButton* addButton(NSView* root, NSString* title) {
        NSButton* button = [NSButton buttonWithTitle:title target:nil action:nullptr];
        button.translatesAutoresizingMaskIntoConstraints = NO;
        [root addSubview:button];
        [NSLayoutConstraint activateConstraints:@[
            [button.leadingAnchor constraintEqualToAnchor:root.leadingAnchor constant:10],
            [button.topAnchor constraintEqualToAnchor:root.topAnchor constant:10],
        ]];
        return button;
    }
};

using AppKitDoublesDeathTest = AppKitDoubles;

} // namespace

TEST_F(AppKitDoubles, NothingIsWrongWithAButtonThatIsPlaced) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSButton* button = addButton(root, @"OK");
                    layOutWindows();
                    EXPECT_EQ(NSMinX(button.frame), 10);
                    EXPECT_EQ(NSMaxY(button.frame), 90) << "y grows upwards";
                }),
                IsEmpty());
}

TEST_F(AppKitDoubles, ConstraintsThatContradictEachOther) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSButton* button = addButton(root, @"OK");
                    [button.widthAnchor constraintEqualToConstant:300].active = YES;
                    [button.trailingAnchor constraintLessThanOrEqualToAnchor:root.trailingAnchor].active = YES;
                }),
                Contains(AllOf(HasSubstr("NSButton “OK”"), HasSubstr("cannot be satisfied horizontally"))));
}

TEST_F(AppKitDoubles, AViewWithoutAPlace) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSView* view = [[NSView alloc] initWithFrame:NSZeroRect];
                    view.translatesAutoresizingMaskIntoConstraints = NO;
                    [root addSubview:view];
                    [view.topAnchor constraintEqualToAnchor:root.topAnchor].active = YES;
                    [view.heightAnchor constraintEqualToConstant:5].active = YES;
                }),
                ElementsAre("the place of NSView is open horizontally", "the size of NSView is open horizontally"));
}

TEST_F(AppKitDoubles, AForgottenAutoresizingMask) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSView* view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 5, 5)];
                    [root addSubview:view];
                    [view.widthAnchor constraintEqualToConstant:5].active = YES;
                    NSView* other = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 5, 5)];
                    [root addSubview:other];
                    [other.leadingAnchor constraintEqualToAnchor:root.leadingAnchor].active = YES;
                }),
                ElementsAre(HasSubstr("autoresizing mask"), HasSubstr("autoresizing mask")));
}

TEST_F(AppKitDoubles, TextThatIsCutOff) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSButton* button = addButton(root, @"A long title of a button");
                    [button.widthAnchor constraintEqualToConstant:30].active = YES;
                    [button.heightAnchor constraintEqualToConstant:10].active = YES;
                }),
                ElementsAre("NSButton “A long title of a button” is cut off below",
                            "NSButton “A long title of a button” is cut off at the side"));
}

TEST_F(AppKitDoubles, ControlsThatCannotBeReached) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    [addButton(root, @"OK").widthAnchor constraintEqualToConstant:400].active = YES;
                }),
                ElementsAre("NSButton “OK” reaches out of NSView", "a click on NSButton “OK” reaches nothing"));
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    addButton(root, @"Below");
                    addButton(root, @"Above");
                }),
                ElementsAre("a click on NSButton “Below” reaches NSButton “Above”"));
}

TEST_F(AppKitDoubles, ARemovedViewTakesItsConstraintsAlong) {
    EXPECT_THAT(complaintsAbout([](NSView* root) {
                    NSButton* first = addButton(root, @"1");
                    NSButton* second = addButton(root, @"2");
                    [second.widthAnchor constraintEqualToAnchor:first.widthAnchor constant:50].active = YES;
                    [first removeFromSuperview];
                    layOutWindows();
                    EXPECT_LT(NSWidth(second.frame), 50);
                }),
                IsEmpty());
}

TEST_F(AppKitDoubles, TimersFireWhenTheClockSaysSo) {
    @autoreleasepool {
        std::vector<std::string> fired;
        NSTimer* slow = [NSTimer timerWithTimeInterval:3
                                               repeats:YES
                                                 block:[&](NSTimer*) { fired.emplace_back("slow"); }];
        NSTimer* quick = [NSTimer timerWithTimeInterval:2
                                                repeats:YES
                                                  block:[&](NSTimer*) {
                                                      fired.emplace_back("quick");
                                                      post([&] { fired.emplace_back("posted"); });
                                                  }];
        [[NSRunLoop mainRunLoop] addTimer:slow forMode:NSRunLoopCommonModes];
        [[NSRunLoop mainRunLoop] addTimer:quick forMode:NSRunLoopCommonModes];
        advance(std::chrono::milliseconds(1999));
        EXPECT_THAT(fired, IsEmpty());
        advance(std::chrono::milliseconds(2001));
        EXPECT_THAT(fired, ElementsAre("quick", "posted", "slow", "quick", "posted"));
        [quick invalidate];
        advance(std::chrono::seconds(2));
        EXPECT_EQ(fired.back(), "slow");
        [slow invalidate];
    }
}

TEST_F(AppKitDoublesDeathTest, WhatTheSystemWouldNotSurvive) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(
        @autoreleasepool { makeWindow().hidesOnDeactivate = YES; }, "-\\[NSWindow setHidesOnDeactivate:\\]");
    EXPECT_DEATH(
        @autoreleasepool {
            NSView* view = [[NSView alloc] initWithFrame:NSZeroRect];
            std::thread([view] { view.hidden = YES; }).join();
        },
        "-\\[NSView setHidden:\\]: not on the main thread");
    EXPECT_DEATH(
        @autoreleasepool {
            NSPopover* popover = [[NSPopover alloc] init];
            NSView* view = [[NSView alloc] initWithFrame:NSZeroRect];
            [popover showRelativeToRect:NSZeroRect ofView:view preferredEdge:NSRectEdgeMinY];
        },
        "a popover at a view without a window");
    EXPECT_DEATH(
        @autoreleasepool {
            NSString* nothing = nil;
            [NSTextField labelWithString:@""].stringValue = nothing;
        },
        "nil as the text");
}

} // namespace vantry::apple
