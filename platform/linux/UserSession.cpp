#include "platform/UserSession.h"

#include "base/Format.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace

Result<std::filesystem::path> userRuntimeFolder() {
    if (const auto folder = environment("XDG_RUNTIME_DIR"); folder.starts_with('/') && privateFolder(folder))
        return folder;
    const std::filesystem::path folder = formatted("/tmp/ombrel-{}", getuid());
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        return std::unexpected(errorFromErrno(errno, folder.native()));
    return privateFolder(folder);
}

std::filesystem::path temporaryFolder() {
    const auto folder = environment("TMPDIR");
    return folder.starts_with('/') ? folder : "/tmp";
}

std::string graphicalSessionName() {
    auto display = environment("DISPLAY");
    if (display.empty())
        return environment("WAYLAND_DISPLAY");
    // ":0.0" is screen 0 of display ":0".
    const auto colon = display.rfind(':');
    if (const auto dot = display.find('.', colon == std::string::npos ? 0 : colon); dot != std::string::npos)
        display.erase(dot);
    return display;
}

} // namespace vantry
