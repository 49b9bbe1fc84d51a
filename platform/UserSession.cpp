#include "platform/UserSession.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

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

Result<std::filesystem::path> privateFolder(std::filesystem::path folder) {
    struct stat facts = {};
    if (lstat(folder.c_str(), &facts) != 0)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    if (!S_ISDIR(facts.st_mode) || facts.st_uid != getuid() || (facts.st_mode & 0077) != 0)
        return std::unexpected(Error{ErrorKind::permissionDenied, folder.native() + ": not a private folder"});
    return folder;
}

} // namespace vantry
