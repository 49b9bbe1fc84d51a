#include "platform/UserSession.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace vantry {

namespace {

Result<std::filesystem::path> usersTemporaryFolder() {
    std::array<char, PATH_MAX> buffer{};
    const std::size_t length = confstr(_CS_DARWIN_USER_TEMP_DIR, buffer.data(), buffer.size());
    if (length == 0 || length > buffer.size())
        return std::unexpected(errorFromErrno(length == 0 ? errno : ENAMETOOLONG, "temporary folder"));
    std::string folder = buffer.data();
    while (folder.size() > 1 && folder.ends_with('/'))
        folder.pop_back();
    return folder;
}

} // namespace

// Not $TMPDIR, which may differ between two starts that have to find each other.
Result<std::filesystem::path> userRuntimeFolder() {
    auto folder = usersTemporaryFolder();
    return folder ? privateFolder(*folder) : folder;
}

std::filesystem::path temporaryFolder() {
    if (const char* folder = std::getenv("TMPDIR"); folder && *folder == '/')
        return folder;
    return usersTemporaryFolder().value_or("/tmp");
}

std::filesystem::path downloadFolder(const std::filesystem::path& home) { return home / "Downloads"; }

// macOS gives a user one window server session.
std::string graphicalSessionName() { return {}; }

} // namespace vantry
