#pragma once

#include <AppKit/AppKit.h>

namespace vantry {

// Shortcuts that the menu bar would handle, if an accessory had one.

/// Whether the key press is ⌘W.
[[nodiscard]] bool isCloseShortcut(NSEvent* event);

/// -1 for Page Up, 1 for Page Down, 0 for any other key.
[[nodiscard]] int pagesToScroll(NSEvent* event);

/// If the key is Return or Enter, presses the focused button of `window` and returns true. AppKit does so for Space
/// only.
bool pressFocusedButton(NSEvent* event, NSWindow* window);

/// Drops auto-repeated presses of the keys that press buttons and close windows, so that a key that was already down
/// when a question appeared cannot answer it. Active during its lifetime.
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
