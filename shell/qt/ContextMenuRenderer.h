#pragma once

#include "app/ContextMenu.h"

#include <QMenu>
#include <functional>

namespace vantry {

using MenuItemHandler = std::function<void(const MenuItemContent&)>;

/// Makes `menu` show `content`; choosing an item calls `chosen` with it. The same entries are kept and only change
/// their states, because a host may be showing the menu; two contents of one length are taken to have the same entries.
void renderContextMenu(QMenu& menu, const ContextMenuContent& content, const MenuItemHandler& chosen);

} // namespace vantry
