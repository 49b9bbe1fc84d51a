#pragma once

#include "platform/HostSystem.h"
#include "rendering/SolidSwatchView.h"
#include "rendering/VantryView.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

struct LabelContent {
    std::string text;
    SystemColor color = SystemColor::label;
    bool hidden = false;

    bool operator==(const LabelContent&) const = default;
};

struct CheckBoxContent {
    std::string title;
    std::string tooltip;
    bool checked = false;

    bool operator==(const CheckBoxContent&) const = default;
};

struct ButtonContent {
    std::string title;
    std::string tooltip;

    bool operator==(const ButtonContent&) const = default;
};

struct PopUpContent {
    std::vector<std::string> items;
    std::string tooltip;
    std::optional<std::size_t> selectedIndex;
    bool enabled = true;

    bool operator==(const PopUpContent&) const = default;
};

/// Everything that the storage popover shows, top to bottom.
struct PopoverContent {
    Size size{380, 452}; ///< points

    LabelContent titleLabel{"Macintosh HD"};
    LabelContent summaryLabel{"Loading storage…", SystemColor::secondaryLabel};
    VantryView barView{.barHeight = 14, .horizontalInset = 0};
    LabelContent usedTitleLabel{"Used"};
    SolidSwatchView usedSwatchView{SolidSwatchView::Kind::used};
    LabelContent usedValueLabel{"—"};
    std::string usedTooltip; ///< of the two labels; says what is counted
    LabelContent availableTitleLabel{"Available"};
    SolidSwatchView availableSwatchView{SolidSwatchView::Kind::available};
    LabelContent availableValueLabel{"—"};
    std::string availableTooltip;
    LabelContent detailLabel{
        "The color strip shows total used space with the macOS Storage palette. Open Storage Settings "
        "for Apple’s category breakdown.",
        SystemColor::secondaryLabel};
    LabelContent errorLabel{"", SystemColor::red, true};
    LabelContent updateLabel{"", SystemColor::tertiaryLabel};
    ButtonContent cleanupButton{
        "Free Up Space…", "Find explainable cleanup suggestions and review everything before moving it to the Trash."};
    CheckBoxContent launchAtLoginButton{"Launch at Login", ""};
    CheckBoxContent showPercentageButton{"Show % Used in Menu Bar", ""};
    LabelContent barStyleLabel{"Bar Style"};
    PopUpContent barStylePopUp{{}, "Choose Rainbow, macOS Storage Colors, Vivid Theme, or the active wallpaper."};
    LabelContent segmentSizingLabel{"Segment Widths"};
    PopUpContent segmentSizingPopUp{
        {}, "Use equal-width colors or the latest verified macOS Storage category proportions."};
    ButtonContent refreshButton{"Refresh", ""};
    ButtonContent settingsButton{"Storage Settings…", ""};
    ButtonContent quitButton{"Quit", ""};

    bool operator==(const PopoverContent&) const = default;
};

/// What the popover shows is computed from this. A choice is absent until it is known.
struct PopoverState {
    HostSystem system;
    std::optional<StorageSnapshot> snapshot;
    std::optional<std::string> volumeName; ///< stays when the snapshot goes
    std::optional<bool> launchesAtLogin;
    bool showsUsedPercentage = false;
    std::optional<BarStyle> barStyle;
    std::optional<SegmentSizing> segmentSizing;
    bool explainsBarStyle = false; ///< false: the detail is the introduction
    std::optional<std::vector<Rgba>> themeColors;
    std::optional<std::string> error;
};

[[nodiscard]] PopoverContent popoverContent(const PopoverState& state);

} // namespace vantry
