#pragma once

#include "app/ContextMenu.h"

#include <functional>

@class NSMenu, OmbrelMenuTarget;

namespace vantry {

using MenuItemHandler = std::function<void(const MenuItemContent&)>;

/// The target of a menu's items, which hold it weakly.
[[nodiscard]] OmbrelMenuTarget* makeMenuTarget(MenuItemHandler chosen);

/// A new menu that shows `content`. Choosing an item calls the handler of `target` with its command and represented
/// object.
[[nodiscard]] NSMenu* makeContextMenu(const ContextMenuContent& content, OmbrelMenuTarget* target);

} // namespace vantry
