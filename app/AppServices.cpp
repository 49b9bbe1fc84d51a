#include "app/AppServices.h"

#include "app/LaunchAtLoginController.h"
#include "rendering/WallpaperThemeReader.h"

#include <chrono>
#include <utility>

namespace vantry {

namespace {

// Determined once, because the running copy may be replaced later.
LoginItemServices loginItemServices() {
    namespace Controller = LaunchAtLoginController;
    const auto environment = Controller::currentEnvironment();
    if (!environment)
        return {.isEnabled = [] { return false; },
                .setEnabled = [error = environment.error()](bool) -> Result<void> { return std::unexpected(error); },
                .refreshIfEnabled = [] { return Result<void>{}; }};
    return {.isEnabled = [environment = *environment] { return Controller::isEnabled(environment); },
            .setEnabled = [environment =
                               *environment](bool enabled) { return Controller::setEnabled(environment, enabled); },
            .refreshIfEnabled = [environment = *environment] { return Controller::refreshIfEnabled(environment); }};
}

WallpaperServices wallpaperServices(std::shared_ptr<const WindowList> windows) {
    const auto sources = WallpaperThemeReader::systemSources(std::move(windows));
    return {.currentWallpaperURL =
                [sources](const Screen& screen) { return WallpaperThemeReader::currentWallpaperURL(screen, sources); },
            .identity = WallpaperThemeReader::identity,
            .palette =
                [sources](const Screen& screen, const std::filesystem::path& url, int colorCount) {
                    return WallpaperThemeReader::palette(url, colorCount, screen, sources);
                }};
}

} // namespace

AppServices makeAppServices(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<PreferencesStore> preferences,
                            std::shared_ptr<Workspace> workspace, std::shared_ptr<const WindowList> windows,
                            std::vector<std::string> arguments) {
    return {.system = hostSystem(),
            .mainQueue = std::move(mainQueue),
            .backgroundQueue = makeBackgroundQueue(),
            .preferences = std::move(preferences),
            .workspace = std::move(workspace),
            .now = [] { return SystemTime(std::chrono::system_clock::now()); },
            .readSystemVolume = StorageReader::readSystemVolume,
            .wallpaper = wallpaperServices(std::move(windows)),
            .loginItem = loginItemServices(),
            .makeCleanupServices = [] { return systemCleanupServices(); },
            .arguments = std::move(arguments)};
}

} // namespace vantry
