#include "platform/linux/UserFolders.h"

#include "base/AtomicFile.h"
#include "base/StandardizedPath.h"
#include "platform/UserSession.h"
#include "platform/linux/LinkTargets.h"
#include "platform/linux/SettingsText.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace vantry {

namespace {

constexpr std::string_view homeVariable = "$HOME";

// The text between quotation marks, with the characters behind backslashes.
std::optional<std::string> unquoted(std::string_view text) {
    if (!text.starts_with('"'))
        return std::nullopt;
    std::string value;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"')
            return value;
        if (text[i] == '\\' && ++i == text.size())
            break;
        value += text[i];
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> folderNamed(std::string_view quoted, const std::filesystem::path& home) {
    auto value = unquoted(quoted);
    if (!value)
        return std::nullopt;
    // Only a variable that is not behind a backslash is one.
    if (quoted.substr(1).starts_with(homeVariable)) {
        value->erase(0, homeVariable.size());
        if (!value->empty() && !value->starts_with('/'))
            return std::nullopt;
        value->insert(0, home.native());
    }
    return value->starts_with('/') ? std::optional(standardizedPath(*value)) : std::nullopt;
}

// What xdg-user-dirs makes when nothing else is said, in English.
std::map<std::string, std::filesystem::path> usualFolders(const std::filesystem::path& home) {
    return {{"XDG_DESKTOP_DIR", home / "Desktop"},    {"XDG_DOCUMENTS_DIR", home / "Documents"},
            {"XDG_MUSIC_DIR", home / "Music"},        {"XDG_PICTURES_DIR", home / "Pictures"},
            {"XDG_PUBLICSHARE_DIR", home / "Public"}, {"XDG_TEMPLATES_DIR", home / "Templates"},
            {"XDG_VIDEOS_DIR", home / "Videos"}};
}

bool isOrContains(const std::filesystem::path& folder, const std::filesystem::path& other) {
    const auto [end, ignored] = std::ranges::mismatch(folder, other);
    return end == folder.end();
}

// Where a folder is, as far as it is there.
std::filesystem::path withoutLinks(const std::filesystem::path& folder) {
    const auto resolved = resolvedPath(folder);
    return resolved || !folder.has_relative_path() ? resolved.value_or(folder)
                                                   : withoutLinks(folder.parent_path()) / folder.filename();
}

} // namespace

std::map<std::string, std::filesystem::path> userFolders(std::string_view text, const std::filesystem::path& home) {
    std::map<std::string, std::filesystem::path> folders;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto line = text.substr(begin, text.find('\n', begin) - begin);
        begin += line.size() + 1;
        const auto equals = line.find('=');
        const auto name = trimmed(line.substr(0, equals));
        if (equals == std::string_view::npos || !name.starts_with("XDG_"))
            continue;
        if (auto folder = folderNamed(trimmed(line.substr(equals + 1)), home))
            folders.insert_or_assign(std::string(name), std::move(*folder));
    }
    return folders;
}

std::filesystem::path downloadFolder(std::string_view text, const std::filesystem::path& home) {
    const auto standardizedHome = standardizedPath(home);
    auto folders = userFolders(text, standardizedHome);
    const auto named = folders.extract("XDG_DOWNLOAD_DIR");
    folders.merge(usualFolders(standardizedHome));
    folders.emplace("", standardizedHome);
    if (named.empty() || std::ranges::any_of(folders, [&, real = withoutLinks(named.mapped())](const auto& other) {
            return isOrContains(named.mapped(), other.second) || isOrContains(real, withoutLinks(other.second));
        }))
        return standardizedHome / "Downloads";
    return named.mapped();
}

std::filesystem::path downloadFolder(const std::filesystem::path& home) {
    constexpr std::size_t largest = 1 << 20;
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    const auto folder = configured && *configured == '/' ? std::filesystem::path(configured) : home / ".config";
    return downloadFolder(readSmallFile(folder / "user-dirs.dirs", largest).value_or(std::string()), home);
}

} // namespace vantry
