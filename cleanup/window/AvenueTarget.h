#pragma once

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/window/CleanupWindowContent.h"

#include <filesystem>
#include <string>

namespace vantry {

/// What the button of an avenue opens.
struct AvenueTarget {
    enum class Kind {
        homeFolder,   ///< the home folder or one in it
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
                                        const std::filesystem::path& applications);

/// The button; one that can open nothing is disabled and says why.
[[nodiscard]] AvenueButtonContent avenueButton(CleanupAvenue::Action action, AvenueTarget::Kind kind, bool canOpen);

} // namespace vantry
