#include "cleanup/model/GuidePlaces.h"

#include "base/StandardizedPath.h"
#include "platform/UserSession.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace vantry {

namespace {

using namespace std::string_view_literals;

constexpr auto variableBegin = "${"sv;
constexpr auto defaultBegin = ":-"sv;

// Where the brace that is open at the beginning of `text` is closed.
std::size_t closingBrace(std::string_view text) {
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        depth += text[i] == '{' ? 1 : 0;
        if (text[i] == '}' && --depth == 0)
            return i;
    }
    return text.size();
}

// Whether a folder below it can be a program's own. The home folder may be named by a link that leads to it.
bool isMeant(const std::string& folder, const std::filesystem::path& home) {
    if (!folder.starts_with('/'))
        return false;
    const auto standardized = standardizedPath(folder);
    return std::ranges::none_of(std::array{home, homeFolder().value_or(home)}, [&](const auto& other) {
        return std::ranges::mismatch(standardized, other).in1 == standardized.end();
    });
}

std::string expanded(std::string_view pattern, const std::filesystem::path& home) {
    if (pattern.starts_with('~'))
        return home.native() + std::string(pattern.substr(1));
    if (!pattern.starts_with(variableBegin))
        return std::string(pattern);
    const auto end = closingBrace(pattern);
    const auto inside = pattern.substr(variableBegin.size(), end - variableBegin.size());
    const auto colon = inside.find(defaultBegin);
    const std::string name(inside.substr(0, colon));
    const char* value = std::getenv(name.c_str());
    std::string folder = value ? value : "";
    if (name == "GOPATH" || name == "CONDA_PKGS_DIRS")
        folder.resize(std::min(folder.find_first_of(":,"), folder.size()));
    return (isMeant(folder, home) ? folder : expanded(inside.substr(colon + defaultBegin.size()), home)) +
           std::string(pattern.substr(end + 1));
}

} // namespace

std::filesystem::path expandedPlace(std::string_view pattern, const std::filesystem::path& home) {
    return standardizedPath(expanded(pattern, home));
}

bool matchesPattern(std::string_view name, std::string_view pattern) {
    const auto star = pattern.find('*');
    if (star == std::string_view::npos)
        return name == pattern;
    if (!name.starts_with(pattern.substr(0, star)))
        return false;
    for (std::size_t begin = star; begin <= name.size(); ++begin)
        if (matchesPattern(name.substr(begin), pattern.substr(star + 1)))
            return true;
    return false;
}

std::span<const std::string_view> cachesOfOthers() {
    static constexpr std::array names{// measured by themselves
                                      "JetBrains"sv, "ccache"sv, "chromium"sv, "go-build"sv, "google-chrome"sv,
                                      "huggingface"sv, "mozilla"sv, "pip"sv, "thumbnails"sv, "uv"sv,
                                      // installed programs and virtual environments
                                      "Cypress"sv, "ms-playwright"sv, "pre-commit"sv, "puppeteer"sv, "pypoetry"sv,
                                      // files that are still to be uploaded
                                      "rclone"sv,
                                      // a mount, and what crashes or is rebuilt while it is in use
                                      "doc"sv, "evolution"sv, "ibus"sv, "kwin"sv, "mesa_shader_cache*"sv,
                                      "plasmashell"sv, "qtshadercache-*"sv};
    return names;
}

} // namespace vantry
