#include "platform/linux/WallpaperSettings.h"

#include "platform/linux/SettingsText.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>
#include <vector>

namespace vantry {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        lines.push_back(trimmed(line));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

// The value in a line "key=value"; absent if the key is another one.
std::optional<std::string_view> valueOf(std::string_view line, std::string_view key) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || trimmed(line.substr(0, equals)) != key)
        return std::nullopt;
    return trimmed(line.substr(equals + 1));
}

std::string percentDecoded(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        int value = 0;
        const char* digits = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
            bytes.push_back(static_cast<char>(value));
            i += 2;
        } else {
            bytes.push_back(text[i]);
        }
    }
    return bytes;
}

// "~" and "$HOME" at the beginning stand for the home folder.
std::optional<std::filesystem::path> expandedPath(std::string_view text, const std::filesystem::path& home) {
    for (const std::string_view beginning : {"~/", "$HOME/", "${HOME}/"})
        if (text.starts_with(beginning))
            return home / text.substr(beginning.size());
    return absolutePath(text);
}

// Splits a command into words as a shell does. Variables and patterns are not expanded.
std::vector<std::string> shellWords(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char character = line[i];
        if (quote == '\'' || (quote == '"' && character != '\\')) {
            if (character == quote)
                quote = 0;
            else
                word.push_back(character);
        } else if (character == '\\' && i + 1 < line.size()) {
            word.push_back(line[++i]);
            inWord = true;
        } else if (quote == 0 && (character == '\'' || character == '"')) {
            quote = character;
            inWord = true;
        } else if (quote == 0 && blanks.find(character) != std::string_view::npos) {
            if (inWord)
                words.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else {
            word.push_back(character);
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(std::move(word));
    return words;
}

std::optional<std::filesystem::path> firstPath(std::string_view settings, std::string_view key) {
    for (const auto line : linesOf(settings))
        if (const auto value = valueOf(line, key))
            return absolutePath(*value);
    return std::nullopt;
}

// Collects the pictures of several screens and picks that of the requested screen, else the first one.
class PictureOfScreens {
public:
    explicit PictureOfScreens(std::string_view screen) : screen_(screen) {}

    void add(std::string_view screen, std::optional<std::filesystem::path> picture) {
        if (picture && screen == screen_)
            wanted_ = picture; // a later setting for the same screen wins
        if (picture && (!other_ || screen == "*" || screen.empty()))
            other_ = std::move(picture);
    }
    [[nodiscard]] std::optional<std::filesystem::path> picture() const { return wanted_ ? wanted_ : other_; }

private:
    std::string_view screen_;
    std::optional<std::filesystem::path> wanted_;
    std::optional<std::filesystem::path> other_;
};

} // namespace

std::optional<std::filesystem::path> pathOfUrl(std::string_view text) {
    constexpr std::string_view scheme = "file://";
    if (!text.starts_with(scheme))
        return absolutePath(text);
    text.remove_prefix(std::min(text.find('/', scheme.size()), text.size())); // skips the host name
    return absolutePath(percentDecoded(text));
}

std::optional<std::string> textOfGVariant(std::string_view printed) {
    printed = trimmed(printed.substr(0, printed.find('\n')));
    if (printed.size() < 2 || (printed.front() != '\'' && printed.front() != '"') || printed.back() != printed.front())
        return std::nullopt;
    std::string text;
    for (std::size_t i = 1; i + 1 < printed.size(); ++i) {
        if (printed[i] == '\\' && i + 2 < printed.size())
            ++i;
        text.push_back(printed[i]);
    }
    return text;
}

std::optional<std::filesystem::path> plasmaPicture(std::string_view settings) {
    // Each containment has a group that names its screen, and groups for its wallpapers.
    std::map<std::string, std::filesystem::path, std::less<>> pictures;
    std::map<std::string, std::string_view, std::less<>> screens;
    std::string_view group;
    for (const auto line : linesOf(settings)) {
        constexpr std::string_view containments = "[Containments][";
        if (line.starts_with('[')) {
            group = line.starts_with(containments) ? line.substr(containments.size()) : "";
            continue;
        }
        const auto number = group.substr(0, group.find(']'));
        if (number.empty())
            continue;
        if (const auto screen = valueOf(line, "lastScreen"); screen && group == std::string(number) + "]")
            screens.emplace(number, *screen);
        if (const auto image = valueOf(line, "Image"); image && group.ends_with("][Wallpaper][org.kde.image][General]"))
            if (auto picture = pathOfUrl(*image))
                pictures.emplace(number, std::move(*picture));
    }
    for (const auto& [number, picture] : pictures)
        if (const auto screen = screens.find(number); screen != screens.end() && screen->second == "0")
            return picture;
    return pictures.empty() ? std::nullopt : std::optional(pictures.begin()->second);
}

std::optional<std::filesystem::path> xfcePicture(std::string_view settings, std::string_view screen) {
    PictureOfScreens pictures(screen);
    std::string monitor;
    std::string pictured; // the monitor whose picture was found; its other workspaces are skipped
    for (auto at = settings.find('<'); at != std::string_view::npos; at = settings.find('<', at + 1)) {
        const auto tag = settings.substr(at, settings.find('>', at) - at);
        const auto name = attribute(tag, "name");
        constexpr std::string_view prefix = "monitor";
        if (name && name->starts_with(prefix))
            monitor = name->substr(prefix.size());
        const bool isPicture = name == "last-image" || name == "image-path";
        if (const auto value = isPicture && monitor != pictured ? attribute(tag, "value") : std::nullopt) {
            pictures.add(monitor, absolutePath(*value));
            pictured = monitor;
        }
    }
    return pictures.picture();
}

std::optional<std::filesystem::path> lxqtPicture(std::string_view settings) { return firstPath(settings, "Wallpaper"); }

std::optional<std::filesystem::path> swayPicture(std::string_view settings, std::string_view screen,
                                                 const std::filesystem::path& home) {
    PictureOfScreens pictures(screen);
    std::string blockOf; // the screen of the current block
    for (const auto line : linesOf(settings)) {
        auto words = shellWords(line);
        if (words.empty() || words[0].starts_with('#'))
            continue;
        if (words[0] == "output" && words.size() >= 3 && words.back() == "{") {
            blockOf = words[1];
            continue;
        }
        if (words[0] == "}")
            blockOf.clear();
        if (words[0] == "output" && words.size() >= 2)
            words.erase(words.begin());
        else if (!blockOf.empty())
            words.insert(words.begin(), blockOf);
        else
            continue;
        // NAME SETTING VALUE... SETTING VALUE...
        for (std::size_t i = 1; i + 1 < words.size(); ++i)
            if (words[i] == "bg" || words[i] == "background")
                pictures.add(words[0], expandedPath(words[i + 1], home));
    }
    return pictures.picture();
}

std::optional<std::filesystem::path> hyprlandPicture(std::string_view settings, std::string_view screen,
                                                     const std::filesystem::path& home) {
    PictureOfScreens pictures(screen);
    std::string_view blockOf; // a block names its screen before its picture
    for (auto line : linesOf(settings)) {
        line = trimmed(line.substr(0, line.find('#')));
        if (const auto monitor = valueOf(line, "monitor"))
            blockOf = *monitor;
        if (const auto path = valueOf(line, "path"))
            pictures.add(blockOf, expandedPath(*path, home));
        const auto value = valueOf(line, "wallpaper");
        const auto comma = value ? value->find(',') : std::string_view::npos;
        if (comma == std::string_view::npos)
            continue;
        auto path = trimmed(value->substr(comma + 1));
        for (const std::string_view how : {"contain:", "tile:", "cover:", "fill:"})
            if (path.starts_with(how))
                path = trimmed(path.substr(how.size()));
        pictures.add(trimmed(value->substr(0, comma)), expandedPath(path, home));
    }
    return pictures.picture();
}

std::optional<std::filesystem::path> fehPicture(std::string_view script) {
    for (const auto line : linesOf(script)) {
        const auto words = shellWords(line);
        if (words.empty() || std::filesystem::path(words[0]).filename() != "feh")
            continue;
        // Few options take values, and those are not absolute paths.
        for (std::size_t i = 1; i < words.size(); ++i)
            if (!words[i].starts_with('-'))
                if (auto picture = absolutePath(words[i]))
                    return picture;
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> nitrogenPicture(std::string_view settings) { return firstPath(settings, "file"); }

} // namespace vantry
