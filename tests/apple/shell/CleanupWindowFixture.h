#pragma once

#include "shell/appkit/CleanupWindow.h"
#include "tests/apple/AppKitFixture.h"
#include "tests/shell/qt/CannedCleanupContent.h"
#include "tests/shell/qt/CleanupWindowReports.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantry::apple {

inline constexpr NSSize usualSize{940, 760};
inline constexpr NSSize leastSize{780, 620};

class AppKitCleanupWindow : public AppKitFixture, protected CleanupWindowReports {
protected:
    /// Shows `content` in a window of this size while `block` runs.
    void withWindow(const CleanupWindowContent& content, NSSize size, const std::function<void()>& block) {
        @autoreleasepool {
            window.emplace(actions());
            window->renderCleanupWindow(content);
            window->showCleanupWindow();
            [keyWindow() setContentSize:size];
            settle();
            block();
            settle();
            window.reset();
        }
        onSelection = nullptr;
    }
    static std::vector<NSView*> buttonsBelow(NSView* view, bool isReveal) {
        std::vector<NSView*> found = viewsBelow(view);
        std::erase_if(found, [&](NSView* each) {
            return ![each isKindOfClass:[NSButton class]] || !each.identifier ||
                   static_cast<NSButton*>(each).bordered == isReveal;
        });
        return found;
    }
    static std::vector<NSView*> checkBoxes() { return buttonsBelow(root(), false); }
    static std::vector<NSView*> revealButtons() { return buttonsBelow(root(), true); }
    static NSView* root() { return windowTitled("Ombrel · Free Up Space").contentView; }

    std::optional<CleanupWindow> window;
};

[[nodiscard]] inline std::string repeated(std::string_view word, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += word;
    return text;
}

} // namespace vantry::apple
