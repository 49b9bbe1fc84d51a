#include "platform/linux/WallpaperSettings.h"
#include "tests/fuzz/Targets.h"

#include <algorithm>

namespace vantry {

namespace {

// The first line is the name of a screen.
void readWallpaperSettings(std::string_view bytes) {
    const auto screen = bytes.substr(0, bytes.find('\n'));
    const auto settings = bytes.substr(std::min(screen.size() + 1, bytes.size()));
    for (const auto& picture :
         {pathOfUrl(settings), plasmaPicture(settings), xfcePicture(settings, screen), lxqtPicture(settings),
          swayPicture(settings, screen, "/home"), hyprlandPicture(settings, screen, "/home"), fehPicture(settings),
          nitrogenPicture(settings), slideshowPicture(settings, 1'700'000'000)})
        requireThat(!picture || picture->is_absolute(), "a picture has an absolute path");
    const auto text = textOfGVariant(settings);
    requireThat(!text || text->size() + 2 <= settings.size(), "a text is no longer than what is printed of it");
}

} // namespace

std::vector<FuzzTarget> systemFuzzTargets() { return {{"wallpaper-settings", readWallpaperSettings}}; }

} // namespace vantry
