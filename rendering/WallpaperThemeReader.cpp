#include "rendering/WallpaperThemeReader.h"

#include "base/Format.h"
#include "base/Text.h"
#include "platform/DesktopPicture.h"
#include "platform/OpenFiles.h"
#include "platform/Picture.h"
#include "rendering/WallpaperPalette.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace vantry::WallpaperThemeReader {

namespace {

constexpr double leastCover = 0.8; // of the screen's width and of its height

constexpr std::array<std::string_view, 12> mediaExtensions{"gif", "heic", "heif", "jpeg", "jpg",  "m4v",
                                                           "mov", "mp4",  "png",  "tif",  "tiff", "webp"};
constexpr std::array<std::string_view, 6> ownersOfOtherWindows{"Dock",      "Finder",        "Notification Center",
                                                               "Wallpaper", "Window Server", "WindowManager"};

std::string lowercaseExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().native();
    extension.erase(0, 1);
    return asciiLowercase(std::move(extension));
}

template <std::size_t Count>
bool contains(const std::array<std::string_view, Count>& texts, std::string_view text) {
    return std::ranges::find(texts, text) != texts.end();
}

std::optional<std::filesystem::path> activeWallpaperRendererMediaURL(const Screen& screen, const Sources& sources) {
    if (!sources.windows)
        return std::nullopt;
    for (const int process : rendererProcesses(sources.windows->onScreenWindows(), screen.frame))
        if (auto media = mediaAmong(sources.openFiles(process)))
            return media;
    return std::nullopt;
}

} // namespace

Sources systemSources(std::shared_ptr<const WindowList> windows) {
    return {.windows = std::move(windows),
            .openFiles = openFilesOfProcess,
            .movingWallpaper = movingWallpaper,
            .desktopPicture = desktopPicture,
            .defaultPicture = defaultDesktopPicture(),
            .palette = [](const std::filesystem::path& url, int colorCount) { return palette(url, colorCount); }};
}

std::filesystem::path currentWallpaperURL(const Screen& screen, const Sources& sources) {
    if (auto media = activeWallpaperRendererMediaURL(screen, sources))
        return *media;
    if (auto media = sources.movingWallpaper())
        return *media;
    return sources.desktopPicture(screen).value_or(sources.defaultPicture);
}

std::vector<int> rendererProcesses(std::span<const WindowInfo> windows, const Rect& screenFrame) {
    std::vector<WindowInfo> covering;
    std::ranges::copy_if(windows, std::back_inserter(covering), [&](const WindowInfo& window) {
        return !contains(ownersOfOtherWindows, window.ownerName) &&
               window.bounds.width >= screenFrame.width * leastCover &&
               window.bounds.height >= screenFrame.height * leastCover;
    });
    std::ranges::stable_sort(covering, std::ranges::greater(), &WindowInfo::layer);
    std::vector<int> processes;
    std::ranges::transform(covering, std::back_inserter(processes), &WindowInfo::ownerProcess);
    return processes;
}

std::optional<std::filesystem::path> mediaAmong(std::span<const std::filesystem::path> openFiles) {
    for (const auto& file : openFiles) {
        std::error_code ignored;
        if (file.native().find(".app/Contents/") == std::string::npos &&
            contains(mediaExtensions, lowercaseExtension(file)) && std::filesystem::exists(file, ignored))
            return file;
    }
    return std::nullopt;
}

std::string identity(const std::filesystem::path& url) {
    std::error_code error;
    const auto modified = std::filesystem::last_write_time(url, error);
    const auto since1970 = std::chrono::file_clock::to_sys(modified).time_since_epoch();
    const double seconds = error ? 0 : std::chrono::duration<double>(since1970).count();
    const auto size = std::filesystem::file_size(url, error);
    return formatted("{}|{}|{}", url.native(), seconds, error ? 0 : size);
}

std::optional<std::vector<Rgba>> palette(const std::filesystem::path& url, int colorCount) {
    const auto pixels = readPicture(url);
    return pixels ? std::optional(paletteOfPixels(*pixels, colorCount)) : std::nullopt;
}

std::optional<std::vector<Rgba>> palette(const std::filesystem::path& url, int colorCount, const Screen& screen,
                                         const Sources& sources) {
    auto colors = sources.palette(url, colorCount);
    const std::array<std::function<std::optional<std::filesystem::path>()>, 3> next{
        sources.movingWallpaper, [&] { return sources.desktopPicture(screen); },
        [&] { return std::optional(sources.defaultPicture); }};
    for (const auto& source : next)
        if (const auto other = colors ? std::nullopt : source(); other && *other != url)
            colors = sources.palette(*other, colorCount);
    return colors;
}

} // namespace vantry::WallpaperThemeReader
