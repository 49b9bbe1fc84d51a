#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>
#include <string>

namespace vantry {

/// How wide a text without line breaks is.
using TextWidth = std::function<double(const std::string& text)>;

/// The alert's informative text for lines of `width`. What stands before the blank line names files: there a word is no
/// wider than a line and a line takes about three, with ellipses in the middle, so that the sentence after the blank
/// line always has room. A text without a blank line is left as it is.
[[nodiscard]] std::string fittedInformativeText(const AlertContent& alert, double width, const TextWidth& widthOf);

} // namespace vantry
