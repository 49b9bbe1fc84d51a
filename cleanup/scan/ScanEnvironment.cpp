#include "cleanup/scan/ScanEnvironment.h"

#include "platform/UserSession.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace vantry {

Result<ScanEnvironment> ScanEnvironment::current() {
    const auto home = homeFolder();
    if (!home)
        return std::unexpected(Error{ErrorKind::notFound, "There is no home folder."});
    std::error_code error;
    auto resolved = std::filesystem::canonical(*home, error);
    if (error)
        return std::unexpected(errorFromErrno(error.value(), home->native()));
    auto workers = WorkerHost::currentEnvironment();
    if (!workers)
        return std::unexpected(workers.error());
    return ScanEnvironment{.home = std::move(resolved), .workers = std::move(*workers), .now = [] {
                               return SystemTime(std::chrono::system_clock::now());
                           }};
}

} // namespace vantry
