#pragma once

#include "app/AppServices.h"
#include "app/Shell.h"
#include "app/StoragePopoverViewController.h"
#include "cleanup/window/CleanupWindowController.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// How the status item was pressed. A click with the control key held is a left one.
enum class MouseEvent { leftMouseUp, rightMouseUp };

/// The application's controller: it owns what the status item and the popover show, reads the volume every minute, on
/// wake and on request, and keeps the wallpaper's colours current. At most one read and one sampling run at a time; a
/// request that arrives during a read is dropped. Main thread. To be owned by a `std::shared_ptr`: whatever is posted,
/// scheduled or asked holds it weakly.
class AppDelegate : public StoragePopoverDelegate, public std::enable_shared_from_this<AppDelegate> {
public:
    /// `shell` outlives the delegate.
    AppDelegate(Shell& shell, AppServices services);

    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    /// A left click toggles the popover, a right click opens the menu; without a known event it counts as a left click.
    void statusItemPressed(std::optional<MouseEvent> currentEvent);
    void timerFired();
    void workspaceDidWake();

    /// Reads the volume in the background; the bar, the popover and the tooltip follow.
    void refreshStorage();
    /// Samples the wallpaper in the background, unless the same one was sampled less than 600 seconds ago; `force`
    /// samples always.
    void refreshWallpaperTheme(bool force);
    void applyWallpaperThemeColors(std::vector<Rgba> colors);

    /// Stores and shows the choice. `persist` is accepted for symmetry with the callers; the choice is always stored.
    void updatePercentageDisplay(bool enabled, bool persist);
    void updateSegmentSizing(SegmentSizing sizing, bool persist);
    void setLaunchAtLogin(bool enabled);
    void openStorageSettings();

    /// Brings the popover up to date and shows it; does nothing when it is shown.
    void showPopover();
    /// Opens the "Free Up Space" window and starts a scan.
    void showCleanupWindow();
    /// Null before the window was first shown.
    [[nodiscard]] std::shared_ptr<CleanupWindowController> cleanupWindowController() const {
        return cleanupWindowController_;
    }

    /// The menu as it is right at this moment, for a host that draws it by itself.
    [[nodiscard]] ContextMenuContent contextMenu() const;
    void showContextMenu();
    /// What choosing an item does. An unknown represented object does nothing.
    void performMenuItem(const MenuItemContent& item);

    /// The controls of the popover report here.
    [[nodiscard]] StoragePopoverViewController& popoverController() { return popoverController_; }

    void storagePopoverRequestedRefresh() override;
    void storagePopoverRequestedSettings() override;
    void storagePopoverRequestedCleanup() override;
    void storagePopoverRequestedQuit() override;
    void storagePopoverRequestedLoginItemChange(bool enabled) override;
    void storagePopoverRequestedPercentageChange(bool enabled) override;
    void storagePopoverRequestedBarStyleChange(BarStyle style) override;
    void storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) override;

private:
    void configurePopover();
    void readPreferencesIntoPopover();
    void changeBarStyle(BarStyle style);
    void showSegmentSizing(SegmentSizing sizing);
    void finishRefresh(const StorageReadResult& result);
    void wallpaperFound(const Screen& screen, const std::optional<std::filesystem::path>& url,
                        const std::string& identity);
    void wallpaperSampled(const std::string& identity, std::optional<std::vector<Rgba>> palette);
    void render();

    Shell& shell_;
    AppServices services_;
    StatusItemContent statusItem_;
    StoragePopoverViewController popoverController_;
    std::shared_ptr<CleanupWindowController> cleanupWindowController_;
    std::unique_ptr<Subscription> timer_;
    std::unique_ptr<Subscription> wakeObserver_;
    std::optional<StorageSnapshot> snapshot_;
    bool refreshInFlight_ = false;
    std::vector<Rgba> wallpaperThemeColors_;
    std::optional<std::string> wallpaperIdentity_;
    std::optional<SystemTime> wallpaperPaletteUpdatedAt_;
    bool wallpaperRefreshInFlight_ = false;
    bool wallpaperRefreshForced_ = false; ///< what runs was asked for with force, then or since
};

} // namespace vantry
