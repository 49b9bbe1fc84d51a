#include "platform/LoginItem.h"

#include "base/Utf8.h"
#include "platform/UserSession.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace vantry {

namespace {

// An argument of "Exec": quoted, the shell's special characters escaped inside the quotes, "%" doubled, and then all of
// it written as a string value, in which a backslash is escaped once more.
std::string execArgument(std::string_view argument) {
    std::string quoted = "\"";
    for (const char character : argument) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos)
            quoted += '\\';
        if (character == '%')
            quoted += '%';
        quoted += character;
    }
    quoted += '"';
    std::string value;
    for (const char character : quoted) {
        if (character == '\\')
            value += '\\';
        value += character;
    }
    return value;
}

} // namespace

Result<std::filesystem::path> runningApplicationPath() {
    constexpr std::string_view deletedMark = " (deleted)";
    std::error_code failure;
    auto path = std::filesystem::read_symlink("/proc/self/exe", failure).native();
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), "/proc/self/exe"));
    // After an update the new file stands where the running one stood.
    if (path.ends_with(deletedMark) && !std::filesystem::exists(path, failure))
        path.resize(path.size() - deletedMark.size());
    return path;
}

std::optional<std::filesystem::path> autostartFile(const std::string& label) {
    const auto name = label + ".desktop";
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    if (configured && *configured == '/')
        return std::filesystem::path(configured) / "autostart" / name;
    const auto home = homeFolder();
    return home ? std::optional(*home / ".config" / "autostart" / name) : std::nullopt;
}

Result<std::string> autostartEntry(const std::string& label, const std::filesystem::path& application) {
    const std::string& path = application.native();
    const bool printable = isUtf8(path) && std::ranges::none_of(path, [](char character) {
                               return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
                           });
    if (!printable)
        return std::unexpected(
            Error{ErrorKind::invalid, "The path of the application holds characters that a desktop entry cannot."});
    return fmt::format("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Ombrel\n"
                       "Comment=Shows how full the startup volume is\n"
                       "Exec={}\n"
                       "Icon={}\n"
                       "Terminal=false\n"
                       "StartupNotify=false\n",
                       execArgument(path), label);
}

} // namespace vantry
