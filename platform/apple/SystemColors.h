#pragma once

#include "base/Color.h"

#include <AppKit/AppKit.h>

namespace vantry {

/// The system's dynamic colour for a role; it follows the appearance by itself. Any thread.
[[nodiscard]] NSColor* nsColor(SystemColor role);

} // namespace vantry
