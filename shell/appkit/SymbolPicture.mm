#include "shell/appkit/SymbolPicture.h"

#include "shell/appkit/AppKitConversions.h"

namespace vantry {

NSImage* symbolPicture(std::string_view name, CGFloat pointSize) {
    NSImage* symbol = [NSImage imageWithSystemSymbolName:nsString(name) accessibilityDescription:nil];
    if (!symbol) // each version of the system has more of them
        symbol = [NSImage imageWithSystemSymbolName:@"circle" accessibilityDescription:nil];
    return [symbol
        imageWithSymbolConfiguration:[NSImageSymbolConfiguration configurationWithPointSize:pointSize
                                                                                     weight:NSFontWeightRegular]];
}

NSImageView* makeSymbolView(CGFloat side) {
    NSImageView* view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    view.translatesAutoresizingMaskIntoConstraints = NO;
    view.imageScaling = NSImageScaleNone;
    view.accessibilityElement = NO;
    [NSLayoutConstraint activateConstraints:@[
        [view.widthAnchor constraintEqualToConstant:side],
        [view.heightAnchor constraintEqualToConstant:side],
    ]];
    return view;
}

void showSymbol(NSImageView* view, std::string_view name, CGFloat pointSize, SystemColor color) {
    view.image = symbolPicture(name, pointSize);
    view.contentTintColor = nsColor(color);
}

} // namespace vantry
