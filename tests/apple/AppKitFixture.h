#pragma once

#include "tests/apple/appkit/Desktop.h"
#include "tests/apple/foundation/EventLoop.h"
#include "tests/apple/runtime/Runtime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace vantry::apple {

/// A desktop with nothing on it. At the end of a test, nothing of it may be left alive, and nothing may have been wrong
/// with what was laid out.
class AppKitFixture : public testing::Test {
protected:
    void SetUp() override {
        livingBefore_ = objc::liveObjects();
        graphicsBefore_ = livingGraphicsObjects();
    }
    void TearDown() override {
        settle();
        expectNoComplaints();
        Desktop::reset();
        EXPECT_EQ(objc::liveObjects(), livingBefore_);
        EXPECT_EQ(livingGraphicsObjects(), graphicsBefore_);
    }

    /// Runs what was posted, and places what is visible.
    static void settle() {
        @autoreleasepool {
            runPosted();
            layOutWindows();
        }
    }
    static void expectNoComplaints() {
        for (const std::string& complaint : takeComplaints())
            ADD_FAILURE() << complaint;
    }

    /// Compares where everything below `root` is with what is stored; with OMBREL_WRITE_FRAMES set, stores it. Writes
    /// pictures into the folder that OMBREL_PICTURES names.
    static void expectFrames(const std::string& name, NSView* root) {
        const std::string path = OMBREL_SOURCE_ROOT "/tests/apple/shell/frames/" + name + ".txt";
        const std::string frames = framesOf(root);
        if (std::getenv("OMBREL_WRITE_FRAMES"))
            std::ofstream(path) << frames;
        std::ifstream stored(path);
        EXPECT_EQ(frames, std::string(std::istreambuf_iterator<char>(stored), {}))
            << "If that is right, store it: OMBREL_WRITE_FRAMES=1 build/dev/tests/apple_tests";
        expectNoComplaints();
        if (const char* folder = std::getenv("OMBREL_PICTURES"))
            for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
                setAppearance(root.window, appearance);
                CGContextRef picture = drawWindow(root.window);
                savePicture(picture, std::string(folder) + "/appkit-" + name +
                                         (appearance == Appearance::dark ? "-dark.png" : "-light.png"));
                CGContextRelease(picture);
            }
    }

    /// Whether something below `root` can be used that a screen reader has no name for.
    static void expectNamesForScreenReaders(NSView* root) {
        for (NSView* view : viewsBelow(root)) {
            if (![view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSTextField class]] ||
                [view isKindOfClass:[NSSegmentedControl class]] || [view isKindOfClass:[NSImageView class]])
                continue;
            const bool hasTitle =
                [view isKindOfClass:[NSButton class]] && static_cast<NSButton*>(view).title.length > 0;
            EXPECT_TRUE(hasTitle || view.accessibilityLabel.length > 0 || view.accessibilityTitleUIElement)
                << framesOf(view);
        }
    }

    template <class View>
    static View* first(NSView* root, NSUInteger number = 0) {
        for (NSView* view : viewsBelow(root))
            if ([view isKindOfClass:[View class]] && number-- == 0)
                return static_cast<View*>(view);
        return nil;
    }

    static std::string textOf(NSString* text) { return text ? text.UTF8String : "none"; }

private:
    std::map<std::string, long> livingBefore_;
    int graphicsBefore_ = 0;
};

} // namespace vantry::apple
