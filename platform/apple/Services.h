#pragma once

#include "platform/MainQueue.h"
#include "platform/PreferencesStore.h"
#include "platform/WindowList.h"
#include "platform/Workspace.h"

#include <memory>

namespace vantry {

// The services that live in the event loop.

/// The main dispatch queue and the main run loop. Blocks also run while a menu or a modal window runs its own loop. Any
/// thread.
[[nodiscard]] std::shared_ptr<MainQueue> makeMainQueue();

/// The standard user defaults. A key or a value that is not UTF-8 counts as missing and is not written.
[[nodiscard]] std::shared_ptr<PreferencesStore> makePreferencesStore();

/// The window server's list.
[[nodiscard]] std::shared_ptr<const WindowList> makeWindowList();

/// The shared workspace and the screens of AppKit. A frame's y grows downwards from the top of the screen with the menu
/// bar, as in the window server's list of windows.
[[nodiscard]] std::shared_ptr<Workspace> makeWorkspace();

} // namespace vantry
