#include "app/AppDelegate.h"

#include "app/AppPreferences.h"
#include "platform/TextFormat.h"
#include "rendering/WallpaperThemeReader.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantry {

namespace {

constexpr double lengthWithPercentage = 94;
constexpr double lengthWithoutPercentage = 60;
constexpr int wallpaperColorCount = 7;
constexpr std::chrono::seconds refreshInterval{60};
constexpr std::chrono::seconds wallpaperPaletteLifetime{600};

double statusItemLength(bool showsPercentage) {
    return showsPercentage ? lengthWithPercentage : lengthWithoutPercentage;
}

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
      wallpaperThemeColors_(fallbackPalette()) {}

void AppDelegate::applicationDidFinishLaunching() {
    shell_.becomeAccessory();
    std::ignore = services_.loginItem.refreshIfEnabled(); // nobody asked for it, so nobody is told that it failed

    const auto& preferences = *services_.preferences;
    statusItem_.tooltip = "Ombrel";
    VantryView& bar = statusItem_.view;
    bar.barHeight = 7;
    bar.horizontalInset = 5;
    bar.exposesAccessibility = false; // the button carries the text
    bar.barStyle = AppPreferences::barStyle(preferences);
    bar.segmentSizing = AppPreferences::segmentSizing(preferences);
    bar.showsPercentageLabel = AppPreferences::showsUsedPercentage(preferences);
    statusItem_.length = statusItemLength(bar.showsPercentageLabel);
    popoverController_.updatePercentageStatus(bar.showsPercentageLabel);

    configurePopover();
    render();
    refreshStorage();
    refreshWallpaperTheme(true);

    if (std::ranges::count(services_.arguments, "--show-cleanup") > 0)
        services_.mainQueue->post([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->showCleanupWindow();
        });
    timer_ = services_.mainQueue->repeatEvery(refreshInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->timerFired();
    });
    wakeObserver_ = services_.workspace->observeWake([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->workspaceDidWake();
    });
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
    services_.backgroundQueue->submit(QualityOfService::utility, [weak = weak_from_this(), queue = services_.mainQueue,
                                                                  read = services_.readSystemVolume] {
        if (weak.expired())
            return;
        queue->post([weak, result = read()] {
            if (const auto self = weak.lock())
                self->finishRefresh(result);
        });
    });
}

void AppDelegate::finishRefresh(const StorageReadResult& result) {
    refreshInFlight_ = false;
    if (result) {
        snapshot_ = *result;
        statusItem_.view.snapshot = snapshot_;
        popoverController_.update(snapshot_);
        statusItem_.tooltip = snapshot_->volumeName + ": " + byteCountText(snapshot_->usedBytes()) + " used, " +
                              byteCountText(snapshot_->availableBytes) + " available";
        statusItem_.accessibilityLabel = statusItem_.tooltip;
    } else {
        const std::string description = result.error().localizedDescription();
        popoverController_.showError(description);
        statusItem_.tooltip = "Storage unavailable: " + description;
    }
    render();
}

// ---- the wallpaper

void AppDelegate::refreshWallpaperTheme(bool force) {
    if (wallpaperRefreshInFlight_) {
        wallpaperRefreshForced_ = wallpaperRefreshForced_ || force; // counts while the file is still looked for
        return;
    }
    const auto screen = wallpaperScreen(*services_.workspace);
    if (!screen) {
        applyWallpaperThemeColors(fallbackPalette());
        return;
    }
    // Finding the file may start a process and read the disk, so it happens in the background as well.
    wallpaperRefreshInFlight_ = true;
    wallpaperRefreshForced_ = force;
    services_.backgroundQueue->submit(QualityOfService::utility, [weak = weak_from_this(), queue = services_.mainQueue,
                                                                  wallpaper = services_.wallpaper, screen] {
        if (weak.expired())
            return;
        auto url = wallpaper.currentWallpaperURL(*screen);
        auto identity = url ? wallpaper.identity(*url) : std::string();
        queue->post([weak, screen, url = std::move(url), identity = std::move(identity)] {
            if (const auto self = weak.lock())
                self->wallpaperFound(*screen, url, identity);
        });
    });
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
    services_.backgroundQueue->submit(QualityOfService::utility, [weak = weak_from_this(), queue = services_.mainQueue,
                                                                  palette = services_.wallpaper.palette, screen, url,
                                                                  identity] {
        if (weak.expired())
            return;
        queue->post([weak, identity, colors = palette(screen, *url, wallpaperColorCount)] {
            if (const auto self = weak.lock())
                self->wallpaperSampled(identity, colors);
        });
    });
}

void AppDelegate::wallpaperSampled(const std::string& identity, std::optional<std::vector<Rgba>> palette) {
    wallpaperRefreshInFlight_ = false;
    if (wallpaperIdentity_ != identity)
        return; // a newer wallpaper won
    wallpaperPaletteUpdatedAt_ = services_.now();
    applyWallpaperThemeColors(palette ? std::move(*palette) : fallbackPalette());
}

void AppDelegate::applyWallpaperThemeColors(std::vector<Rgba> colors) {
    wallpaperThemeColors_ = std::move(colors);
    statusItem_.view.themeColors = wallpaperThemeColors_;
    popoverController_.updateThemeColors(wallpaperThemeColors_);
    render();
}

// ---- the user's choices

void AppDelegate::changeBarStyle(BarStyle style) {
    AppPreferences::setBarStyle(*services_.preferences, style);
    statusItem_.view.barStyle = style;
    popoverController_.updateBarStyleStatus(style);
    render();
    if (style == BarStyle::currentTheme)
        refreshWallpaperTheme(true);
}

void AppDelegate::updatePercentageDisplay(bool enabled, bool /*persist*/) {
    AppPreferences::setShowsUsedPercentage(*services_.preferences, enabled);
    statusItem_.view.showsPercentageLabel = enabled;
    statusItem_.length = statusItemLength(enabled);
    popoverController_.updatePercentageStatus(enabled);
    render();
}

void AppDelegate::updateSegmentSizing(SegmentSizing sizing, bool /*persist*/) {
    AppPreferences::setSegmentSizing(*services_.preferences, sizing);
    statusItem_.view.segmentSizing = sizing;
    popoverController_.updateSegmentSizingStatus(sizing);
    render();
}

void AppDelegate::setLaunchAtLogin(bool enabled) {
    const auto result = services_.loginItem.setEnabled(enabled);
    popoverController_.updateLoginItemStatus(services_.loginItem.isEnabled());
    popoverController_.showError(result ? std::nullopt
                                        : std::optional("Could not change Login Items: " + result.error().message));
    render();
}

void AppDelegate::openStorageSettings() {
    services_.workspace->openURL("x-apple.systempreferences:com.apple.settings.Storage");
}

// ---- popover, menu, window

void AppDelegate::configurePopover() {
    popoverController_.delegate = weak_from_this();
    readPreferencesIntoPopover();
    popoverController_.updateThemeColors(wallpaperThemeColors_);
}

void AppDelegate::readPreferencesIntoPopover() {
    const auto& preferences = *services_.preferences;
    popoverController_.updateLoginItemStatus(services_.loginItem.isEnabled());
    popoverController_.updatePercentageStatus(AppPreferences::showsUsedPercentage(preferences));
    popoverController_.updateBarStyleStatus(AppPreferences::barStyle(preferences));
    popoverController_.updateSegmentSizingStatus(AppPreferences::segmentSizing(preferences));
}

void AppDelegate::showPopover() {
    if (shell_.popoverIsShown())
        return;
    popoverController_.update(snapshot_);
    readPreferencesIntoPopover();
    popoverController_.updateThemeColors(wallpaperThemeColors_);
    render();
    shell_.openPopover();
}

void AppDelegate::showCleanupWindow() {
    if (!cleanupWindowController_)
        cleanupWindowController_ =
            std::make_shared<CleanupWindowController>(shell_, services_.mainQueue, services_.backgroundQueue,
                                                      services_.workspace, services_.makeCleanupServices());
    cleanupWindowController_->showAndScan();
}

ContextMenuContent AppDelegate::contextMenu() const {
    const auto& preferences = *services_.preferences;
    return contextMenuContent({.showsUsedPercentage = AppPreferences::showsUsedPercentage(preferences),
                               .barStyle = AppPreferences::barStyle(preferences),
                               .segmentSizing = AppPreferences::segmentSizing(preferences),
                               .launchesAtLogin = services_.loginItem.isEnabled()});
}

void AppDelegate::showContextMenu() { shell_.popUpContextMenu(contextMenu()); }

void AppDelegate::performMenuItem(const MenuItemContent& item) {
    switch (item.command) {
    case MenuCommand::none: break;
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

void AppDelegate::storagePopoverRequestedQuit() { shell_.terminate(); }

void AppDelegate::storagePopoverRequestedLoginItemChange(bool enabled) { setLaunchAtLogin(enabled); }

void AppDelegate::storagePopoverRequestedPercentageChange(bool enabled) { updatePercentageDisplay(enabled, true); }

void AppDelegate::storagePopoverRequestedBarStyleChange(BarStyle style) { changeBarStyle(style); }

void AppDelegate::storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) {
    updateSegmentSizing(sizing, true);
}

void AppDelegate::render() {
    shell_.showStatusItem(statusItem_);
    shell_.renderPopover(popoverController_.content());
}

} // namespace vantry
