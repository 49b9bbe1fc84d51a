#include "shell/appkit/AppKitDrawing.h"

#include "shell/appkit/AppKitConversions.h"

namespace vantry {

namespace {

NSAttributedString* attributedText(std::string_view text, const Font& font, NSColor* color) {
    return [[NSAttributedString alloc] initWithString:nsString(text)
                                           attributes:@{
                                               NSFontAttributeName : nsFont(font),
                                               NSForegroundColorAttributeName : color,
                                           }];
}

} // namespace

Rgba drawnColor(SystemColor role) {
    // The conversion resolves a dynamic colour for the current appearance, which is the view's in `drawRect:`.
    NSColor* resolved = [nsColor(role) colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
    CGFloat red = 0;
    CGFloat green = 0;
    CGFloat blue = 0;
    CGFloat alpha = 1;
    [resolved getRed:&red green:&green blue:&blue alpha:&alpha];
    return {red, green, blue, alpha};
}

void drawTextLine(std::string_view text, const Font& font, const Rgba& color, const Rect& rect) {
    NSAttributedString* line = attributedText(text, font, nsColor(color));
    const NSSize size = [line size];
    [line drawAtPoint:NSMakePoint(rect.x + (rect.width - size.width) / 2, rect.y + (rect.height - size.height) / 2)];
}

double fontBoundingHeight(const Font& font) { return NSHeight(nsFont(font).boundingRectForFont); }

double textLineWidth(std::string_view text, const Font& font) {
    return [attributedText(text, font, [NSColor labelColor]) size].width;
}

} // namespace vantry
