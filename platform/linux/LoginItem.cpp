#include "platform/LoginItem.h"

#include "base/Format.h"
#include "base/Utf8.h"
#include "platform/linux/BaseFolder.h"
#include "platform/linux/SettingsText.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <ranges>
#include <string_view>
#include <unistd.h>

namespace vantry {

namespace {

// An argument of "Exec": in quotes, with the shell's special characters escaped and "%" doubled. Since "Exec" is a
// string value, each backslash is then escaped once more.
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

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (const auto part : std::views::split(text, separator))
        if (!part.empty())
            parts.emplace_back(part.begin(), part.end());
    return parts;
}

// The keys of the group "Desktop Entry".
std::map<std::string_view, std::string_view> desktopEntryKeys(std::string_view entry) {
    std::map<std::string_view, std::string_view> keys;
    bool inGroup = false;
    for (const auto part : split(entry, '\n')) {
        const auto line = trimmed(part);
        if (line.starts_with('['))
            inGroup = line == "[Desktop Entry]";
        else if (const auto equals = line.find('='); inGroup && !line.starts_with('#') && equals != line.npos)
            keys.emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return keys;
}

// Whether one of `names` names the running desktop.
bool namesCurrentDesktop(std::string_view names) {
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    const auto current = split(desktops ? desktops : "", ':');
    return std::ranges::any_of(split(names, ';'),
                               [&](std::string_view name) { return std::ranges::count(current, name) > 0; });
}

bool canBeRun(std::string_view program) {
    if (program.contains('/'))
        return isApplication(program);
    const char* folders = std::getenv("PATH");
    return std::ranges::any_of(split(folders ? folders : "", ':'), [&](std::string_view folder) {
        return isApplication(std::filesystem::path(folder) / program);
    });
}

} // namespace

Result<std::filesystem::path> runningApplicationPath() {
    constexpr std::string_view deletedMark = " (deleted)";
    std::error_code failure;
    auto path = std::filesystem::read_symlink("/proc/self/exe", failure).native();
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), "/proc/self/exe"));
    // After an update the new file has replaced the running one.
    if (path.ends_with(deletedMark) && !std::filesystem::exists(path, failure))
        path.resize(path.size() - deletedMark.size());
    return path;
}

std::vector<std::filesystem::path> installedApplicationPaths() {
    return {"/usr/local/bin/ombrel", "/usr/bin/ombrel"}; // in the usual order of PATH
}

bool isApplication(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

std::optional<std::filesystem::path> autostartFile(const std::string& label) {
    const auto name = label + ".desktop";
    const auto folder = baseFolder("XDG_CONFIG_HOME", ".config");
    return folder ? std::optional(*folder / "autostart" / name) : std::nullopt;
}

Result<std::string> autostartEntry(const std::string& label, const std::filesystem::path& application) {
    const std::string& path = application.native();
    const bool printable = isUtf8(path) && std::ranges::none_of(path, [](char character) {
                               return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
                           });
    if (!printable)
        return std::unexpected(
            Error{ErrorKind::invalid, "The path of the application holds characters that a desktop entry cannot."});
    return formatted("[Desktop Entry]\n"
                     "Type=Application\n"
                     "Name=Ombrel\n"
                     "Comment=Shows how full the startup volume is\n"
                     "Exec={}\n"
                     "Icon={}\n"
                     "Terminal=false\n"
                     "StartupNotify=false\n",
                     execArgument(path), label);
}

bool autostartEntryIsHonoured(std::string_view entry) {
    const auto keys = desktopEntryKeys(entry);
    const auto value = [&](std::string_view key) {
        const auto found = keys.find(key);
        return found == keys.end() ? std::nullopt : std::optional(found->second);
    };
    const auto only = value("OnlyShowIn");
    const auto tried = value("TryExec");
    return !value("Exec").value_or("").empty() && value("Hidden") != "true" &&
           value("X-GNOME-Autostart-enabled") != "false" && value("X-MATE-Autostart-enabled") != "false" &&
           (!only || namesCurrentDesktop(*only)) && !namesCurrentDesktop(value("NotShowIn").value_or("")) &&
           (!tried || canBeRun(*tried));
}

bool autostartEntryStarts(std::string_view entry, const std::filesystem::path& application) {
    const auto keys = desktopEntryKeys(entry);
    const auto exec = keys.find("Exec");
    return exec != keys.end() &&
           (exec->second == application.native() || exec->second == execArgument(application.native()));
}

} // namespace vantry
