#include "shell/appkit/SymbolPicture.h"

#include "shell/appkit/AppKitConversions.h"

namespace vantry {

NSImage* symbolPicture(std::string_view name, CGFloat pointSize) {
    NSImage* symbol = [NSImage imageWithSystemSymbolName:nsString(name) accessibilityDescription:nil];
    if (!symbol) // each version of macOS adds symbols
        symbol = [NSImage imageWithSystemSymbolName:@"circle" accessibilityDescription:nil];
    return [symbol
        imageWithSymbolConfiguration:[NSImageSymbolConfiguration configurationWithPointSize:pointSize
                                                                                     weight:NSFontWeightRegular]];
}

NSImageView* makePictureView(CGFloat side, NSImageScaling scaling) {
    NSImageView* view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    view.translatesAutoresizingMaskIntoConstraints = NO;
    view.imageScaling = scaling;
    view.accessibilityElement = NO;
    [NSLayoutConstraint activateConstraints:@[
        [view.widthAnchor constraintEqualToConstant:side],
        [view.heightAnchor constraintEqualToConstant:side],
    ]];
    return view;
}

NSImageView* makeSymbolView(CGFloat side) { return makePictureView(side, NSImageScaleNone); }

void showSymbol(NSImageView* view, std::string_view name, CGFloat pointSize, SystemColor color) {
    view.image = symbolPicture(name, pointSize);
    view.contentTintColor = nsColor(color);
}

} // namespace vantry
