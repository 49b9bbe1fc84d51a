#include "cleanup/scan/CleanupPlaces.h"

#include "cleanup/model/CaseTable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;

constexpr std::array logExtensions{"log"sv, "txt"sv, "out"sv};
constexpr std::array crashReportExtensions{"crash"sv, "ips"sv, "diag"sv, "spin"sv, "hang"sv};
constexpr std::array installerExtensions{"dmg"sv, "pkg"sv, "xip"sv};
constexpr std::array archiveExtensions{"zip"sv, "7z"sv, "rar"sv, "tar"sv, "gz"sv,
                                       "bz2"sv, "xz"sv, "tgz"sv, "tbz"sv, "tbz2"sv};
constexpr std::array interruptedDownloadExtensions{"download"sv, "crdownload"sv, "part"sv, "partial"sv};
constexpr std::array deviceSoftwareExtensions{"ipsw"sv, "ipcc"sv, "dmg"sv};

constexpr std::array caches{"Library/Caches"sv};
constexpr std::array logs{"Library/Logs"sv};
constexpr std::array crashReports{"Library/Logs/DiagnosticReports"sv};
constexpr std::array downloads{"Downloads"sv};
constexpr std::array savedStates{"Library/Saved Application State"sv};
constexpr std::array developerBuilds{"Library/Developer/Xcode/DerivedData"sv,
                                     "Library/Developer/CoreSimulator/Caches"sv};
constexpr std::array developerCaches{"Library/Caches/Homebrew"sv, "Library/Caches/CocoaPods"sv,
                                     "Library/Caches/org.swift.swiftpm"sv, ".npm/_cacache"sv, ".gradle/caches"sv};
constexpr std::array developerArchives{"Library/Developer/Xcode/Archives"sv,
                                       "Library/Developer/Xcode/iOS DeviceSupport"sv};
constexpr std::array deviceBackups{"Library/Application Support/MobileSync/Backup"sv};
constexpr std::array deviceUpdates{"Library/iTunes/iPhone Software Updates"sv, "Library/iTunes/iPad Software Updates"sv,
                                   "Library/iTunes/iPod Software Updates"sv};

struct Row {
    CleanupCategory value;
    std::span<const std::string_view> places; ///< below the home folder; none: the applications folder
    std::span<const std::string_view> extensions;
    std::chrono::days age;
};

constexpr auto noExtensions = std::span<const std::string_view>();

constexpr std::array<Row, allCleanupCategories.size()> rows{{
    {CleanupCategory::cache, caches, noExtensions, std::chrono::days(30)},
    {CleanupCategory::log, logs, logExtensions, std::chrono::days(30)},
    {CleanupCategory::crashReport, crashReports, crashReportExtensions, std::chrono::days(30)},
    {CleanupCategory::installer, downloads, installerExtensions, std::chrono::days(21)},
    {CleanupCategory::archive, downloads, archiveExtensions, std::chrono::days(45)},
    {CleanupCategory::interruptedDownload, downloads, interruptedDownloadExtensions, std::chrono::days(14)},
    {CleanupCategory::largeDownload, downloads, noExtensions, std::chrono::days(90)},
    {CleanupCategory::macOSInstaller, {}, noExtensions, std::chrono::days(0)},
    {CleanupCategory::orphan, savedStates, noExtensions, std::chrono::days(0)},
    {CleanupCategory::developerBuild, developerBuilds, noExtensions, std::chrono::days(0)},
    {CleanupCategory::developerCache, developerCaches, noExtensions, std::chrono::days(0)},
    {CleanupCategory::developerArchive, developerArchives, noExtensions, std::chrono::days(180)},
    {CleanupCategory::deviceBackup, deviceBackups, noExtensions, std::chrono::days(0)},
    {CleanupCategory::deviceSoftware, deviceUpdates, deviceSoftwareExtensions, std::chrono::days(90)},
}};
static_assert(rowsStandInOrder(rows));

} // namespace

std::vector<std::filesystem::path> approvedRoots(CleanupCategory category, const ScanEnvironment& environment) {
    const auto& row = rowOf(rows, category);
    if (row.places.empty())
        return {environment.applications};
    std::vector<std::filesystem::path> roots;
    for (const auto place : row.places)
        roots.push_back(environment.home / place);
    return roots;
}

std::span<const std::string_view> matchedExtensions(CleanupCategory category) {
    return rowOf(rows, category).extensions;
}

std::chrono::days minimumAge(CleanupCategory category) { return rowOf(rows, category).age; }

std::string lowercaseExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().native();
    if (!extension.empty())
        extension.erase(0, 1);
    return lowercase(std::move(extension));
}

std::string lowercase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

} // namespace vantry::CleanupScanner
