#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/move/MoveServices.h"
#include "platform/HostSystem.h"
#include "platform/ItemFacts.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>

namespace vantry {

/// What the "Free Up Space" window does to the disk. The functions block and run in the background.
struct CleanupServices {
    std::filesystem::path home;         ///< the avenues open its folders
    std::filesystem::path downloads;    ///< opened by an avenue
    std::filesystem::path applications; ///< opened by an avenue
    HostSystem system;                  ///< its words are shown

    std::function<CleanupScanReport(std::span<const std::string> runningBundleIdentifiers)> scan;
    /// Measures the avenues' own places, which can take some seconds; ends early when `isWanted` says no. Empty where
    /// no avenue has a place.
    std::function<std::map<std::string, GuideUsage>(const std::function<bool()>& isWanted)> measureGuide;
    /// Ends a running scan or measurement and prevents new ones: its worker processes end and their files are removed.
    /// Any thread; takes at most half a second.
    std::function<void()> stopScanning;
    MoveServices move;
    /// How long the end of the process waits for a move to finish its current file.
    std::chrono::milliseconds longestEnding{2000};
};

/// The real ones. Their first scan makes the system ask the user about folders by `opener`. Blocking; once.
[[nodiscard]] CleanupServices systemCleanupServices(FolderOpener opener = folderOpener());

} // namespace vantry
