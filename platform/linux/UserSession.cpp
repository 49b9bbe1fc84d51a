#include "platform/UserSession.h"

#include "base/Format.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// A link, another user's folder or one open to others is no place for a socket.
Result<void> checkPrivateFolder(const std::filesystem::path& folder) {
    struct stat facts = {};
    if (lstat(folder.c_str(), &facts) != 0)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    if (!S_ISDIR(facts.st_mode) || facts.st_uid != getuid() || (facts.st_mode & 0077) != 0)
        return std::unexpected(Error{ErrorKind::permissionDenied, folder.native() + ": not a private folder"});
    return {};
}

} // namespace

Result<std::filesystem::path> homeFolder() {
    if (const auto home = environment("HOME"); home.starts_with('/'))
        return home;
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    const int status = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (!found)
        return std::unexpected(errorFromErrno(status != 0 ? status : ENOENT, "home folder"));
    return entry.pw_dir;
}

Result<std::filesystem::path> userRuntimeFolder() {
    if (const auto folder = environment("XDG_RUNTIME_DIR"); folder.starts_with('/') && checkPrivateFolder(folder))
        return folder;
    const std::filesystem::path folder = formatted("/tmp/ombrel-{}", getuid());
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    if (const auto checked = checkPrivateFolder(folder); !checked)
        return std::unexpected(checked.error());
    return folder;
}

std::filesystem::path temporaryFolder() {
    const auto folder = environment("TMPDIR");
    return folder.starts_with('/') ? folder : "/tmp";
}

std::string graphicalSessionName() {
    auto display = environment("DISPLAY");
    if (display.empty())
        return environment("WAYLAND_DISPLAY");
    // ":0.0" is a screen of ":0".
    const auto colon = display.rfind(':');
    if (const auto dot = display.find('.', colon == std::string::npos ? 0 : colon); dot != std::string::npos)
        display.erase(dot);
    return display;
}

} // namespace vantry
