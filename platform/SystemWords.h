#pragma once

#include <array>
#include <string_view>

namespace vantry {

/// A text on either system, or the part of one before or after what is known only at run time.
struct SystemWords {
    std::string_view macOS;
    std::string_view linuxDesktop;
};

/// Every text that differs between the systems.
inline constexpr std::array systemWords{
    // The popover and the status item
    SystemWords{"Macintosh HD", "File System"},
    SystemWords{"Show % Used in Menu Bar", "Show % Used in Panel"},
    SystemWords{"Starts Ombrel silently in the menu bar when you log in.",
                "Starts Ombrel silently in the panel when you log in."},
    SystemWords{"The color strip shows total used space with the macOS Storage palette. Open Storage Settings for "
                "Apple’s category breakdown.",
                "The color strip shows total used space with the current Ombrel palette."},
    SystemWords{"Each macOS category color gets equal width. Total used and available space stay live.",
                "Each category color gets equal width. Total used and available space stay live."},
    SystemWords{"Widths use the latest verified Storage Settings category totals; total disk usage stays live.",
                "Widths use category totals that were once measured; total disk usage stays live."},
    SystemWords{"Use equal-width colors or the latest verified macOS Storage category proportions.",
                "Use equal-width colors or category proportions that were once measured."},
    SystemWords{"Could not change Login Items: ", "Could not change the autostart entry: "},

    // The "Free Up Space" window and the terminal's report
    SystemWords{"Mac Storage Used", "Storage Used"},
    SystemWords{"Everything stored on this Mac", "Everything stored on this computer"},
    SystemWords{"Mac storage size could not be read", "Storage size could not be read"},
    SystemWords{"This Mac uses ", "This computer uses "},
    SystemWords{"Mac storage total unavailable", "Storage total unavailable"},
    SystemWords{"Only individual low-risk files can be selected. macOS files, app databases, documents, photos, "
                "messages, passwords, game saves, and device backups are blocked.",
                "Only individual low-risk files can be selected. System files, app databases, documents, photos, "
                "messages, passwords, game saves, and device backups are blocked."},
    SystemWords{"The scan found 0 B it can offer here. Open Storage Guide for space managed by apps or macOS.",
                "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps or the system."},
    SystemWords{"Review in Finder", "Review First"},
    SystemWords{"Review in Finder. This item cannot be selected here.",
                "Review in the file manager. This item cannot be selected here."},
    SystemWords{"Reveal in Finder", "Reveal in File Manager"},
    SystemWords{" in Finder", " in the file manager"},
    SystemWords{"Not on This Mac", "Not on This Computer"},
    SystemWords{"Protected by macOS", "Protected by the System"},
    SystemWords{"Managed by Apps or macOS", "Managed by Apps or the System"},
    SystemWords{"Available on macOS only.", "Not available on this computer."},
    SystemWords{"Old diagnostic record. Apps and macOS do not need this file to run.",
                "Old diagnostic record. Apps and the system do not need this file to run."},
    SystemWords{"Full macOS installer app. Keep it only if you plan to upgrade or create install media.",
                "Full system installer app. Keep it only if you plan to upgrade or create install media."},
    SystemWords{"macOS Installer Apps", "System Installer Apps"},
};

} // namespace vantry
