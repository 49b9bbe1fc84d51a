#pragma once

#include "base/Color.h"
#include "base/Result.h"
#include "base/Time.h"
#include "cleanup/window/CleanupServices.h"
#include "platform/BackgroundQueue.h"
#include "platform/HostSystem.h"
#include "platform/MainQueue.h"
#include "platform/PreferencesStore.h"
#include "platform/WindowList.h"
#include "platform/Workspace.h"
#include "storage/StorageReader.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// Where the wallpaper's colours come from. The functions block and run in the background.
struct WallpaperServices {
    /// The picture or video that a screen shows; absent when there is none to sample.
    std::function<std::optional<std::filesystem::path>(const Screen&)> currentWallpaperURL;
    /// Changes whenever the file changes.
    std::function<std::string(const std::filesystem::path&)> identity;
    /// Colours of the screen's picture, or of another source if that cannot be read; absent if none can.
    std::function<std::optional<std::vector<Rgba>>(const Screen&, const std::filesystem::path&, int colorCount)>
        palette;
};

/// The agent file that starts Ombrel at login (`LaunchAtLoginController`).
struct LoginItemServices {
    std::function<bool()> isEnabled;
    std::function<Result<void>(bool)> setEnabled;
    std::function<Result<void>()> refreshIfEnabled;
};

/// Everything that the application needs from the system.
struct AppServices {
    HostSystem system; ///< decides the wording of texts
    std::shared_ptr<MainQueue> mainQueue;
    std::shared_ptr<BackgroundQueue> backgroundQueue;
    std::shared_ptr<PreferencesStore> preferences;
    std::shared_ptr<Workspace> workspace;
    std::function<SystemTime()> now;
    std::function<StorageReadResult()> readSystemVolume; ///< called in the background
    WallpaperServices wallpaper;
    LoginItemServices loginItem;
    std::function<CleanupServices()> makeCleanupServices; ///< called on first use
    std::vector<std::string> arguments;                   ///< of the process, without argv[0]
};

/// The real services, completed by those that a front end provides. There are no defaults, so that no front end forgets
/// one. `windows` may be null if the system does not list windows.
[[nodiscard]] AppServices makeAppServices(std::shared_ptr<MainQueue> mainQueue,
                                          std::shared_ptr<PreferencesStore> preferences,
                                          std::shared_ptr<Workspace> workspace,
                                          std::shared_ptr<const WindowList> windows,
                                          std::vector<std::string> arguments);

} // namespace vantry
