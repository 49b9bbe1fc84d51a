#include "shell/appkit/AppKitConversions.h"

#include "platform/apple/FoundationValues.h"

namespace vantry {

namespace {

NSFontWeight nsWeight(FontWeight weight) {
    switch (weight) {
    case FontWeight::regular: return NSFontWeightRegular;
    case FontWeight::medium: return NSFontWeightMedium;
    case FontWeight::semibold: return NSFontWeightSemibold;
    case FontWeight::bold: return NSFontWeightBold;
    }
    return NSFontWeightRegular;
}

} // namespace

NSString* nsString(std::string_view text) {
    NSString* string = foundationText(text);
    return string ? string : @"";
}

NSColor* nsColor(SystemColor role) {
    switch (role) {
    case SystemColor::red: return [NSColor systemRedColor];
    case SystemColor::orange: return [NSColor systemOrangeColor];
    case SystemColor::yellow: return [NSColor systemYellowColor];
    case SystemColor::green: return [NSColor systemGreenColor];
    case SystemColor::teal: return [NSColor systemTealColor];
    case SystemColor::blue: return [NSColor systemBlueColor];
    case SystemColor::pink: return [NSColor systemPinkColor];
    case SystemColor::cyan: return [NSColor systemCyanColor];
    case SystemColor::mint: return [NSColor systemMintColor];
    case SystemColor::gray: return [NSColor systemGrayColor];
    case SystemColor::purple: return [NSColor systemPurpleColor];
    case SystemColor::label: return [NSColor labelColor];
    case SystemColor::secondaryLabel: return [NSColor secondaryLabelColor];
    case SystemColor::tertiaryLabel: return [NSColor tertiaryLabelColor];
    case SystemColor::disabledControlText: return [NSColor disabledControlTextColor];
    case SystemColor::separator: return [NSColor separatorColor];
    case SystemColor::windowBackground: return [NSColor windowBackgroundColor];
    }
    return [NSColor labelColor];
}

NSColor* nsColor(const Rgba& color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

NSFont* nsFont(const Font& font) {
    const NSFontWeight weight = nsWeight(font.weight);
    return font.monospacedDigits ? [NSFont monospacedDigitSystemFontOfSize:font.size weight:weight]
                                 : [NSFont systemFontOfSize:font.size weight:weight];
}

Appearance appearanceOf(NSView* view) {
    NSAppearanceName match = [view.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return [match isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::dark : Appearance::light;
}

} // namespace vantry
