#include "platform/linux/WallpaperSettings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ctime>
#include <locale>
#include <map>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

namespace vantry {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        lines.push_back(trimmed(line));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

// The value behind "key=", if `line` is one of these.
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

std::optional<std::filesystem::path> absolutePath(std::string_view text) {
    std::filesystem::path path(text);
    return path.is_absolute() ? std::optional(std::move(path)) : std::nullopt;
}

// "~" and "$HOME" at the beginning stand for the home folder.
std::optional<std::filesystem::path> expandedPath(std::string_view text, const std::filesystem::path& home) {
    for (const std::string_view beginning : {"~/", "$HOME/", "${HOME}/"})
        if (text.starts_with(beginning))
            return home / text.substr(beginning.size());
    return absolutePath(text);
}

// The words of a command as a shell takes them apart. What a shell would replace stays as it is.
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

std::string withoutEntities(std::string text) {
    constexpr std::pair<std::string_view, std::string_view> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (auto at = text.find(entity); at != std::string::npos; at = text.find(entity, at + character.size()))
            text.replace(at, entity.size(), character);
    return text;
}

// The value of an attribute of an XML tag.
std::optional<std::string> attribute(std::string_view tag, std::string_view name) {
    const std::string opening = " " + std::string(name) + "=\"";
    const auto begin = tag.find(opening);
    if (begin == std::string_view::npos)
        return std::nullopt;
    const auto rest = tag.substr(begin + opening.size());
    const auto end = rest.find('"');
    return end == std::string_view::npos ? std::nullopt
                                         : std::optional(withoutEntities(std::string(rest.substr(0, end))));
}

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    return stream >> number ? std::optional(number) : std::nullopt;
}

// A picture in one size or in several.
struct SizedPicture {
    std::optional<std::filesystem::path> path;
    double area = -1;

    void add(std::string_view text, double itsArea) {
        auto candidate = itsArea > area ? absolutePath(withoutEntities(std::string(text))) : std::nullopt;
        if (candidate) {
            path = std::move(candidate);
            area = itsArea;
        }
    }
};

struct Slide {
    double duration = 0; // seconds
    SizedPicture shown;  // or the one that a transition starts with
    SizedPicture next;   // of a transition
};

class Slideshow {
public:
    // Takes the text behind a tag ("static", "/file", "size width=...").
    void read(std::string_view tag, std::string_view text) {
        const auto name = tag.substr(0, tag.find_first_of(blanks));
        if (name == "static" || name == "transition")
            slide_ = {};
        else if (name == "/static" || name == "/transition")
            slides_.push_back(std::exchange(slide_, {}));
        else if (name == "duration")
            slide_.duration = std::clamp(numberOf<double>(text).value_or(0), 0.0, longestDuration);
        else if (name == "file" || name == "from" || name == "to")
            picture_ = name == "to" ? &slide_.next : &slide_.shown;
        else if (const auto part = std::ranges::find(startParts, name, &StartPart::name); part != startParts.end())
            start_.*(part->member) = std::clamp(numberOf<int>(text).value_or(0), 0, latestYear);
        if (name == "file" || name == "from" || name == "to" || name == "size")
            picture_->add(text, numberOf<double>(attribute(tag, "width").value_or("0")).value_or(0) *
                                    numberOf<double>(attribute(tag, "height").value_or("0")).value_or(0));
    }

    [[nodiscard]] std::size_t size() const { return slides_.size(); }

    [[nodiscard]] std::optional<std::filesystem::path> pictureAt(std::int64_t now) const {
        if (slides_.empty())
            return std::nullopt;
        double total = 0;
        for (const auto& slide : slides_)
            total += slide.duration;
        double elapsed = total > 0 ? std::fmod(static_cast<double>(now - startTime()), total) : 0;
        if (elapsed < 0)
            elapsed += total;
        for (const auto& slide : slides_) {
            if (elapsed < slide.duration)
                return elapsed >= slide.duration / 2 && slide.next.path ? slide.next.path : slide.shown.path;
            elapsed -= slide.duration;
        }
        return slides_.back().shown.path;
    }

private:
    static constexpr double longestDuration = 1e9;
    static constexpr int latestYear = 9999;

    struct StartPart {
        std::string_view name;
        int std::tm::*member;
    };
    static constexpr std::array<StartPart, 6> startParts{{{"year", &std::tm::tm_year},
                                                          {"month", &std::tm::tm_mon},
                                                          {"day", &std::tm::tm_mday},
                                                          {"hour", &std::tm::tm_hour},
                                                          {"minute", &std::tm::tm_min},
                                                          {"second", &std::tm::tm_sec}}};

    [[nodiscard]] std::int64_t startTime() const {
        if (start_.tm_year < 1970)
            return 0;
        std::tm start = start_;
        start.tm_year -= 1900;
        start.tm_mon -= 1;
        start.tm_isdst = -1;
        return std::mktime(&start);
    }

    std::tm start_{};
    Slide slide_;
    SizedPicture* picture_ = &slide_.shown; ///< what a size belongs to
    std::vector<Slide> slides_;
};

// The settings of one picture of several screens: the one that was asked for, else the first.
class PictureOfScreens {
public:
    explicit PictureOfScreens(std::string_view screen) : screen_(screen) {}

    void add(std::string_view screen, std::optional<std::filesystem::path> picture) {
        if (picture && screen == screen_)
            wanted_ = picture; // a later setting of one screen replaces an earlier one
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
    text.remove_prefix(std::min(text.find('/', scheme.size()), text.size())); // and the name of this machine
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

std::optional<std::filesystem::path> slideshowPicture(std::string_view xml, std::int64_t now) {
    constexpr std::size_t mostSlides = 4096;
    constexpr std::string_view comment = "!--";
    Slideshow slideshow;
    for (auto at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at)) {
        const auto rest = xml.substr(at + 1);
        const bool isComment = rest.starts_with(comment);
        const auto end = rest.find(isComment ? "-->" : ">");
        if (end == std::string_view::npos || slideshow.size() > mostSlides)
            return std::nullopt;
        const auto behind = rest.substr(rest.find('>', end) + 1);
        if (!isComment)
            slideshow.read(rest.substr(0, end), trimmed(behind.substr(0, behind.find('<'))));
        at = xml.size() - behind.size();
    }
    return slideshow.pictureAt(now);
}

std::optional<std::filesystem::path> plasmaPicture(std::string_view settings) {
    // Each containment has a group of its own, which says on which screen it is, and groups for its wallpapers.
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
    std::string pictured; // the monitor whose first picture was found, that of its first workspace
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

std::optional<std::filesystem::path> lxqtPicture(std::string_view settings) {
    for (const auto line : linesOf(settings))
        if (const auto value = valueOf(line, "Wallpaper"))
            return absolutePath(*value);
    return std::nullopt;
}

std::optional<std::filesystem::path> swayPicture(std::string_view settings, std::string_view screen,
                                                 const std::filesystem::path& home) {
    PictureOfScreens pictures(screen);
    std::string blockOf; // the screen of the block that the lines are in
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
        // Options have no values but for some that are no paths.
        for (std::size_t i = 1; i < words.size(); ++i)
            if (!words[i].starts_with('-'))
                if (auto picture = absolutePath(words[i]))
                    return picture;
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> nitrogenPicture(std::string_view settings) {
    for (const auto line : linesOf(settings))
        if (const auto file = valueOf(line, "file"))
            return absolutePath(*file);
    return std::nullopt;
}

} // namespace vantry
