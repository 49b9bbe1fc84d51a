#include "app/StatusItemContent.h"

#include "platform/TextFormat.h"

namespace vantry {

namespace {

constexpr double lengthWithPercentage = 94;
constexpr double lengthWithoutPercentage = 60;

std::string figures(const StorageSnapshot& snapshot) {
    return snapshot.volumeName + ": " + byteCountText(snapshot.usedBytes()) + " used, " +
           byteCountText(snapshot.availableBytes) + " available";
}

} // namespace

StatusItemContent statusItemContent(const StatusItemState& state) {
    const std::string label = state.snapshot ? figures(*state.snapshot) : "";
    std::string tooltip = state.snapshot ? label : "Ombrel";
    if (state.readFailure)
        tooltip = "Storage unavailable: " + *state.readFailure;
    StatusItemContent content{.length =
                                  state.choices.showsUsedPercentage ? lengthWithPercentage : lengthWithoutPercentage,
                              .tooltip = std::move(tooltip),
                              .accessibilityLabel = label,
                              .view = {.snapshot = state.snapshot,
                                       .barHeight = 7,
                                       .horizontalInset = 5,
                                       .showsPercentageLabel = state.choices.showsUsedPercentage,
                                       .barStyle = state.choices.barStyle,
                                       .segmentSizing = state.choices.segmentSizing,
                                       .exposesAccessibility = false},
                              .menu = contextMenuContent(state.choices)};
    content.view.themeColors = state.themeColors.value_or(content.view.themeColors);
    return content;
}

} // namespace vantry
