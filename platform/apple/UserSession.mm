#include "platform/UserSession.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

// Another user's folder or one open to others is no place for a socket.
Result<void> checkPrivateFolder(const std::filesystem::path& folder) {
    struct stat facts = {};
    if (lstat(folder.c_str(), &facts) != 0)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    if (!S_ISDIR(facts.st_mode) || facts.st_uid != getuid() || (facts.st_mode & 0077) != 0)
        return std::unexpected(Error{ErrorKind::permissionDenied, folder.native() + ": not a private folder"});
    return {};
}

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

Result<std::filesystem::path> homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return home;
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    const int status = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (!found)
        return std::unexpected(errorFromErrno(status != 0 ? status : ENOENT, "home folder"));
    return entry.pw_dir;
}

// The system's answer and not $TMPDIR, which may differ between two starts that are to find each other.
Result<std::filesystem::path> userRuntimeFolder() {
    const auto folder = usersTemporaryFolder();
    if (!folder)
        return folder;
    if (const auto checked = checkPrivateFolder(*folder); !checked)
        return std::unexpected(checked.error());
    return folder;
}

std::filesystem::path temporaryFolder() {
    if (const char* folder = std::getenv("TMPDIR"); folder && *folder == '/')
        return folder;
    return usersTemporaryFolder().value_or("/tmp");
}

// A user has one window server session.
std::string graphicalSessionName() { return {}; }

} // namespace vantry
