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

/// How the status item was pressed. A control-click is a left click.
enum class MouseEvent { leftMouseUp, rightMouseUp };

/// The application's controller: it holds the state that the status item, the menu and the popover show, reads the
/// volume every minute, on wake and on request, and keeps the wallpaper's colours current. At most one read and one
/// sampling run at a time; a request that arrives during a read is dropped. Main thread. Must be owned by a
/// `std::shared_ptr`, because posted blocks, timers and observers hold it weakly.
class AppDelegate : public StoragePopoverDelegate, public std::enable_shared_from_this<AppDelegate> {
public:
    /// `shell` outlives the delegate.
    AppDelegate(Shell& shell, AppServices services);

    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    /// A left click toggles the popover, a right click opens the menu. An unknown event counts as a left click.
    void statusItemPressed(std::optional<MouseEvent> currentEvent);
    void timerFired();
    void workspaceDidWake();

    /// Reads the volume in the background, then updates the bar, the popover and the tooltip.
    void refreshStorage();
    /// Samples the wallpaper in the background. Without `force`, does nothing if the same wallpaper was sampled less
    /// than 600 seconds ago.
    void refreshWallpaperTheme(bool force);
    void applyWallpaperThemeColors(std::vector<Rgba> colors);

    /// Stores and shows the choice. `persist` is ignored; the choice is always stored.
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

    void showContextMenu();
    /// For a host that draws the menu itself: brings the status item's menu up to date before it is shown.
    void menuWillOpen();
    /// An unknown represented object does nothing.
    void performMenuItem(const MenuItemContent& item);

    /// The controls of the popover report to it.
    [[nodiscard]] StoragePopoverViewController& popoverController() { return popoverController_; }

    void storagePopoverRequestedRefresh() override;
    void storagePopoverRequestedSettings() override;
    void storagePopoverRequestedCleanup() override;
    void storagePopoverRequestedQuit() override { shell_.terminate(); }
    void storagePopoverRequestedLoginItemChange(bool enabled) override { setLaunchAtLogin(enabled); }
    void storagePopoverRequestedPercentageChange(bool enabled) override { updatePercentageDisplay(enabled, true); }
    void storagePopoverRequestedBarStyleChange(BarStyle style) override { changeBarStyle(style); }
    void storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) override {
        updateSegmentSizing(sizing, true);
    }

private:
    /// Hands the result of `work` to `finish` on the main thread.
    template <class Work, class Finish>
    void inBackground(const Work& work, const Finish& finish);
    void configurePopover();
    void readChoices();
    void changeBarStyle(BarStyle style);
    void finishRefresh(const StorageReadResult& result);
    void wallpaperFound(const Screen& screen, const std::optional<std::filesystem::path>& url,
                        const std::string& identity);
    void wallpaperSampled(const std::string& identity, std::optional<std::vector<Rgba>> palette);
    void render();

    Shell& shell_;
    AppServices services_;
    StatusItemState state_;
    StoragePopoverViewController popoverController_;
    std::shared_ptr<CleanupWindowController> cleanupWindowController_;
    std::unique_ptr<Subscription> timer_;
    std::unique_ptr<Subscription> wakeObserver_;
    bool refreshInFlight_ = false;
    std::optional<std::string> wallpaperIdentity_;
    std::optional<SystemTime> wallpaperPaletteUpdatedAt_;
    bool wallpaperRefreshInFlight_ = false;
    bool wallpaperRefreshForced_ = false; ///< some request for the current refresh had `force` set
};

} // namespace vantry
