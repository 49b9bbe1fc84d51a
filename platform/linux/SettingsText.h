#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vantry {

// For the parsers of desktop settings: plain text, and as much of XML as Xfce, GNOME and MATE need.

/// `text` without spaces, tabs and line breaks at either end.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// `text` with the five entities of XML replaced.
[[nodiscard]] inline std::string withoutEntities(std::string text) {
    constexpr std::pair<std::string_view, std::string_view> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (auto at = text.find(entity); at != std::string::npos; at = text.find(entity, at + character.size()))
            text.replace(at, entity.size(), character);
    return text;
}

/// The value of an attribute of the tag whose text is `tag`.
[[nodiscard]] inline std::optional<std::string> attribute(std::string_view tag, std::string_view name) {
    const std::string opening = " " + std::string(name) + "=\"";
    const auto begin = tag.find(opening);
    if (begin == std::string_view::npos)
        return std::nullopt;
    const auto rest = tag.substr(begin + opening.size());
    const auto end = rest.find('"');
    return end == std::string_view::npos ? std::nullopt
                                         : std::optional(withoutEntities(std::string(rest.substr(0, end))));
}

/// `text` as a path, unless it is relative.
[[nodiscard]] inline std::optional<std::filesystem::path> absolutePath(std::string_view text) {
    std::filesystem::path path(text);
    return path.is_absolute() ? std::optional(std::move(path)) : std::nullopt;
}

} // namespace vantry
