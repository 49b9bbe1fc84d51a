#pragma once

#include "app/ContextMenu.h"

#include <QMenu>
#include <functional>

namespace vantry {

using MenuItemHandler = std::function<void(const MenuItemContent&)>;

/// Makes `menu` show `content`; choosing an item calls `chosen` with it. A menu that has these items already only takes
/// their states, so that a host which shows it at this moment does not lose it.
void renderContextMenu(QMenu& menu, const ContextMenuContent& content, const MenuItemHandler& chosen);

} // namespace vantry
