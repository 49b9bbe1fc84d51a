#include "cleanup/scan/ScanEnvironment.h"

#include "platform/UserSession.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace vantry {

Result<ScanEnvironment> ScanEnvironment::currentWithoutWorkers() {
    const auto home = homeFolder();
    if (!home)
        return std::unexpected(Error{ErrorKind::notFound, "There is no home folder."});
    std::error_code error;
    auto resolved = std::filesystem::canonical(*home, error);
    if (error)
        return std::unexpected(errorFromErrno(error.value(), home->native()));
    return ScanEnvironment{.home = std::move(resolved),
                           .workers = {},
                           .now = [] { return SystemTime(std::chrono::system_clock::now()); },
                           .isRegisteredApplication = applicationRegister()};
}

Result<ScanEnvironment> ScanEnvironment::current(std::shared_ptr<StopSwitch> stopSwitch,
                                                 std::shared_ptr<FolderQuestions> questions) {
    auto environment = currentWithoutWorkers();
    if (!environment)
        return environment;
    auto workers = WorkerHost::currentEnvironment();
    if (!workers)
        return std::unexpected(workers.error());
    workers->stopSwitch = std::move(stopSwitch);
    environment->workers = std::move(*workers);
    environment->questions = std::move(questions);
    return environment;
}

} // namespace vantry
