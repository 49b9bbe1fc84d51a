#include "app/AppDelegate.h"

#include "app/AppPreferences.h"
#include "rendering/WallpaperThemeReader.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantry {

namespace {

constexpr int wallpaperColorCount = 7;
constexpr std::chrono::seconds refreshInterval{60};
constexpr std::chrono::seconds wallpaperPaletteLifetime{600};

std::vector<Rgba> fallbackPalette() {
    return {WallpaperThemeReader::fallbackPalette.begin(), WallpaperThemeReader::fallbackPalette.end()};
}

// The first screen of the list, else the main one.
std::optional<Screen> wallpaperScreen(const Workspace& workspace) {
    const auto screens = workspace.screens();
    return screens.empty() ? workspace.mainScreen() : std::optional(screens.front());
}

} // namespace

AppDelegate::AppDelegate(Shell& shell, AppServices services)
    : shell_(shell),
      services_(std::move(services)),
      popoverController_(services_.system) {}

template <class Work, class Finish>
void AppDelegate::inBackground(const Work& work, const Finish& finish) {
    services_.backgroundQueue->submit(QualityOfService::utility,
                                      [weak = weak_from_this(), queue = services_.mainQueue, work, finish] {
                                          if (weak.expired())
                                              return;
                                          queue->post([weak, finish, result = work()] {
                                              if (const auto self = weak.lock())
                                                  finish(*self, result);
                                          });
                                      });
}

void AppDelegate::applicationDidFinishLaunching() {
    shell_.becomeAccessory();
    std::ignore = services_.loginItem.refreshIfEnabled(); // the user did not ask for this, so a failure is not shown
    configurePopover();
    render();
    refreshStorage();
    refreshWallpaperTheme(true);

    const auto call = [weak = weak_from_this()](void (AppDelegate::*action)()) {
        return [weak, action] { callIfAlive(weak, action); };
    };
    if (std::ranges::count(services_.arguments, "--show-cleanup") > 0)
        services_.mainQueue->post(call(&AppDelegate::showCleanupWindow));
    timer_ = services_.mainQueue->repeatEvery(refreshInterval, call(&AppDelegate::timerFired));
    wakeObserver_ = services_.workspace->observeWake(call(&AppDelegate::workspaceDidWake));
}

void AppDelegate::applicationWillTerminate() {
    timer_.reset();
    wakeObserver_.reset();
    if (cleanupWindowController_)
        cleanupWindowController_->applicationWillTerminate();
    cleanupWindowController_.reset();
}

void AppDelegate::statusItemPressed(std::optional<MouseEvent> currentEvent) {
    if (!shell_.statusItemHasButton())
        return;
    if (currentEvent == MouseEvent::rightMouseUp)
        showContextMenu();
    else if (shell_.popoverIsShown())
        shell_.closePopover();
    else
        showPopover();
}

void AppDelegate::timerFired() {
    refreshStorage();
    refreshWallpaperTheme(false);
}

void AppDelegate::workspaceDidWake() {
    refreshStorage();
    refreshWallpaperTheme(true);
}

// ---- the volume

void AppDelegate::refreshStorage() {
    if (refreshInFlight_)
        return;
    refreshInFlight_ = true;
    popoverController_.showError(std::nullopt);
    render();
    inBackground(services_.readSystemVolume,
                 [](AppDelegate& self, const StorageReadResult& result) { self.finishRefresh(result); });
}

void AppDelegate::finishRefresh(const StorageReadResult& result) {
    refreshInFlight_ = false;
    if (result) {
        state_.snapshot = *result;
        state_.readFailure.reset();
        popoverController_.update(state_.snapshot);
    } else {
        state_.readFailure = result.error().localizedDescription();
        popoverController_.showError(state_.readFailure);
    }
    render();
}

// ---- the wallpaper

void AppDelegate::refreshWallpaperTheme(bool force) {
    if (wallpaperRefreshInFlight_) {
        wallpaperRefreshForced_ =
            wallpaperRefreshForced_ || force; // takes effect if the wallpaper has not been found yet
        return;
    }
    const auto screen = wallpaperScreen(*services_.workspace);
    if (!screen) {
        applyWallpaperThemeColors(fallbackPalette());
        return;
    }
    // Finding the file may start a process and read the disk, so it runs in the background, too.
    wallpaperRefreshInFlight_ = true;
    wallpaperRefreshForced_ = force;
    using Found = std::pair<std::optional<std::filesystem::path>, std::string>;
    inBackground(
        [wallpaper = services_.wallpaper, screen]() -> Found {
            const auto url = wallpaper.currentWallpaperURL(*screen);
            return {url, url ? wallpaper.identity(*url) : std::string()};
        },
        [screen](AppDelegate& self, const Found& found) { self.wallpaperFound(*screen, found.first, found.second); });
}

void AppDelegate::wallpaperFound(const Screen& screen, const std::optional<std::filesystem::path>& url,
                                 const std::string& identity) {
    if (!url) {
        wallpaperRefreshInFlight_ = false;
        applyWallpaperThemeColors(fallbackPalette());
        return;
    }
    const bool fresh =
        wallpaperPaletteUpdatedAt_ && services_.now() - *wallpaperPaletteUpdatedAt_ < wallpaperPaletteLifetime;
    if (!wallpaperRefreshForced_ && fresh && wallpaperIdentity_ == identity) {
        wallpaperRefreshInFlight_ = false;
        return;
    }
    wallpaperIdentity_ = identity;
    inBackground([palette = services_.wallpaper.palette, screen,
                  url = *url] { return palette(screen, url, wallpaperColorCount); },
                 [identity](AppDelegate& self, const auto& colors) { self.wallpaperSampled(identity, colors); });
}

void AppDelegate::wallpaperSampled(const std::string& identity, std::optional<std::vector<Rgba>> palette) {
    wallpaperRefreshInFlight_ = false;
    if (wallpaperIdentity_ != identity)
        return; // a newer wallpaper won
    wallpaperPaletteUpdatedAt_ = services_.now();
    applyWallpaperThemeColors(palette ? std::move(*palette) : fallbackPalette());
}

void AppDelegate::applyWallpaperThemeColors(std::vector<Rgba> colors) {
    state_.themeColors = std::move(colors);
    popoverController_.updateThemeColors(*state_.themeColors);
    render();
}

// ---- the user's choices

void AppDelegate::changeBarStyle(BarStyle style) {
    AppPreferences::setBarStyle(*services_.preferences, style);
    state_.choices.barStyle = style;
    popoverController_.updateBarStyleStatus(style);
    render();
    if (style == BarStyle::currentTheme)
        refreshWallpaperTheme(true);
}

void AppDelegate::updatePercentageDisplay(bool enabled, bool /*persist*/) {
    AppPreferences::setShowsUsedPercentage(*services_.preferences, enabled);
    state_.choices.showsUsedPercentage = enabled;
    popoverController_.updatePercentageStatus(enabled);
    render();
}

void AppDelegate::updateSegmentSizing(SegmentSizing sizing, bool /*persist*/) {
    AppPreferences::setSegmentSizing(*services_.preferences, sizing);
    state_.choices.segmentSizing = sizing;
    popoverController_.updateSegmentSizingStatus(sizing);
    render();
}

void AppDelegate::setLaunchAtLogin(bool enabled) {
    const auto result = services_.loginItem.setEnabled(enabled);
    state_.choices.launchesAtLogin = services_.loginItem.isEnabled();
    popoverController_.updateLoginItemStatus(state_.choices.launchesAtLogin);
    popoverController_.showError(
        result ? std::nullopt
               : std::optional(inWordsOf(services_.system, "Could not change Login Items: ") + result.error().message));
    render();
}

void AppDelegate::openStorageSettings() {
    services_.workspace->openURL("x-apple.systempreferences:com.apple.settings.Storage");
}

// ---- popover, menu, window

void AppDelegate::configurePopover() {
    popoverController_.delegate = weak_from_this();
    readChoices();
    popoverController_.updateThemeColors(state_.themeColors.value_or(fallbackPalette()));
}

void AppDelegate::readChoices() {
    const auto& preferences = *services_.preferences;
    state_.choices = {.showsUsedPercentage = AppPreferences::showsUsedPercentage(preferences),
                      .barStyle = AppPreferences::barStyle(preferences),
                      .segmentSizing = AppPreferences::segmentSizing(preferences),
                      .launchesAtLogin = services_.loginItem.isEnabled()};
    popoverController_.updateLoginItemStatus(state_.choices.launchesAtLogin);
    popoverController_.updatePercentageStatus(state_.choices.showsUsedPercentage);
    popoverController_.updateBarStyleStatus(state_.choices.barStyle);
    popoverController_.updateSegmentSizingStatus(state_.choices.segmentSizing);
}

void AppDelegate::showPopover() {
    if (shell_.popoverIsShown())
        return;
    popoverController_.update(state_.snapshot);
    readChoices();
    popoverController_.updateThemeColors(state_.themeColors.value_or(fallbackPalette()));
    render();
    shell_.openPopover();
}

void AppDelegate::showCleanupWindow() {
    if (!cleanupWindowController_)
        cleanupWindowController_ = std::make_shared<CleanupWindowController>(
            shell_.cleanupWindowShell(), services_.mainQueue, services_.backgroundQueue, services_.workspace,
            services_.makeCleanupServices());
    cleanupWindowController_->showAndScan();
}

void AppDelegate::showContextMenu() {
    readChoices();
    shell_.popUpContextMenu(contextMenuContent(state_.choices));
}

void AppDelegate::menuWillOpen() {
    readChoices();
    render();
}

void AppDelegate::performMenuItem(const MenuItemContent& item) {
    switch (item.command) {
    case MenuCommand::refresh: storagePopoverRequestedRefresh(); break;
    case MenuCommand::openStorageSettings: openStorageSettings(); break;
    case MenuCommand::freeUpSpace: showCleanupWindow(); break;
    case MenuCommand::showPercentage:
        updatePercentageDisplay(!AppPreferences::showsUsedPercentage(*services_.preferences), true);
        break;
    case MenuCommand::barStyle:
        if (const auto style = barStyleFromRawValue(item.representedObject))
            changeBarStyle(*style);
        break;
    case MenuCommand::segmentSizing:
        if (const auto sizing = segmentSizingFromRawValue(item.representedObject))
            updateSegmentSizing(*sizing, true);
        break;
    case MenuCommand::launchAtLogin: setLaunchAtLogin(!services_.loginItem.isEnabled()); break;
    case MenuCommand::quit: shell_.terminate(); break;
    }
}

void AppDelegate::storagePopoverRequestedRefresh() {
    refreshStorage();
    refreshWallpaperTheme(true);
}

void AppDelegate::storagePopoverRequestedSettings() {
    shell_.closePopover();
    openStorageSettings();
}

void AppDelegate::storagePopoverRequestedCleanup() {
    shell_.closePopover();
    showCleanupWindow();
}

void AppDelegate::render() {
    shell_.showStatusItem(statusItemContent(state_));
    shell_.renderPopover(popoverController_.content());
}

} // namespace vantry
