#include "cleanup/model/CleanupRules.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;
using Category = CleanupCategory;
using Names = std::span<const std::string_view>;
using std::chrono::days;

constexpr std::int64_t kibibyte = 1024;
constexpr std::int64_t mebibyte = 1024 * kibibyte;

constexpr std::array logs{"log"sv, "txt"sv, "out"sv};
constexpr std::array crashReports{"crash"sv, "ips"sv, "diag"sv, "spin"sv, "hang"sv};
constexpr std::array archives{"zip"sv, "7z"sv, "rar"sv, "tar"sv, "gz"sv, "bz2"sv, "xz"sv, "tgz"sv, "tbz"sv, "tbz2"sv};
constexpr std::array installers{"dmg"sv, "pkg"sv, "xip"sv};
constexpr std::array installersOnLinux{"dmg"sv, "pkg"sv, "xip"sv, "deb"sv, "rpm"sv, "snap"sv, "flatpak"sv};
constexpr std::array partialDownloads{"download"sv, "crdownload"sv, "part"sv, "partial"sv};
constexpr std::array partialDownloadsOnLinux{"download"sv, "crdownload"sv, "part"sv,      "partial"sv,
                                             "aria2"sv,    "!qb"sv,        "opdownload"sv};
constexpr std::array runInPlace{"appimage"sv, "run"sv}; // programs; on Linux
constexpr std::array deviceUpdates{"ipsw"sv, "ipcc"sv, "dmg"sv};
constexpr std::array cachesOfCodingTools{"Homebrew"sv, "CocoaPods"sv, "org.swift.swiftpm"sv};

constexpr auto downloadFolder = "Downloads"sv;
constexpr auto applications = ""sv;

struct Row {
    Category category;
    std::string_view place; ///< below the home folder, or one of the above
    days olderThan{};
    std::int64_t minimumSize = 0;
    std::size_t maximumCount = 0;
    std::string_view reason = {};
    Names extensions = {};
    Names extensionsOnLinux = extensions;
};

constexpr auto archiveGroup = "Xcode archive group not modified for at least 180 days. Keep anything needed for "
                              "symbolication or release export."sv;
constexpr auto supportVersion = "Device-support version not modified for at least 180 days. Xcode can restore it when "
                                "that OS is used again."sv;
constexpr auto updateFile = "Downloaded Apple-device update file not modified for at least 90 days."sv;

// clang-format off
constexpr std::array table{
    Row{Category::cache, "Library/Caches", days(30), 25 * mebibyte, 35,
        "An app can normally recreate this. It has not changed for at least 30 days."},
    Row{Category::log, "Library/Logs", days(30), 512 * kibibyte, 40,
        "Old diagnostic record. Apps and macOS do not need this file to run.", logs},
    Row{Category::crashReport, "Library/Logs/DiagnosticReports", days(30), 512 * kibibyte, 30,
        "Old crash report used only to diagnose a past problem.", crashReports},
    Row{Category::installer, downloadFolder, days(21), 5 * mebibyte, 30,
        "Downloaded more than 21 days ago. Removing it does not uninstall the app.", installers, installersOnLinux},
    Row{Category::archive, downloadFolder, days(45), 25 * mebibyte, 30,
        "Not changed for 45 days. It may be your only copy, so open it before deciding.", archives},
    Row{Category::interruptedDownload, downloadFolder, days(14), 5 * mebibyte, 20,
        "An unfinished download that has not changed for at least 14 days.", partialDownloads, partialDownloadsOnLinux},
    Row{Category::largeDownload, downloadFolder, days(90), 250 * mebibyte, 30,
        "A large Downloads file not changed for 90 days. Only you can know whether it is still needed."},
    Row{Category::macOSInstaller, applications},
    Row{Category::orphan, "Library/Saved Application State"},
    Row{Category::developerBuild, "Library/Developer/Xcode/DerivedData"},
    Row{Category::developerBuild, "Library/Developer/CoreSimulator/Caches"},
    Row{Category::developerCache, "Library/Caches/Homebrew"},
    Row{Category::developerCache, "Library/Caches/CocoaPods"},
    Row{Category::developerCache, "Library/Caches/org.swift.swiftpm"},
    Row{Category::developerCache, ".npm/_cacache"},
    Row{Category::developerCache, ".gradle/caches"},
    Row{Category::developerArchive, "Library/Developer/Xcode/Archives", days(180), 250 * mebibyte, 20, archiveGroup},
    Row{Category::developerArchive, "Library/Developer/Xcode/iOS DeviceSupport", days(180), 250 * mebibyte, 20,
        supportVersion},
    Row{Category::deviceBackup, "Library/Application Support/MobileSync/Backup"},
    Row{Category::deviceSoftware, "Library/iTunes/iPhone Software Updates", days(90), 250 * mebibyte, 10, updateFile,
        deviceUpdates},
    Row{Category::deviceSoftware, "Library/iTunes/iPad Software Updates", days(90), 250 * mebibyte, 10, updateFile,
        deviceUpdates},
    Row{Category::deviceSoftware, "Library/iTunes/iPod Software Updates", days(90), 250 * mebibyte, 10, updateFile,
        deviceUpdates},
};
// clang-format on

Names extensionsOf(const Row& row, HostSystem system) {
    return system == HostSystem::macOS ? row.extensions : row.extensionsOnLinux;
}

std::filesystem::path folderOf(const Row& row, const CleanupPlaces& places) {
    if (row.place == applications)
        return places.applications;
    return row.place == downloadFolder && !places.downloads.empty() ? places.downloads : places.home / row.place;
}

// Large downloads are the files that no other rule of the download folder is about.
std::vector<std::string_view> allOtherDownloads(HostSystem system) {
    std::vector<std::string_view> extensions;
    for (const auto& row : table)
        if (row.place == downloadFolder)
            std::ranges::copy(extensionsOf(row, system), std::back_inserter(extensions));
    if (system != HostSystem::macOS)
        std::ranges::copy(runInPlace, std::back_inserter(extensions));
    return extensions;
}

Names excludedExtensionsOf(const Row& row, HostSystem system) {
    static const auto onMacOS = allOtherDownloads(HostSystem::macOS);
    static const auto onLinux = allOtherDownloads(HostSystem::linuxDesktop);
    if (row.category != Category::largeDownload)
        return {};
    return system == HostSystem::macOS ? onMacOS : onLinux;
}

bool contains(Names names, std::string_view name) { return std::ranges::find(names, name) != names.end(); }

} // namespace

std::vector<CleanupRule> cleanupRules(CleanupCategory category, const CleanupPlaces& places) {
    std::vector<CleanupRule> rules;
    for (const auto& row : table)
        if (row.category == category)
            rules.push_back({.category = category,
                             .folder = folderOf(row, places),
                             .olderThan = row.olderThan,
                             .minimumSize = row.minimumSize,
                             .maximumCount = row.maximumCount,
                             .reason = row.reason,
                             .extensions = extensionsOf(row, places.system),
                             .excludedExtensions = excludedExtensionsOf(row, places.system),
                             .excludedNames = category == Category::cache ? Names(cachesOfCodingTools) : Names()});
    return rules;
}

std::vector<std::filesystem::path> approvedRoots(CleanupCategory category, const CleanupPlaces& places) {
    std::vector<std::filesystem::path> roots;
    for (auto& rule : cleanupRules(category, places))
        roots.push_back(std::move(rule.folder));
    return roots;
}

bool matchesExtensions(const CleanupRule& rule, const std::filesystem::path& path) {
    const auto extension = lowercaseExtension(path);
    return (rule.extensions.empty() || contains(rule.extensions, extension)) &&
           !contains(rule.excludedExtensions, extension);
}

std::string lowercaseExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().native();
    if (!extension.empty())
        extension.erase(0, 1);
    return asciiLowercase(std::move(extension));
}

} // namespace vantry::CleanupScanner
