#pragma once

#include "base/Result.h"
#include "base/Time.h"
#include "cleanup/scan/FolderQuestions.h"
#include "cleanup/scan/WorkerHost.h"
#include "platform/ApplicationRegister.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace vantry {

/// The system that a scan looks at and that validation checks against.
struct ScanEnvironment {
    std::filesystem::path home; ///< absolute, standardized and without links on the way: the items found lie below it
    std::filesystem::path applications = "/Applications";
    std::filesystem::path systemApplications = "/System/Applications";
    WorkerHost::Environment workers;
    std::function<SystemTime()> now;
    ApplicationRegister isRegisteredApplication = {};     ///< empty where the system has none
    std::shared_ptr<FolderQuestions> questions = nullptr; ///< that the first scan asks; none where nobody is asked

    /// The real one. Follows the links that lead to the home folder, once. Fails when there is no home folder or this
    /// executable cannot be started again. `stopSwitch` ends the scans that use it; either may be null.
    /// Blocking; any thread.
    [[nodiscard]] static Result<ScanEnvironment> current(std::shared_ptr<StopSwitch> stopSwitch,
                                                         std::shared_ptr<FolderQuestions> questions);
    /// The same for validation, which starts no workers: fails only when there is no home folder.
    [[nodiscard]] static Result<ScanEnvironment> currentWithoutWorkers();
};

} // namespace vantry
