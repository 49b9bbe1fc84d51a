#pragma once

#include "platform/WindowList.h"

#include <memory>

namespace vantry {

/// The window server's list.
[[nodiscard]] std::shared_ptr<const WindowList> makeWindowList();

} // namespace vantry
