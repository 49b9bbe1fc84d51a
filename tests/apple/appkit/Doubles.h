#pragma once

#include "tests/apple/appkit/Graphics.h"
#include "tests/apple/foundation/EventLoop.h"

#include <array>
#include <string>
#include <vector>

// What the doubles of AppKit know of each other.

/// A side of a view, or its size, along one axis.
enum class LayoutSide { begin, end, size, centre };

enum class Axis { horizontal, vertical };

namespace vantry::apple {

class LayoutBuilder;

[[nodiscard]] Rgba rgbaOf(NSColor* color); ///< in the appearance that is drawn in
[[nodiscard]] Font fontOf(NSFont* font);
/// The text of a button, a label or a menu's choice, with the class of the view.
[[nodiscard]] std::string nameOf(NSView* view);

/// Sends a message with one argument and no result, as an action.
inline void sendMessage(id receiver, SEL selector, id argument) {
    reinterpret_cast<void (*)(id, SEL, id)>(objc_msgSend)(receiver, selector, argument);
}

/// Whether a stack has taken the view out of itself, as it is hidden.
[[nodiscard]] bool isDetached(NSView* view);

/// The closest view that holds both, which may be one of them; nil when there is none.
[[nodiscard]] NSView* commonHolder(NSView* one, NSView* two);

/// Where a view is in the root above it, from the top left.
[[nodiscard]] NSRect placeInRoot(NSView* view);

/// What a click on the middle of a view reaches, once it is scrolled into sight.
[[nodiscard]] NSView* viewAtMiddle(NSView* view);

/// Windows, popovers and status items that are on the screen, the newest last.
[[nodiscard]] std::vector<NSWindow*>& visibleWindows();

} // namespace vantry::apple

@interface NSView () {
@public
    std::vector<NSView*> _children;
    __unsafe_unretained NSView* _parent;
    __unsafe_unretained NSWindow* _holder; ///< whose content view this is
    NSRect _place;                         ///< from the top left of the superview
    std::vector<NSLayoutConstraint*> _installed;
    std::array<float, 2> _hugging;
    std::array<float, 2> _resistance;
}
/// The size that fits what is in the view, -1 where it has none. A text that wraps is as high as `width` makes it.
- (NSSize)contentSizeAtWidth:(CGFloat)width;
- (void)addRulesTo:(vantry::apple::LayoutBuilder&)builder along:(Axis)axis;
- (void)childIsRemoved:(NSView*)child;
/// Draws what the class itself shows, into (0, 0, size) with y growing downwards.
- (void)paintOn:(CGContextRef)context size:(vantry::Size)size;
/// Tells the view and those in it.
- (void)appearanceHasChanged;
@end

@interface NSLayoutConstraint () {
@public
    __weak NSView* _one;
    __weak NSView* _two;
    BOOL _hasTwo;
    LayoutSide _sideOne;
    LayoutSide _sideTwo;
    Axis _axis;
    int _relation; ///< -1 at most, 0 equal, 1 at least
}
@end

@interface NSImageSymbolConfiguration ()
- (CGFloat)pointSize;
@end

@interface NSFont ()
- (const vantry::Font&)font;
@end

@interface NSStackView () {
@public
    std::vector<NSView*> _arranged;
    std::array<float, 2> _stackHugging;
}
@end

@interface NSClipView () {
@public
    CGFloat _scrolled; ///< how far from the top
    BOOL _isReflected; ///< by the scrollers
}
@end

@interface NSControl () {
@public
    NSEventMask _sendsOn;
}
@end

@interface NSButton () {
@public
    BOOL _isCheckBox;
}
@end

@interface NSProgressIndicator ()
- (BOOL)isRunning;
@end

@interface NSWindow () {
@public
    NSAlert* _alert;            ///< whose window this is
    __weak NSPopover* _popover; ///< whose window this is
}
- (void)sheetEnds:(NSModalResponse)response;
- (void)miniaturize;
@end

@interface NSEvent () {
@public
    NSEventType _type;
    unsigned short _keyCode;
    NSEventModifierFlags _modifiers;
    NSString* _characters;
    BOOL _isRepetition;
    NSInteger _eventNumber;
    __weak NSWindow* _window;
}
/// The event as the local monitors leave it: nil when one of them swallows it.
+ (NSEvent*)eventThroughMonitors:(NSEvent*)event;
+ (void)showToGlobalMonitors:(NSEvent*)event;
+ (void)setMouseLocation:(NSPoint)location;
@end

@interface NSMenu ()
/// The menu that was popped up last, once.
+ (NSMenu*)takePoppedUp;
@end

@interface NSApplication ()
- (void)setCurrentEvent:(NSEvent*)event;
@end
