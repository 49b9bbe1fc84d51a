#include "app/AppServices.h"

#include "app/LaunchAtLoginController.h"

#include <chrono>

namespace vantry {

namespace {

// What is to be started at login is found out once: the running copy may be replaced meanwhile.
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

// No wallpaper is found, so the vivid colours stand in for its own.
WallpaperServices wallpaperServices() {
    return {.currentWallpaperURL = [](const Screen&) { return std::nullopt; },
            .identity = [](const std::filesystem::path&) { return std::string(); },
            .palette = [](const std::filesystem::path&, int) { return std::nullopt; }};
}

} // namespace

AppServices systemServices() {
    return {.backgroundQueue = makeBackgroundQueue(),
            .now = [] { return SystemTime(std::chrono::system_clock::now()); },
            .readSystemVolume = StorageReader::readSystemVolume,
            .wallpaper = wallpaperServices(),
            .loginItem = loginItemServices(),
            .makeCleanupServices = systemCleanupServices};
}

} // namespace vantry
