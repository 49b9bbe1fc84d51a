#pragma once

#include <AppKit/AppKit.h>

namespace vantry {

// An accessory has no menu bar, which would know the shortcuts.

/// Whether the key press is ⌘W.
[[nodiscard]] bool isCloseShortcut(NSEvent* event);

/// Presses the button of `window` that has the keyboard if the key is Return or Enter; AppKit does so for Space only.
/// Whether it did.
bool pressFocusedButton(NSEvent* event, NSWindow* window);

/// As long as it lives, keeps the repetitions of a held key from all windows of the application, for the keys that
/// press buttons and close windows: no question may be answered by a key that was already down when it appeared.
class KeyGuard {
public:
    KeyGuard();
    KeyGuard(const KeyGuard&) = delete;
    KeyGuard& operator=(const KeyGuard&) = delete;
    ~KeyGuard();

private:
    id monitor_;
};

} // namespace vantry
