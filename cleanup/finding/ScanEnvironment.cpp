#include "cleanup/finding/ScanEnvironment.h"

#include <chrono>
#include <utility>

namespace vantry {

Result<ScanEnvironment> ScanEnvironment::current(std::shared_ptr<StopSwitch> stopSwitch,
                                                 std::shared_ptr<FolderQuestions> questions) {
    auto places = CleanupPlaces::current();
    if (!places)
        return std::unexpected(places.error());
    auto workers = WorkerHost::currentEnvironment();
    if (!workers)
        return std::unexpected(workers.error());
    workers->stopSwitch = std::move(stopSwitch);
    return ScanEnvironment{.places = std::move(*places),
                           .workers = std::move(*workers),
                           .now = [] { return SystemTime(std::chrono::system_clock::now()); },
                           .isRegisteredApplication = applicationRegister(),
                           .questions = std::move(questions)};
}

} // namespace vantry
