#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>
#include <string>

namespace vantry {

/// The width of a text without line breaks.
using TextWidth = std::function<double(const std::string& text)>;

/// The alert's informative text, fitted to lines of `width`. The part before the blank line names files: its words are
/// cut to one line and its lines to about three, with ellipses in the middle, so that the sentence after the blank line
/// always has room. A text without a blank line stays as it is.
[[nodiscard]] std::string fittedInformativeText(const AlertContent& alert, double width, const TextWidth& widthOf);

} // namespace vantry
