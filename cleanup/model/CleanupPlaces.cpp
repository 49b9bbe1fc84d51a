#include "cleanup/model/CleanupPlaces.h"

#include "platform/UserSession.h"

#include <system_error>
#include <utility>

namespace vantry {

Result<CleanupPlaces> CleanupPlaces::current() {
    const auto home = homeFolder();
    if (!home)
        return std::unexpected(Error{ErrorKind::notFound, "There is no home folder."});
    std::error_code error;
    auto resolved = std::filesystem::canonical(*home, error);
    if (error)
        return std::unexpected(errorFromErrno(error.value(), home->native()));
    auto downloads = downloadFolder(*home);
    // The folder is named by the home folder as the user knows it; the items found lie below what that leads to.
    if (const auto below = downloads.lexically_relative(*home); !below.empty() && *below.begin() != "..")
        downloads = resolved / below;
    return CleanupPlaces{.home = std::move(resolved), .downloads = std::move(downloads)};
}

} // namespace vantry
