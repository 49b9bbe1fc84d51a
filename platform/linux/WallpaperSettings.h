#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

// The picture that the settings of a desktop name for the screen called `screen`, or for another one if there is no
// setting for it. Pure; settings that cannot be parsed are skipped. The paths need not exist.

/// The path in a "file:" URL, or `text` itself if it is an absolute path; absent for anything else.
[[nodiscard]] std::optional<std::filesystem::path> pathOfUrl(std::string_view text);

/// The string that `gsettings get` printed, in quotes and with escapes as in GVariant's text format.
[[nodiscard]] std::optional<std::string> textOfGVariant(std::string_view printed);

/// The picture that a slideshow of GNOME or MATE (an XML file) shows at `now`, seconds since 1970. In the first half of
/// a transition it is the old picture, then the new one. Of several sizes the largest is taken. Absent for a slideshow
/// of more than a few thousand slides.
[[nodiscard]] std::optional<std::filesystem::path> slideshowPicture(std::string_view xml, std::int64_t now);

/// "plasma-org.kde.plasma.desktop-appletsrc". The result may be a folder with one picture in several sizes.
[[nodiscard]] std::optional<std::filesystem::path> plasmaPicture(std::string_view settings);

/// "xfce4-desktop.xml".
[[nodiscard]] std::optional<std::filesystem::path> xfcePicture(std::string_view settings, std::string_view screen);

/// "settings.conf" of pcmanfm-qt.
[[nodiscard]] std::optional<std::filesystem::path> lxqtPicture(std::string_view settings);

/// The configuration of sway.
[[nodiscard]] std::optional<std::filesystem::path> swayPicture(std::string_view settings, std::string_view screen,
                                                               const std::filesystem::path& home);

/// "hyprpaper.conf".
[[nodiscard]] std::optional<std::filesystem::path> hyprlandPicture(std::string_view settings, std::string_view screen,
                                                                   const std::filesystem::path& home);

/// "~/.fehbg", the last command line of feh.
[[nodiscard]] std::optional<std::filesystem::path> fehPicture(std::string_view script);

/// "bg-saved.cfg" of nitrogen.
[[nodiscard]] std::optional<std::filesystem::path> nitrogenPicture(std::string_view settings);

} // namespace vantry
