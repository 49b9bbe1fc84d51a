#pragma once

#include "tests/apple/appkit/Graphics.h"

#include <AppKit/AppKit.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vantry::apple {

/// What surrounds the application, as far as a test has a say in it, and what left the application. Main thread.
struct Desktop {
    static Desktop& get();
    /// As it is at first.
    static void reset();

    struct Display {
        std::string name;
        NSRect frame;
    };
    std::vector<Display> displays{{"Built-in Display", NSMakeRect(0, 0, 1440, 900)}};
    bool hasWindowServer = true;
    bool statusItemsActOnRightClicks = true; ///< as not in every version of the system
    bool popoversCloseForStatusItems = true; ///< transient ones; their documentation leaves that open
    NSArray* windows = nil;                  ///< of all applications, as Core Graphics describes them; nil is unknown
    std::vector<std::string> running;        ///< the bundle identifiers of applications; some have none
    std::vector<std::string> unopenable;     ///< URLs and paths
    std::function<void()> whileRunning;      ///< what happens between the launch and the end

    bool hasEnded = false;                         ///< since the launch
    std::vector<std::string> opened;               ///< URLs and paths
    std::vector<std::string> revealed;             ///< paths
    std::map<std::string, std::string> pasteboard; ///< texts by their types
    std::vector<std::string> changedValues;        ///< that screen readers were told of
};

// What a test sees and does in the place of a user.

/// Makes messages to views, windows and the like from other threads end the process. Once, before any of them.
void prepareDesktop();

/// Lays out every visible window. What is wrong becomes a complaint. How much work it was, in steps of the solver.
std::size_t layOutWindows();

/// Those of status items and popovers too, the newest last.
[[nodiscard]] std::vector<NSWindow*> windowsOnScreen();
/// Visible and newest; nil when there is none.
[[nodiscard]] NSWindow* keyWindow();
[[nodiscard]] NSWindow* windowTitled(const std::string& title);
/// The alert that is shown as the window's sheet; nil without one.
[[nodiscard]] NSAlert* alertOf(NSWindow* window);
/// The button in the menu bar.
[[nodiscard]] NSView* statusButton();

/// The views below `root` that are not hidden, in their order.
[[nodiscard]] std::vector<NSView*> viewsBelow(NSView* root);
/// The visible button, check box or label with this title below `root`; nil when there is none.
[[nodiscard]] NSView* viewTitled(NSView* root, const std::string& title);
/// One line for each visible view that is more than a holder of others: its class, its text, and where it is in `root`.
[[nodiscard]] std::string framesOf(NSView* root);

/// What a screen reader meets below `root`, a line for each element in its order, indented below what holds it: the
/// role, the name or the text, and in parentheses what else it would say, as "check box Launch at Login (checked)".
[[nodiscard]] std::vector<std::string> spokenContents(NSView* root);

/// Clicks on the middle of a control, as far as something else is not in the way.
void click(NSView* control, NSEventType button = NSEventTypeLeftMouseUp);
/// Clicks on another application, or on another item of the menu bar.
void clickElsewhere(NSPoint place, NSEventType button = NSEventTypeLeftMouseUp);
void choose(NSPopUpButton* popUp, NSInteger index);
void choose(NSSegmentedControl* control, NSInteger segment);

inline constexpr unsigned short returnKey = 36;
inline constexpr unsigned short spaceKey = 49;
inline constexpr unsigned short escapeKey = 53;
inline constexpr unsigned short letterW = 13;
inline constexpr unsigned short pageUpKey = 116;
inline constexpr unsigned short pageDownKey = 121;
/// Presses a key in the key window. `isRepetition`: as it comes from a key that is held.
void press(unsigned short key, bool isRepetition = false, NSEventModifierFlags modifiers = 0);

/// The menu that was popped up last, and is then forgotten.
[[nodiscard]] NSMenu* takeMenu();
/// Chooses an enabled item of the menu or a submenu; whether there is one.
[[nodiscard]] bool choose(NSMenu* menu, const std::string& title);

/// Puts it into the Dock.
void miniaturize(NSWindow* window);
void setAppearance(NSWindow* window, Appearance appearance);
/// The window as it is laid out, to be released with `CGContextRelease`.
[[nodiscard]] CGContextRef drawWindow(NSWindow* window);

void wakeFromSleep();

} // namespace vantry::apple
