#include "platform/DesktopPicture.h"

#include "base/AtomicFile.h"
#include "platform/ItemFacts.h"
#include "platform/SupervisedChild.h"
#include "platform/UserSession.h"
#include "platform/linux/BaseFolder.h"
#include "platform/linux/LinkTargets.h"
#include "platform/linux/WallpaperSettings.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <system_error>

namespace vantry {

namespace {

namespace fs = std::filesystem;

using Picture = std::optional<fs::path>;

constexpr std::size_t largestSettings = 4 << 20;
constexpr std::size_t largestSlideshow = 1 << 20;
constexpr std::chrono::seconds longestAnswer{1};

fs::path home() { return homeFolder().value_or("/"); }

fs::path configurationFolder() { return baseFolder("XDG_CONFIG_HOME", ".config").value_or("/.config"); }

std::string settingsIn(const fs::path& file) { return readSmallFile(file, largestSettings).value_or(std::string()); }

std::optional<std::string> desktopSetting(const std::string& schema, const std::string& key) {
    const auto printed =
        programOutput("/usr/bin/env", {"gsettings", "get", schema, key}, largestSettings, deadlineIn(longestAnswer));
    return printed ? textOfGVariant(*printed) : std::nullopt;
}

Picture gnomePicture() {
    const std::string schema = "org.gnome.desktop.background";
    const bool isDark = desktopSetting("org.gnome.desktop.interface", "color-scheme") == "prefer-dark";
    auto url = isDark ? desktopSetting(schema, "picture-uri-dark") : std::nullopt;
    if (!url || url->empty())
        url = desktopSetting(schema, "picture-uri");
    return url ? pathOfUrl(*url) : std::nullopt;
}

Picture cinnamonPicture() {
    const auto url = desktopSetting("org.cinnamon.desktop.background", "picture-uri");
    return url ? pathOfUrl(*url) : std::nullopt;
}

Picture matePicture() {
    const auto path = desktopSetting("org.mate.background", "picture-filename");
    return path ? pathOfUrl(*path) : std::nullopt;
}

// A folder holds one picture in several sizes, and each file is named after its size ("3840x2160.png").
fs::path largestIn(const fs::path& folder) {
    const auto width = [](const fs::path& file) { return std::atoi(file.filename().c_str()); };
    fs::path largest = folder;
    std::error_code error;
    fs::directory_iterator entry(folder / "contents/images", error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (largest == folder || width(entry->path()) > width(largest))
            largest = entry->path();
    return largest;
}

Picture kdePicture() {
    auto picture = plasmaPicture(settingsIn(configurationFolder() / "plasma-org.kde.plasma.desktop-appletsrc"));
    if (picture && folderAccess(*picture) == FolderAccess::readable)
        picture = largestIn(*picture);
    return picture;
}

Picture xfceDesktopPicture(const std::string& screen) {
    return xfcePicture(settingsIn(configurationFolder() / "xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml"),
                       screen);
}

// For window managers that leave the picture to a program of its own.
Picture pictureOfPlainWindowManagers() {
    if (auto picture = fehPicture(settingsIn(home() / ".fehbg")))
        return picture;
    return nitrogenPicture(settingsIn(configurationFolder() / "nitrogen/bg-saved.cfg"));
}

struct Desktop {
    std::string_view name; ///< in `XDG_CURRENT_DESKTOP`
    Picture (*picture)(const std::string& screen);
};

constexpr std::array<Desktop, 12> desktops{{
    {"GNOME", [](const std::string&) { return gnomePicture(); }},
    {"Unity", [](const std::string&) { return gnomePicture(); }},
    {"Budgie", [](const std::string&) { return gnomePicture(); }},
    {"Pantheon", [](const std::string&) { return gnomePicture(); }},
    {"X-Cinnamon", [](const std::string&) { return cinnamonPicture(); }},
    {"Cinnamon", [](const std::string&) { return cinnamonPicture(); }},
    {"MATE", [](const std::string&) { return matePicture(); }},
    {"KDE", [](const std::string&) { return kdePicture(); }},
    {"XFCE", xfceDesktopPicture},
    {"LXQt",
     [](const std::string&) {
         return lxqtPicture(settingsIn(configurationFolder() / "pcmanfm-qt/lxqt/settings.conf"));
     }},
    {"sway",
     [](const std::string& screen) {
         return swayPicture(settingsIn(configurationFolder() / "sway/config"), screen, home());
     }},
    {"Hyprland",
     [](const std::string& screen) {
         return hyprlandPicture(settingsIn(configurationFolder() / "hypr/hyprpaper.conf"), screen, home());
     }},
}};

bool isListed(std::string_view list, std::string_view name) {
    return (":" + std::string(list) + ":").find(":" + std::string(name) + ":") != std::string::npos;
}

Picture readable(Picture picture) {
    if (picture && picture->extension() == ".xml")
        picture =
            slideshowPicture(readSmallFile(*picture, largestSlideshow).value_or(std::string()), std::time(nullptr));
    const auto real = picture ? resolvedPath(*picture) : Result<fs::path>(std::unexpected(Error{}));
    return real && isReadableFile(*real) ? picture : std::nullopt;
}

} // namespace

std::optional<fs::path> movingWallpaper() { return std::nullopt; }

std::optional<fs::path> desktopPicture(const Screen& screen) {
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    const std::string_view running = variable ? variable : "";
    for (const auto& desktop : desktops)
        if (isListed(running, desktop.name))
            if (auto picture = readable(desktop.picture(screen.name)))
                return picture;
    return readable(pictureOfPlainWindowManagers());
}

// On Debian and its derivatives.
fs::path defaultDesktopPicture() { return "/usr/share/images/desktop-base/default"; }

} // namespace vantry
