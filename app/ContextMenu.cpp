#include "app/ContextMenu.h"

namespace vantry {

namespace {

template <class Rows, class Case>
std::vector<MenuItemContent> choiceItems(const Rows& rows, Case current, MenuCommand command) {
    std::vector<MenuItemContent> items;
    for (const auto& row : rows)
        items.push_back({.title = std::string(row.displayName),
                         .command = command,
                         .checked = row.value == current,
                         .representedObject = std::string(row.rawValue)});
    return items;
}

} // namespace

ContextMenuContent contextMenuContent(const UserChoices& choices) {
    using Item = MenuItemContent;
    using enum MenuCommand;
    return {{
        Item{.title = "Refresh", .command = refresh},
        Item{.title = "Open Storage Settings…", .command = openStorageSettings},
        Item{.title = "Free Up Space…", .command = freeUpSpace},
        Item{.title = "Show % Used", .command = showPercentage, .checked = choices.showsUsedPercentage},
        SubmenuContent{.title = "Bar Style", .items = choiceItems(allBarStyles, choices.barStyle, barStyle)},
        SubmenuContent{.title = "Segment Widths",
                       .enabled = choices.barStyle == BarStyle::macOSSegments,
                       .items = choiceItems(allSegmentSizings, choices.segmentSizing, segmentSizing)},
        Item{.title = "Launch at Login", .command = launchAtLogin, .checked = choices.launchesAtLogin},
        MenuSeparator{},
        Item{.title = "Quit Ombrel", .command = quit, .keyEquivalent = "q"},
    }};
}

} // namespace vantry
