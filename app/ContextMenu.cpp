#include "app/ContextMenu.h"

namespace vantry {

namespace {

// One checkable item a choice, in the order of its table.
template <class Rows, class Case>
std::vector<MenuItemContent> choiceItems(const Rows& rows, Case current, MenuCommand command) {
    std::vector<MenuItemContent> items;
    for (const auto& row : rows)
        items.push_back({.title = std::string(row.displayName),
                         .command = command,
                         .checked = row.value == current,
                         .checkable = true,
                         .representedObject = std::string(row.rawValue)});
    return items;
}

} // namespace

ContextMenuContent contextMenuContent(const ContextMenuState& state) {
    return {{
        {.title = "Refresh", .command = MenuCommand::refresh},
        {.title = "Open Storage Settings…", .command = MenuCommand::openStorageSettings},
        {.title = "Free Up Space…", .command = MenuCommand::freeUpSpace},
        {.title = "Show % Used",
         .command = MenuCommand::showPercentage,
         .checked = state.showsUsedPercentage,
         .checkable = true},
        {.title = "Bar Style", .submenu = choiceItems(allBarStyles, state.barStyle, MenuCommand::barStyle)},
        {.title = "Segment Widths",
         .enabled = state.barStyle == BarStyle::macOSSegments,
         .submenu = choiceItems(allSegmentSizings, state.segmentSizing, MenuCommand::segmentSizing)},
        {.title = "Launch at Login",
         .command = MenuCommand::launchAtLogin,
         .checked = state.launchesAtLogin,
         .checkable = true},
        {.separator = true},
        {.title = "Quit Ombrel", .command = MenuCommand::quit, .keyEquivalent = "q"},
    }};
}

} // namespace vantry
