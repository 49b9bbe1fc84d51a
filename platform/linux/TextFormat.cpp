#include "platform/TextFormat.h"

#include "base/Format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <langinfo.h>
#include <locale.h>
#include <string_view>

namespace vantry {

namespace {

// The user's locale, loaded for each text: that is once a minute, and a changed locale needs no handling.
class UserLocale {
public:
    explicit UserLocale(int categories) : locale_(newlocale(categories, "", nullptr)) {}
    UserLocale(const UserLocale&) = delete;
    UserLocale& operator=(const UserLocale&) = delete;
    ~UserLocale() {
        if (locale_)
            freelocale(locale_);
    }

    [[nodiscard]] std::string item(nl_item item, const char* otherwise) const {
        const char* text = locale_ ? nl_langinfo_l(item, locale_) : nullptr;
        return text && *text ? text : otherwise;
    }
    [[nodiscard]] std::string time(const char* format, const std::tm& moment) const {
        std::array<char, 128> text{};
        const std::size_t length = locale_ ? strftime_l(text.data(), text.size(), format, &moment, locale_)
                                           : std::strftime(text.data(), text.size(), format, &moment);
        return {text.data(), length};
    }

private:
    locale_t locale_;
};

// `scaled` in tenths (one digit), hundredths (two) and so on, without padding zeros.
std::string decimalText(std::uint64_t scaled, int digits) {
    std::uint64_t scale = 1;
    for (int i = 0; i < digits; ++i)
        scale *= 10;
    std::string text = formatted("{}", scaled / scale);
    std::string fraction = digits > 0 ? formatted("{:0{}}", scaled % scale, digits) : "";
    while (fraction.ends_with('0'))
        fraction.pop_back();
    if (!fraction.empty())
        text += UserLocale(LC_NUMERIC_MASK).item(RADIXCHAR, ".") + fraction;
    return text;
}

struct ByteUnit {
    std::uint64_t size;
    int digits;
    std::string_view symbol;
};

constexpr std::array<ByteUnit, 6> byteUnits{{
    {1'000, 0, "KB"},
    {1'000'000, 1, "MB"},
    {1'000'000'000, 2, "GB"},
    {1'000'000'000'000, 2, "TB"},
    {1'000'000'000'000'000, 2, "PB"},
    {1'000'000'000'000'000'000, 2, "EB"},
}};

// The amount in steps of the unit's last shown digit. Halves round up.
std::uint64_t scaledAmount(std::uint64_t bytes, const ByteUnit& unit) {
    const std::uint64_t step = unit.size / (unit.digits == 0 ? 1 : unit.digits == 1 ? 10 : 100);
    return bytes / step + (bytes % step >= step - bytes % step ? 1 : 0);
}

std::string magnitudeText(std::uint64_t bytes, ByteUnits allowed) {
    if (allowed == ByteUnits::all && bytes < 1000)
        return formatted("{} {}", bytes, bytes == 1 ? "byte" : "bytes");
    const std::size_t first = allowed == ByteUnits::all ? 0 : 2;
    const std::size_t last = allowed == ByteUnits::all ? byteUnits.size() - 1 : 3;
    // 999.95 MB is shown as 1 GB.
    for (std::size_t i = first;; ++i) {
        const ByteUnit& unit = byteUnits[i];
        const std::uint64_t scaled = scaledAmount(bytes, unit);
        const std::uint64_t thousand = unit.digits == 0 ? 1'000 : unit.digits == 1 ? 10'000 : 100'000;
        if (i == last || scaled < thousand)
            return formatted("{} {}", decimalText(scaled, unit.digits), unit.symbol);
    }
}

// What is written before and after the figure of a percentage.
struct PercentSigns {
    std::string_view before;
    std::string_view after;
};

// Percent formats of Unicode CLDR 48. Languages and regions that are not listed write "47%".
PercentSigns percentSigns() {
    static constexpr std::array<std::string_view, 33> spaced{
        "be", "br", "ca", "ce", "cs", "cv",  "da", "de", "dsb", "en_DK", "es_ES", "fi", "fo", "fr", "gl", "hr", "hsb",
        "kl", "lb", "lt", "mk", "nb", "nds", "nn", "no", "ro",  "ru",    "se",    "sk", "sl", "sv", "tk", "tt"};
    static constexpr std::array<std::string_view, 3> unspaced{"de_CH", "de_LI", "fr_CH"};

    const std::string name = UserLocale(LC_NUMERIC_MASK).item(NL_LOCALE_NAME(LC_NUMERIC), "C");
    const auto region = std::string_view(name).substr(0, name.find_first_of(".@"));
    const auto language = region.substr(0, region.find('_'));
    const auto isListed = [&](const auto& list) {
        return std::ranges::find(list, language) != list.end() || std::ranges::find(list, region) != list.end();
    };
    if (language == "tr" || language == "ku")
        return {"%", ""};
    if (language == "eu")
        return {"%\u00a0", ""};
    return {"", isListed(spaced) && !isListed(unspaced) ? "\u00a0%" : "%"};
}

std::tm localTime(SystemTime time) {
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    std::tm moment = {};
    localtime_r(&seconds, &moment);
    return moment;
}

} // namespace

std::string byteCountText(std::int64_t bytes, ByteUnits units) {
    if (bytes == 0)
        return "0 B";
    const auto unsignedBytes = static_cast<std::uint64_t>(bytes);
    return bytes < 0 ? "-" + magnitudeText(0 - unsignedBytes, units) : magnitudeText(unsignedBytes, units);
}

std::optional<std::string> percentText(double fraction) {
    const double tenths = std::nearbyint(fraction * 1000);
    if (!std::isfinite(tenths) || std::abs(tenths) > 1e15)
        return std::nullopt;
    const auto [before, after] = percentSigns();
    return formatted("{}{}{}{}", tenths < 0 ? "-" : "", before,
                     decimalText(static_cast<std::uint64_t>(std::abs(tenths)), 1), after);
}

std::string shortTimeText(SystemTime time) {
    const UserLocale locale(LC_TIME_MASK);
    const std::string usual = locale.item(T_FMT, "%H:%M:%S");
    const bool twelveHours = usual.find("%r") != std::string::npos || usual.find("%I") != std::string::npos ||
                             usual.find("%l") != std::string::npos;
    return locale.time(twelveHours ? "%-I:%M %p" : "%H:%M", localTime(time));
}

std::string dateTimeText(SystemTime time) { return UserLocale(LC_TIME_MASK).time("%c", localTime(time)); }

std::string iso8601Text(SystemTime time) {
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    std::tm moment = {};
    gmtime_r(&seconds, &moment);
    return formatted("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", moment.tm_year + 1900, moment.tm_mon + 1, moment.tm_mday,
                     moment.tm_hour, moment.tm_min, moment.tm_sec);
}

} // namespace vantry
