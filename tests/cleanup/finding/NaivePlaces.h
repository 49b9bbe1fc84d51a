#pragma once

#include "cleanup/model/CleanupCategory.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Where the second implementation of a scan looks and what it asks of the disk: slow and plain. It shares nothing with
/// the product but the vocabulary.
namespace vantry::naive {

using Names = std::set<std::string>;
using enum CleanupCategory;

inline const Names installers{"dmg", "pkg", "xip"};
inline const Names archives{"zip", "7z", "rar", "tar", "gz", "bz2", "xz", "tgz", "tbz", "tbz2"};
inline const Names partials{"download", "crdownload", "part", "partial"};
inline const Names crashes{"crash", "ips", "diag", "spin", "hang"};
inline const Names updates{"ipsw", "ipcc", "dmg"};
inline constexpr std::int64_t large = 262144000;

enum Finds { files, folders, wholeFolder, installerApps, savedStates, deviceBackups };

/// What is found in a place of a category, which is named from the home folder.
struct Use {
    CleanupCategory category;
    Finds finds;
    std::string place;
    int days = 0;
    std::int64_t minimum = 0;
    std::size_t count = 0;
    Names names = {};       ///< the extensions of files, none: any that no other finder has; or the folders left out
    std::string title = {}; ///< of a whole folder
};

inline Use whole(CleanupCategory category, const char* place, const char* title) {
    return {.category = category, .finds = wholeFolder, .place = place, .title = title};
}

inline const std::vector<Use> uses{
    {cache, folders, "Library/Caches", 30, 26214400, 35, {"Homebrew", "CocoaPods", "org.swift.swiftpm"}},
    {log, files, "Library/Logs", 30, 524288, 40, {"log", "txt", "out"}},
    {crashReport, files, "Library/Logs/DiagnosticReports", 30, 524288, 30, crashes},
    {installer, files, "Downloads", 21, 5242880, 30, installers},
    {archive, files, "Downloads", 45, 26214400, 30, archives},
    {interruptedDownload, files, "Downloads", 14, 5242880, 20, partials},
    {largeDownload, files, "Downloads", 90, large, 30},
    {developerArchive, folders, "Library/Developer/Xcode/Archives", 180, large, 20},
    {developerArchive, folders, "Library/Developer/Xcode/iOS DeviceSupport", 180, large, 20},
    whole(developerBuild, "Library/Developer/Xcode/DerivedData", "Xcode Derived Data"),
    whole(developerBuild, "Library/Developer/CoreSimulator/Caches", "Simulator Caches"),
    whole(developerCache, "Library/Caches/Homebrew", "Homebrew Cache"),
    whole(developerCache, "Library/Caches/CocoaPods", "CocoaPods Cache"),
    whole(developerCache, "Library/Caches/org.swift.swiftpm", "Swift Package Manager Cache"),
    whole(developerCache, ".npm/_cacache", "npm Cache"),
    whole(developerCache, ".gradle/caches", "Gradle Cache"),
    {macOSInstaller, installerApps, "../Applications"},
    {orphan, savedStates, "Library/Saved Application State"},
    {deviceBackup, deviceBackups, "Library/Application Support/MobileSync/Backup"},
    {deviceSoftware, files, "Library/iTunes/iPhone Software Updates", 90, large, 10, updates},
    {deviceSoftware, files, "Library/iTunes/iPad Software Updates", 90, large, 10, updates},
    {deviceSoftware, files, "Library/iTunes/iPod Software Updates", 90, large, 10, updates},
};

inline bool lowRisk(CleanupCategory category) {
    return category == log || category == crashReport || category == installer || category == interruptedDownload;
}

inline std::optional<struct stat> look(const std::string& path) {
    struct stat said = {};
    return lstat(path.c_str(), &said) == 0 ? std::optional(said) : std::nullopt;
}
inline std::int64_t bytesOf(const std::string& path) { return look(path)->st_blocks * 512; }
inline bool isFile(const std::string& path) { return look(path) && S_ISREG(look(path)->st_mode); }
inline bool isRealFolder(const std::string& path) { return look(path) && S_ISDIR(look(path)->st_mode); }
inline bool isLink(const std::string& path) { return look(path) && S_ISLNK(look(path)->st_mode); }
inline bool leadsToFolder(const std::string& path) {
    struct stat said = {};
    return stat(path.c_str(), &said) == 0 && S_ISDIR(said.st_mode);
}
inline std::vector<std::string> list(const std::string& folder) {
    std::vector<std::string> paths;
    if (isRealFolder(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().native()[0] != '.')
                paths.push_back(entry.path().native());
    std::sort(paths.begin(), paths.end());
    return paths;
}

inline std::string lower(std::string text) {
    for (auto& character : text)
        character = static_cast<char>(std::tolower(character));
    return text;
}
inline std::string name(const std::string& path) { return path.substr(path.rfind('/') + 1); }
inline std::string stem(const std::string& path) { return name(path).substr(0, name(path).rfind('.')); }
inline std::string extension(const std::string& path) {
    const auto dot = name(path).rfind('.');
    return dot == std::string::npos || dot == 0 ? "" : lower(name(path).substr(dot + 1));
}
inline bool isOfAnotherDownload(const std::string& path) {
    const auto end = extension(path);
    return installers.contains(end) || archives.contains(end) || partials.contains(end);
}

} // namespace vantry::naive
