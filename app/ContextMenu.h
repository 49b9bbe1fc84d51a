#pragma once

#include "rendering/BarStyle.h"

#include <string>
#include <vector>

namespace vantry {

/// What choosing an item does; `none` for separators and items that only hold a submenu.
enum class MenuCommand {
    none,
    refresh,
    openStorageSettings,
    freeUpSpace,
    showPercentage,
    barStyle,
    segmentSizing,
    launchAtLogin,
    quit
};

struct MenuItemContent {
    std::string title; ///< empty for a separator
    MenuCommand command = MenuCommand::none;
    bool separator = false;
    bool checked = false;
    bool checkable = false;
    bool enabled = true;
    std::string keyEquivalent;     ///< a letter, pressed with the system's command key
    std::string representedObject; ///< the raw value that a choice stands for
    std::vector<MenuItemContent> submenu;

    bool operator==(const MenuItemContent&) const = default;
};

struct ContextMenuContent {
    std::vector<MenuItemContent> items;

    bool operator==(const ContextMenuContent&) const = default;
};

/// What the menu's check marks and enabled states follow, read at the moment it opens.
struct ContextMenuState {
    bool showsUsedPercentage = false;
    BarStyle barStyle = BarStyle::storageGradient;
    SegmentSizing segmentSizing = SegmentSizing::verifiedSnapshot;
    bool launchesAtLogin = false;
};

[[nodiscard]] ContextMenuContent contextMenuContent(const ContextMenuState& state);

} // namespace vantry
