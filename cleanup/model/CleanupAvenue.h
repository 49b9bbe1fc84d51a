#pragma once

#include "base/Color.h"
#include "cleanup/model/CleanupCategory.h"
#include "platform/HostSystem.h"

#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace vantry {

/// One way to get space back, explained to the user.
struct CleanupAvenue {
    /// How the application treats it.
    enum class Mode { scanned, manageInApp, macOSManaged, keptPrivate, includedAbove };

    /// What its button opens.
    enum class Action {
        downloads,
        applications,
        home,
        storageSettings,
        mail,
        messages,
        photos,
        timeMachine,
        developer,
        deviceBackups,
    };

    /// A place that an avenue measures by itself, beside those of the categories.
    struct Place {
        enum class Kind {
            whole,      ///< everything at the path
            coreDumps,  ///< the regular files directly in it whose names are "core." and a number
            diskImages, ///< the images of virtual machines at any depth below it, outside of places that are `whole`
            oldCaches,  ///< what lies directly in it, is in no place that is `whole`, and has not changed for 30 days
            leftBehind, ///< the folders below it of Flatpak applications that are not installed
        };

        std::string_view path; ///< a pattern, see GuidePlaces.h
        Kind kind = Kind::whole;

        bool operator==(const Place&) const = default;
    };

    CleanupArea area;
    std::string_view title;
    std::string_view detail;
    std::string_view symbolName;
    Mode mode;
    std::set<CleanupCategory> categories; ///< it shows their findings; empty unless `scanned`
    std::optional<Action> action;         ///< absent: no button
    // Of avenues with places of their own.
    std::string_view identifier = {}; ///< its name for programs
    std::vector<Place> places = {};
    std::string_view command = {}; ///< the owner's own, for the user to run; Ombrel never does

    /// Every avenue of macOS; within an area in the order of display. Any thread.
    [[nodiscard]] static const std::vector<CleanupAvenue>& catalog();
    /// Every avenue of `system`. Every category stands in one of them.
    [[nodiscard]] static const std::vector<CleanupAvenue>& catalog(HostSystem system);

    bool operator==(const CleanupAvenue&) const = default;
};

/// One row of the table below.
struct CleanupAvenueModeRow {
    CleanupAvenue::Mode value;
    std::string_view title; ///< the status text
    SystemColor color;      ///< of the status text
};

inline constexpr std::array<CleanupAvenueModeRow, 5> allCleanupAvenueModes{{
    {CleanupAvenue::Mode::scanned, "Checked Automatically", SystemColor::green},
    {CleanupAvenue::Mode::manageInApp, "Open Its App", SystemColor::blue},
    {CleanupAvenue::Mode::macOSManaged, "Protected by macOS", SystemColor::purple},
    {CleanupAvenue::Mode::keptPrivate, "Not Scanned for Privacy", SystemColor::secondaryLabel},
    {CleanupAvenue::Mode::includedAbove, "Included Above", SystemColor::secondaryLabel},
}};

/// One row of the table below.
struct CleanupAvenueActionRow {
    CleanupAvenue::Action value;
    std::string_view rawValue;
    std::string_view title; ///< the label of the button
};

inline constexpr std::array<CleanupAvenueActionRow, 10> allCleanupAvenueActions{{
    {CleanupAvenue::Action::downloads, "downloads", "Open Downloads"},
    {CleanupAvenue::Action::applications, "applications", "Open Applications"},
    {CleanupAvenue::Action::home, "home", "Open Home Folder"},
    {CleanupAvenue::Action::storageSettings, "storageSettings", "Open Storage Settings"},
    {CleanupAvenue::Action::mail, "mail", "Open Mail"},
    {CleanupAvenue::Action::messages, "messages", "Open Messages"},
    {CleanupAvenue::Action::photos, "photos", "Open Photos"},
    {CleanupAvenue::Action::timeMachine, "timeMachine", "Open Time Machine"},
    {CleanupAvenue::Action::developer, "developer", "Open Developer Folder"},
    {CleanupAvenue::Action::deviceBackups, "deviceBackups", "Open Backups"},
}};

[[nodiscard]] std::string_view title(CleanupAvenue::Mode mode);
[[nodiscard]] SystemColor color(CleanupAvenue::Mode mode);

[[nodiscard]] std::string_view rawValue(CleanupAvenue::Action action);
[[nodiscard]] std::string_view title(CleanupAvenue::Action action);
[[nodiscard]] std::optional<CleanupAvenue::Action> cleanupAvenueActionFromRawValue(std::string_view rawValue);

} // namespace vantry
