#pragma once

#include "app/ContextMenu.h"

#include <functional>

@class NSMenu, OmbrelMenuTarget;

namespace vantry {

using MenuItemHandler = std::function<void(const MenuItemContent&)>;

/// Whom the items of a menu report to; a menu holds it weakly.
[[nodiscard]] OmbrelMenuTarget* makeMenuTarget(MenuItemHandler chosen);

/// A new menu that shows `content`; choosing an item calls the handler of `target` with the item's command and
/// represented object.
[[nodiscard]] NSMenu* makeContextMenu(const ContextMenuContent& content, OmbrelMenuTarget* target);

} // namespace vantry
