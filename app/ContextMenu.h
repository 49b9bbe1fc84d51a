#pragma once

#include "rendering/BarStyle.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vantry {

enum class MenuCommand {
    refresh,
    openStorageSettings,
    freeUpSpace,
    showPercentage,
    barStyle,
    segmentSizing,
    launchAtLogin,
    quit
};

/// An entry that can be chosen.
struct MenuItemContent {
    std::string title;
    MenuCommand command = MenuCommand::refresh;
    std::optional<bool> checked;   ///< absent for an item that never has a check mark
    std::string keyEquivalent;     ///< a letter, pressed with the system's command key
    std::string representedObject; ///< the raw value that a choice stands for

    bool operator==(const MenuItemContent&) const = default;
};

struct SubmenuContent {
    std::string title;
    bool enabled = true;
    std::vector<MenuItemContent> items;

    bool operator==(const SubmenuContent&) const = default;
};

struct MenuSeparator {
    bool operator==(const MenuSeparator&) const = default;
};

using MenuEntry = std::variant<MenuItemContent, SubmenuContent, MenuSeparator>;

struct ContextMenuContent {
    std::vector<MenuEntry> entries;

    bool operator==(const ContextMenuContent&) const = default;
};

/// What the user has chosen: three stored preferences, and whether the launch-agent file exists.
struct UserChoices {
    bool showsUsedPercentage = false;
    BarStyle barStyle = BarStyle::storageGradient;
    SegmentSizing segmentSizing = SegmentSizing::verifiedSnapshot;
    bool launchesAtLogin = false;
};

[[nodiscard]] ContextMenuContent contextMenuContent(const UserChoices& choices);

} // namespace vantry
