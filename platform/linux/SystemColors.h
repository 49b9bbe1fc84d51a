#pragma once

#include "base/Color.h"

namespace vantry {

/// The sRGB value of a system colour in an appearance, as Apple publishes it for macOS (Human Interface Guidelines,
/// Color, Specifications); for the text roles the values of AppKit's catalog. Any thread.
[[nodiscard]] Rgba resolvedSystemColor(SystemColor role, Appearance appearance);

} // namespace vantry
