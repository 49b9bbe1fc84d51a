#pragma once

#include "base/Result.h"
#include "platform/HostSystem.h"

#include <filesystem>

namespace vantry {

/// Where a scan looks and what validation accepts, before the rules of CleanupRules.h.
struct CleanupPlaces {
    std::filesystem::path home; ///< absolute, standardized and without links on the way: the items found lie below it
    std::filesystem::path downloads = {}; ///< the user's download folder; empty: "Downloads" in the home folder
    std::filesystem::path applications = "/Applications";
    std::filesystem::path systemApplications = "/System/Applications";
    HostSystem system = hostSystem();
    std::filesystem::path root = "/"; ///< of the guide's places outside of the home folder

    /// Those of this user. Follows the links that lead to the home folder, once. Fails when there is no home folder.
    /// Blocking; any thread.
    [[nodiscard]] static Result<CleanupPlaces> current();
};

} // namespace vantry
