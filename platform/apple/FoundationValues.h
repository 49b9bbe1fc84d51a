#pragma once

#include "base/Result.h"

#include <string>
#include <string_view>

#if !defined(__OBJC__) || !__has_feature(objc_arc)
#error "For Objective-C++ with -fobjc-arc only."
#endif

@class NSError, NSString;

namespace vantry {

/// UTF-8; empty for nil and for text that is not valid Unicode. Any thread.
[[nodiscard]] std::string textFromFoundation(NSString* text);

/// Nil when `text` is not UTF-8. Any thread.
[[nodiscard]] NSString* foundationText(std::string_view text);

/// The message is the system's localized description, unchanged. Nil, from a call that failed without a reason, gives
/// an error of kind `system`. Any thread.
[[nodiscard]] Error errorFromFoundation(NSError* error);

} // namespace vantry
