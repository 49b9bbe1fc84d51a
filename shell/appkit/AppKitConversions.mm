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

NSColor* nsColor(const Rgba& color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

// A dynamic provider, because `colorWithAlphaComponent` resolves the colour once, for the appearance at the time of the
// call.
NSColor* nsColor(SystemColor role, CGFloat alpha) {
    return [NSColor colorWithName:nil
                  dynamicProvider:^NSColor*(NSAppearance* appearance) {
                      __block NSColor* color = nil;
                      [appearance performAsCurrentDrawingAppearance:^{
                          color = [nsColor(role) colorWithAlphaComponent:alpha];
                      }];
                      return color;
                  }];
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
