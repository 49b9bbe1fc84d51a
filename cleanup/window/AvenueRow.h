#pragma once

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "platform/HostSystem.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace vantry {

/// What a scan says about an avenue as a whole.
enum class AvenueState {
    notScanned,       ///< neither its categories nor places of its own are looked at
    unknown,          ///< nothing was looked at yet
    permissionNeeded, ///< one of its categories, or every place, may not be read
    unavailable,      ///< one of its categories could not be checked
    relocated,        ///< one of its categories lies somewhere else
    notPresent,       ///< none of its categories or places is on this system
    checked,
};

/// The first state that applies, in the order of the enumeration from `permissionNeeded`, with `checked` before
/// `notPresent`.
[[nodiscard]] AvenueState avenueState(const CleanupAvenue& avenue, const CleanupScanReport& report);

/// Whether one of the avenue's categories is in the state `state`.
[[nodiscard]] bool hasState(const CleanupAvenue& avenue, const std::map<CleanupCategory, CleanupScanState>& states,
                            CleanupScanState state);

/// The total of the categories: exact if every part is, unavailable if no part is known, else a lower bound.
[[nodiscard]] CleanupByteAmount combinedOccupiedAmount(const std::set<CleanupCategory>& categories,
                                                       const std::map<CleanupCategory, CleanupCategoryMetric>& metrics);

/// How much space a scanned avenue uses, as far as known.
[[nodiscard]] std::string usageText(const CleanupAvenue& avenue, const CleanupScanReport& report);

/// The status of an avenue, and the line below it.
struct AvenueStatus {
    std::string primary;
    std::string secondary;
    SystemColor color;

    bool operator==(const AvenueStatus&) const = default;
};

[[nodiscard]] AvenueStatus avenueStatus(const CleanupAvenue& avenue, const CleanupScanReport& report,
                                        HostSystem system);

/// The row of an avenue, without its button.
[[nodiscard]] AvenueRowContent avenueRow(const CleanupAvenue& avenue, const CleanupScanReport& report,
                                         HostSystem system);

/// What the button of an avenue opens.
struct AvenueTarget {
    enum class Kind {
        homeFolder,   ///< the home folder or a folder in it
        systemFolder, ///< a folder that belongs to macOS
        application,
        settingsPane,
    };

    Kind kind;
    std::filesystem::path path; ///< of a folder or an application
    std::string url;            ///< of a settings pane

    bool operator==(const AvenueTarget&) const = default;
};

[[nodiscard]] AvenueTarget avenueTarget(CleanupAvenue::Action action, const std::filesystem::path& home,
                                        const std::filesystem::path& downloads,
                                        const std::filesystem::path& applications);

/// Whether the avenue's command is shown: once something was measured for it to work on, or where access is needed that
/// the command may have, unless it is not known what would be found there.
[[nodiscard]] bool offersCommand(const CleanupAvenue& avenue, const CleanupScanReport& report);

/// The button that copies the avenue's command.
[[nodiscard]] AvenueButtonContent commandButton(const CleanupAvenue& avenue);

/// The button. If its target cannot be opened, it is disabled and its tooltip says why.
[[nodiscard]] AvenueButtonContent avenueButton(CleanupAvenue::Action action, AvenueTarget::Kind kind, bool canOpen,
                                               HostSystem system);

} // namespace vantry
