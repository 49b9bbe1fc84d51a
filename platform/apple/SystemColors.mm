#include "platform/apple/SystemColors.h"

namespace vantry {

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

} // namespace vantry
