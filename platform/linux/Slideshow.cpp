#include "platform/linux/SettingsText.h"
#include "platform/linux/WallpaperSettings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <locale>
#include <sstream>
#include <utility>
#include <vector>

namespace vantry {

namespace {

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    return stream >> number ? std::optional(number) : std::nullopt;
}

// Keeps the largest of the sizes that a picture comes in.
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
    SizedPicture shown;  // or the old picture of a transition
    SizedPicture next;   // the new picture of a transition
};

class Slideshow {
public:
    // `text` follows the tag `tag` ("static", "/file", "size width=...").
    void read(std::string_view tag, std::string_view text) {
        const auto name = tag.substr(0, tag.find_first_of(" \t\r\n"));
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
    SizedPicture* picture_ = &slide_.shown; ///< the picture that a size belongs to
    std::vector<Slide> slides_;
};

} // namespace

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

} // namespace vantry
