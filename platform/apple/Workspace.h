#pragma once

#include "platform/Workspace.h"

#include <memory>

namespace vantry {

/// The shared workspace and the screens of AppKit. A frame's y grows downwards from the top of the screen with the menu
/// bar, as in the window server's list of windows.
[[nodiscard]] std::shared_ptr<Workspace> makeWorkspace();

} // namespace vantry
