#pragma once

#include "app/AppServices.h"
#include "tests/support/FakeBackgroundQueue.h"
#include "tests/support/FakeCallLog.h"
#include "tests/support/FakeCleanupServices.h"
#include "tests/support/FakeMainQueue.h"
#include "tests/support/FakePreferencesStore.h"
#include "tests/support/FakeWorkspace.h"

#include <chrono>
#include <utility>

namespace vantry {

/// All services around the application. The clock shows `time`, and nothing that was submitted or posted runs before
/// the test says so. Outlives what was made with its `appServices()`.
struct FakeServices {
    FakeServices() { workspace->screenList = {{.name = "Built-in"}}; }
    FakeServices(const FakeServices&) = delete;
    FakeServices& operator=(const FakeServices&) = delete;

    std::shared_ptr<FakeCallLog> log = std::make_shared<FakeCallLog>();
    std::shared_ptr<FakeMainQueue> mainQueue = std::make_shared<FakeMainQueue>(log);
    std::shared_ptr<FakeBackgroundQueue> backgroundQueue = std::make_shared<FakeBackgroundQueue>(log);
    std::shared_ptr<FakePreferencesStore> preferences = std::make_shared<FakePreferencesStore>(log);
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>(log);

    SystemTime time{std::chrono::seconds(1'700'000'000)};

    /// What the next read of the volume finds.
    StorageReadResult volume = StorageSnapshot{.volumeName = "Data",
                                               .totalBytes = 500'000'000'000,
                                               .availableBytes = 200'000'000'000,
                                               .updatedAt = SystemTime(std::chrono::seconds(1'700'000'000))};

    std::optional<std::filesystem::path> wallpaper = "/pictures/lake.heic";
    std::string wallpaperIdentity = "lake, first version";
    std::optional<std::vector<Rgba>> palette = std::vector<Rgba>{{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}};

    bool agentFileExists = false;
    std::optional<Error> loginItemError; ///< why the agent file cannot be changed

    FakeCleanupServices cleanup{log};

    std::vector<std::string> arguments;

    [[nodiscard]] AppServices appServices() {
        return {.system = cleanup.system,
                .mainQueue = mainQueue,
                .backgroundQueue = backgroundQueue,
                .preferences = preferences,
                .workspace = workspace,
                .now = [this] { return time; },
                .readSystemVolume =
                    [this] {
                        log->add("volume.read");
                        return volume;
                    },
                .wallpaper = wallpaperServices(),
                .loginItem = loginItemServices(),
                .makeCleanupServices =
                    [this] {
                        log->add("cleanup.makeServices");
                        return cleanup.services();
                    },
                .arguments = arguments};
    }

    /// Runs both queues until nothing waits in either.
    void settle() const {
        while (backgroundQueue->runNext() || mainQueue->runNext()) {
        }
    }

private:
    WallpaperServices wallpaperServices() {
        return {.currentWallpaperURL =
                    [this](const Screen& screen) {
                        log->add("wallpaper.find " + screen.name);
                        return wallpaper;
                    },
                .identity =
                    [this](const std::filesystem::path& url) {
                        log->add("wallpaper.identity " + url.native());
                        return wallpaperIdentity;
                    },
                .palette =
                    [this](const Screen&, const std::filesystem::path& url, int colorCount) {
                        log->add("wallpaper.palette " + url.native() + " " + std::to_string(colorCount));
                        return palette;
                    }};
    }

    LoginItemServices loginItemServices() {
        return {.isEnabled =
                    [this] {
                        log->add("loginItem.isEnabled");
                        return agentFileExists;
                    },
                .setEnabled =
                    [this](bool enabled) {
                        log->add(enabled ? "loginItem.setEnabled true" : "loginItem.setEnabled false");
                        if (!loginItemError)
                            agentFileExists = enabled;
                        return loginItemResult();
                    },
                .refreshIfEnabled =
                    [this] {
                        log->add("loginItem.refreshIfEnabled");
                        return agentFileExists ? loginItemResult() : Result<void>{};
                    }};
    }

    [[nodiscard]] Result<void> loginItemResult() const {
        if (loginItemError)
            return std::unexpected(*loginItemError);
        return {};
    }
};

} // namespace vantry
