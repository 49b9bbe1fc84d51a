#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

// What settings of desktops say of the picture on `screen`, a screen by its name, or of every other one where there is
// no setting for it. Pure; what cannot be understood is passed over. Paths are as they stand there: they need not
// exist.

/// An URL of a file, or a path; absent for anything else.
[[nodiscard]] std::optional<std::filesystem::path> pathOfUrl(std::string_view text);

/// What `gsettings get` prints: a text in quotes of the language of GVariant.
[[nodiscard]] std::optional<std::string> textOfGVariant(std::string_view printed);

/// The picture that a slideshow of GNOME or MATE (an XML file) shows at `now`, seconds since 1970. In the first half of
/// a transition that is the picture that goes, then the one that comes; of one in several sizes it is the largest.
/// Absent for a slideshow of more than a few thousand slides.
[[nodiscard]] std::optional<std::filesystem::path> slideshowPicture(std::string_view xml, std::int64_t now);

/// "plasma-org.kde.plasma.desktop-appletsrc". The picture may be a folder with one picture in several sizes.
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

/// "~/.fehbg", the command that feh was last given.
[[nodiscard]] std::optional<std::filesystem::path> fehPicture(std::string_view script);

/// "bg-saved.cfg" of nitrogen.
[[nodiscard]] std::optional<std::filesystem::path> nitrogenPicture(std::string_view settings);

} // namespace vantry
