#include "platform/TrashRetention.h"

#include "platform/SupervisedChild.h"
#include "platform/linux/SettingsText.h"

#include <charconv>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vantry {

namespace {

// As `gsettings` prints it.
std::string privacySetting(const char* key, const std::shared_ptr<StopSwitch>& stopSwitch) {
    constexpr std::size_t longest = 4096;
    constexpr std::chrono::seconds longestAnswer{1};
    auto program = SupervisedChild::start("/usr/bin/env", {"gsettings", "get", "org.gnome.desktop.privacy", key},
                                          ChildOutput::pipe, stopSwitch);
    const auto printed = program ? program->outputToEnd(longest, deadlineIn(longestAnswer)) : std::nullopt;
    return std::string(trimmed(printed.value_or("")));
}

} // namespace

std::optional<std::chrono::days> trashRetention(const std::shared_ptr<StopSwitch>& stopSwitch) {
    constexpr std::string_view typeOfAge = "uint32 ";
    const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
    if (!std::string_view(desktop ? desktop : "").contains("GNOME") ||
        privacySetting("remove-old-trash-files", stopSwitch) != "true")
        return std::nullopt;
    const auto age = privacySetting("old-files-age", stopSwitch);
    unsigned days = 0;
    if (!age.starts_with(typeOfAge))
        return std::nullopt;
    const auto* end = age.data() + age.size();
    const auto parsed = std::from_chars(age.data() + typeOfAge.size(), end, days);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        return std::nullopt;
    return std::chrono::days(days);
}

} // namespace vantry
