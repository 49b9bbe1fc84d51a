#pragma once

#include "base/Result.h"
#include "base/Time.h"
#include "cleanup/finding/FolderQuestions.h"
#include "cleanup/measuring/WorkerHost.h"
#include "cleanup/model/CleanupPlaces.h"
#include "platform/ApplicationRegister.h"

#include <functional>
#include <memory>

namespace vantry {

/// The system that a scan looks at.
struct ScanEnvironment {
    CleanupPlaces places;
    WorkerHost::Environment workers;
    std::function<SystemTime()> now;
    ApplicationRegister isRegisteredApplication = {};     ///< empty where the system has none
    std::shared_ptr<FolderQuestions> questions = nullptr; ///< asked by the first scan; null where nobody is asked

    /// The real one. Fails when there is no home folder or this executable cannot be started again. `stopSwitch` ends
    /// the scans that use it; either may be null. Blocking; any thread.
    [[nodiscard]] static Result<ScanEnvironment> current(std::shared_ptr<StopSwitch> stopSwitch,
                                                         std::shared_ptr<FolderQuestions> questions);
};

} // namespace vantry
